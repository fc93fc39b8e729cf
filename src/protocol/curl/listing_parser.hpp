#pragma once

#include "protocol/remote_session.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Turns the raw reply of a directory listing into entries. The format is never detected: each
// line is judged by itself (MLSD facts, then any line with a blank as columns, then a bare name),
// and a second, laxer pass runs when the first found nothing at all.
namespace perchftp::protocol::curl::detail {

std::vector<RemoteEntry> parseListing(std::string_view body, std::string const& protocol);

// Removes blanks, tabs, CR and LF from both ends.
std::string_view trim(std::string_view text);
// Splits at LF only and trims every line; empty lines stay, no empty line after a final LF.
std::vector<std::string_view> splitLines(std::string_view text);
// Splits at runs of any white space (blank, tab, LF, VT, FF, CR).
void tokenize(std::string_view line, std::vector<std::string_view>& tokens);
// Tokens [first, last) joined by single blanks; empty when the range is empty or starts past the end.
std::string joinTokens(std::vector<std::string_view> const& tokens, std::size_t first, std::size_t last);

// base 10, leading white space and a sign accepted ("-1" wraps); no digits or overflow give 0.
std::uint64_t parseSize(std::string_view text);

bool parseMlsdLine(std::string_view line, std::string& name, bool& isDirectory, std::uint64_t& size);
// A line with a blank (0x20; a tab does not count) is read as columns.
bool looksLikeDirectoryListingLine(std::string_view line);
// The whole line as a file name, unless it is ".", "..", empty, or starts with "total".
bool parseFallbackLine(std::string_view line, std::string& name, bool& isDirectory, std::uint64_t& size);

} // namespace perchftp::protocol::curl::detail
