// A yes/no question to a person: asked on standard error, answered by a line of
// standard input.
#pragma once

#include <functional>
#include <string>

namespace terminal {

/// True if standard input and standard error are terminals.
bool HasPerson();

/// Prints the question, followed by the choice, and waits for the answer. What was typed
/// before it does not count. True
/// for "y", "Y" and "yes"; false for any other line and at the end of the input.
bool AnswersYes(const std::string& question);

/// kNone: nobody has answered, or nobody can any more.
enum class Answer { kYes, kNo, kNone };

/// The same, as long as `goes_on` returns true, which is called several times a second.
Answer Ask(const std::string& question, const std::function<bool()>& goes_on);

}  // namespace terminal
