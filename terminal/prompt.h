// A yes/no question to a person: asked on standard error, answered by a line of
// standard input.
#pragma once

#include <string>

namespace terminal {

/// True if standard input and standard error are terminals.
bool HasPerson();

/// Prints the question, followed by the choice, and waits for the answer. True
/// for "y", "Y" and "yes"; false for any other line and at the end of the input.
bool AnswersYes(const std::string& question);

/// The same, also false if no line is complete within `seconds`. The choice
/// names that limit.
bool AnswersYesWithin(double seconds, const std::string& question);

}  // namespace terminal
