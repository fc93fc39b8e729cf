#pragma once

#include <QString>

#include <string>

// Small text rules the shell's workflows share.
namespace perchftp::app::detail {

// The UTF-8 bytes of a text; a null text gives the empty string.
std::string qtToCpp(QString const& text);

// Cuts the bytes for which isspace() holds from both ends.
std::string trim(std::string const& text);

// Lowers "A" to "Z" and nothing else, so that bytes of multi-byte characters stay.
std::string lowerAscii(std::string text);

// 22 for exactly "sftp", 21 for every other name.
int defaultPortForProtocol(std::string const& protocol);

// The integer a text field holds the way a desktop text field reads it: blanks, then an optional
// sign, then digits up to the first non-digit; 0 when there are none. Saturates at the int range.
int leadingIntValue(QString const& text);

// Whether the bytes are valid UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool isValidUtf8(std::string const& bytes);

// The text of valid UTF-8 bytes, else the replacement given.
QString fromUtf8Or(std::string const& bytes, QString const& replacement);

} // namespace perchftp::app::detail
