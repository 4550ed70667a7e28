// Strings from outside, such as names that a device reports, made safe to print.
// Strings are UTF-8, whatever the locale of the process.
#pragma once

#include <string>

namespace terminal {

/// The string as a terminal can show it in one line. Characters that are not
/// printable, such as a line feed, an escape, a mark that turns the direction of
/// writing or a space of no width, and bytes that are not UTF-8 are replaced by an
/// escape: \n, \r, \t, \xNN for a byte, \uNNNN or \UNNNNNNNN for a character. All
/// else, backslashes included, is unchanged.
std::string Printable(const std::string& text);

/// The text of a JSON document with such characters as \uNNNN. Line feeds and
/// other characters below U+0020 can only stand between values: they stay.
std::string EscapedInJson(const std::string& json);

/// The number of columns that a printable string occupies: 0 for a combining
/// accent, 2 for a wide ideograph.
int Width(const std::string& printable);

}  // namespace terminal
