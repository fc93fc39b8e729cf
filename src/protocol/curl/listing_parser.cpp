#include "protocol/curl/listing_parser.hpp"

#include <limits>

namespace perchftp::protocol::curl::detail {

namespace {

bool isTrimmed(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isStreamSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

bool isSkippedName(std::string_view name)
{
    return name.empty() || name == "*" || name == "." || name == "..";
}

struct LineReading {
    std::string name;
    bool isDirectory = false;
    std::uint64_t size = 0;
};

// Reads a line with blanks as columns: the last token names it, the size sits in the fifth
// column, except on SFTP where it is read from the last one.
void readColumns(std::string_view line, std::vector<std::string_view> const& tokens,
                 bool sizeFromLastToken, LineReading& reading)
{
    reading.isDirectory = (line.front() == 'd' && tokens.size() >= 9) || contains(line, "<DIR>");
    if (tokens.size() >= 5) {
        reading.size = parseSize(sizeFromLastToken ? tokens.back() : tokens[4]);
    }
    reading.name = std::string(tokens.back());
}

RemoteEntry makeEntry(LineReading&& reading)
{
    RemoteEntry entry;
    entry.name = std::move(reading.name);
    entry.isDirectory = reading.isDirectory;
    entry.size = reading.size;
    return entry;
}

void describeFromColumns(std::vector<std::string_view> const& tokens, RemoteEntry& entry)
{
    if (tokens.empty()) {
        return;
    }
    char const kind = tokens.front().front();
    if (kind != '-' && kind != 'd' && kind != 'l') {
        return;
    }
    entry.permissions = std::string(tokens.front());
    if (tokens.size() >= 8) {
        entry.modifiedAt = joinTokens(tokens, 5, 8);
    }
}

bool readFirstPass(std::vector<std::string_view> const& lines, bool sizeFromLastToken,
                   std::vector<RemoteEntry>& entries)
{
    bool anyEntry = false;
    std::vector<std::string_view> tokens;
    for (std::string_view const line : lines) {
        if (line.empty() || line == ".." || line == ".") {
            continue;
        }
        LineReading reading;
        bool const hasBlank = looksLikeDirectoryListingLine(line);
        // The columns of a line with a blank serve both its name and its description; they are
        // the same whichever rule named the line, so they are split once.
        if (hasBlank) {
            tokenize(line, tokens);
        }
        if (!parseMlsdLine(line, reading.name, reading.isDirectory, reading.size)) {
            if (hasBlank) {
                if (tokens.empty()) {
                    continue;
                }
                readColumns(line, tokens, sizeFromLastToken, reading);
            } else if (!parseFallbackLine(line, reading.name, reading.isDirectory, reading.size)) {
                continue;
            }
        }
        if (isSkippedName(reading.name)) {
            continue;
        }
        RemoteEntry entry = makeEntry(std::move(reading));
        if (hasBlank) {
            describeFromColumns(tokens, entry);
        }
        entries.push_back(std::move(entry));
        anyEntry = true;
    }
    return anyEntry;
}

void readSecondPass(std::vector<std::string_view> const& lines, std::vector<RemoteEntry>& entries)
{
    for (std::string_view const line : lines) {
        if (line.empty()) {
            continue;
        }
        LineReading reading;
        if (!parseMlsdLine(line, reading.name, reading.isDirectory, reading.size)
            && !parseFallbackLine(line, reading.name, reading.isDirectory, reading.size)) {
            continue;
        }
        if (isSkippedName(reading.name)) {
            continue;
        }
        entries.push_back(makeEntry(std::move(reading)));
    }
}

} // namespace

std::vector<RemoteEntry> parseListing(std::string_view body, std::string const& protocol)
{
    std::vector<std::string_view> const lines = splitLines(body);
    std::vector<RemoteEntry> entries;
    entries.reserve(lines.size());
    if (!readFirstPass(lines, protocol == "sftp", entries)) {
        readSecondPass(lines, entries);
    }
    return entries;
}

std::string_view trim(std::string_view text)
{
    while (!text.empty() && isTrimmed(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isTrimmed(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::vector<std::string_view> splitLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        std::size_t const end = text.find('\n');
        lines.push_back(trim(text.substr(0, end)));
        if (end == std::string_view::npos) {
            break;
        }
        text.remove_prefix(end + 1);
    }
    return lines;
}

void tokenize(std::string_view line, std::vector<std::string_view>& tokens)
{
    tokens.clear();
    std::size_t position = 0;
    while (position < line.size()) {
        while (position < line.size() && isStreamSpace(line[position])) {
            ++position;
        }
        std::size_t const start = position;
        while (position < line.size() && !isStreamSpace(line[position])) {
            ++position;
        }
        if (position > start) {
            tokens.push_back(line.substr(start, position - start));
        }
    }
}

std::string joinTokens(std::vector<std::string_view> const& tokens, std::size_t first, std::size_t last)
{
    if (first >= last || first >= tokens.size()) {
        return {};
    }
    std::string joined;
    for (std::size_t index = first; index < last && index < tokens.size(); ++index) {
        if (index > first) {
            joined += ' ';
        }
        joined += tokens[index];
    }
    return joined;
}

// The rules of strtoull in base 10, without its copy and its locale: leading white space, one
// sign ("-" negates modulo 2^64), then digits up to the first other character.
std::uint64_t parseSize(std::string_view text)
{
    std::size_t position = 0;
    while (position < text.size() && isStreamSpace(text[position])) {
        ++position;
    }
    bool negative = false;
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) {
        negative = text[position] == '-';
        ++position;
    }
    std::uint64_t value = 0;
    std::size_t const firstDigit = position;
    for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position) {
        auto const digit = static_cast<std::uint64_t>(text[position] - '0');
        if (value > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) {
            return 0;
        }
        value = value * 10 + digit;
    }
    if (position == firstDigit) {
        return 0;
    }
    return negative ? 0 - value : value;
}

bool parseMlsdLine(std::string_view line, std::string& name, bool& isDirectory, std::uint64_t& size)
{
    if (!contains(line, "type=") || !contains(line, "size=")) {
        return false;
    }
    std::size_t const lastSemicolon = line.rfind(';');
    if (lastSemicolon == std::string_view::npos || lastSemicolon + 1 >= line.size()) {
        return false;
    }
    std::string_view const candidate = trim(line.substr(lastSemicolon + 1));
    if (candidate.empty()) {
        return false;
    }
    name = std::string(candidate);
    isDirectory = contains(line, "type=dir;");
    std::size_t const sizeStart = line.find("size=") + 5;
    std::size_t const sizeEnd = line.find(';', sizeStart);
    std::string_view const sizeText = line.substr(sizeStart, sizeEnd == std::string_view::npos
                                                                 ? std::string_view::npos
                                                                 : sizeEnd - sizeStart);
    size = sizeText.empty() ? 0 : parseSize(sizeText);
    return true;
}

bool looksLikeDirectoryListingLine(std::string_view line)
{
    return contains(line, " ");
}

bool parseFallbackLine(std::string_view line, std::string& name, bool& isDirectory, std::uint64_t& size)
{
    if (line == "." || line == ".." || line.empty() || startsWith(line, "total ") || startsWith(line, "total")) {
        return false;
    }
    name = std::string(line);
    isDirectory = false;
    size = 0;
    return true;
}

} // namespace perchftp::protocol::curl::detail
