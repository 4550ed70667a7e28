// What --get prints: values of a result, for scripts.
#pragma once

#include <string>

#include "tools/json.h"

namespace tool {

/// What is wrong with the argument of --get, such as an empty field; "" if nothing is.
std::string FaultOfFields(const std::string& fields);

/// The values of the fields, which are paths separated by commas: one value a line, a
/// string as Printable makes it, all else as JSON. Throws a Failure, kNotFound, for a
/// field that has no value or is null.
std::string ValueLines(const Json& result, const std::string& fields);

/// The same; "null" stands for a field that has no value.
std::string ValueOrNullLines(const Json& result, const std::string& fields);

}  // namespace tool
