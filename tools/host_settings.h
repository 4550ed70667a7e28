// The host's settings, as several commands read them.
#pragma once

#include <string>

namespace tool {

std::string ReadHostname();
/// The first one; empty if there is none.
std::string ReadNtpServer();
/// The first one; empty if there is none.
std::string ReadDns();
/// Empty if there is none.
std::string ReadGateway();

}  // namespace tool
