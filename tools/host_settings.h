// The host's settings, as several commands read and set them.
#pragma once

#include <string>
#include <vector>

namespace tool {

std::string ReadHostname();
void SetHostname(const std::string& name);

/// The stored ones: daemons do not report which are in effect.
std::vector<std::string> ReadNtpServers();
void StoreNtpServers(const std::vector<std::string>& servers);

/// Those in use.
std::vector<std::string> ReadDnsServers();
/// Empty if there is none.
std::string ReadGateway();

}  // namespace tool
