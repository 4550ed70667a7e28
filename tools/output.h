// The form of everything that --json prints, and of the lines on standard error.
// tools/schema/output.schema.json describes the objects.
#pragma once

#include <ctime>
#include <string>

#include "tools/failure.h"
#include "tools/json.h"

namespace tool {

/// The device that was named on the command line; the objects below then have a "device".
void SetDevice(const std::string& name);

/// {"schema":3,"command":...,"result":...}
Json ResultJson(const std::string& command, const Json& result);

/// {"schema":3,"command":...,"error":{...}}, with "result" before "error" if the failure
/// has one.
Json ErrorJson(const std::string& command, const Failure& failure);

/// As in RFC 3339, in UTC.
std::string UtcTime(std::time_t time);

/// One line, ended by a line feed. Bytes that are not UTF-8 are replaced, and characters
/// that are not printable are escaped.
std::string JsonText(const Json& value);

/// "networkgrpc: MESSAGE" in one line, ended by a line feed.
std::string ErrorLine(const std::string& message);

}  // namespace tool
