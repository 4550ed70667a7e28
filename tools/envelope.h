// The one form of everything that --json prints, and of the lines that text
// mode writes to standard error.
#pragma once

#include <string>

#include "tools/failure.h"
#include "tools/json.h"

namespace tool {

/// {"schema":1,"command":...,"result":...}
Json SuccessEnvelope(const std::string& command, const Json& result);

/// {"schema":1,"command":...,"error":{"code","name","daemon","message"}}, with
/// "result" before "error" when the failure has something to tell.
Json FailureEnvelope(const std::string& command, const Failure& failure);

/// One line, ended by a newline. Broken UTF-8 is replaced, not refused.
std::string JsonText(const Json& value);

/// "networkgrpc: MESSAGE" and a newline.
std::string ErrorLine(const Failure& failure);

}  // namespace tool
