// The host's settings as other commands show them.
#pragma once

#include <string>

namespace tool {

std::string ReadHostname();
/// Empty when there is none.
std::string ReadNtpServer();
/// Empty when there is none.
std::string ReadDns();
/// Empty when there is none.
std::string ReadGateway();

}  // namespace tool
