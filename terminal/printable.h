// Strings from outside, such as names that a device reports, made safe to print.
// Strings are UTF-8, whatever the locale of the process.
#pragma once

#include <string>

namespace terminal {

/// The string as a terminal can show it in one line. Characters that are not
/// printable, such as a line feed or an escape, and bytes that are not UTF-8 are
/// replaced by an escape: \n, \r, \t or \xNN for each byte. All else, backslashes
/// included, is unchanged.
std::string Printable(const std::string& text);

/// The number of columns that a printable string occupies: 0 for a combining
/// accent, 2 for a wide ideograph.
int Width(const std::string& printable);

}  // namespace terminal
