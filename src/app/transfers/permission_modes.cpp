#include "app/transfers/permission_modes.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>

namespace perchftp::app::detail {

namespace {

constexpr int kRefused = -1;
constexpr int kHighestMode = 07777;
constexpr std::size_t kSymbolicLength = 9;
constexpr std::string_view kTypeCharacters = "-dlsbcp";
constexpr std::array<int, kSymbolicLength> kPositionBits{0400, 0200, 0100, 040, 020, 010, 04, 02, 01};

bool isOctalDigit(char c)
{
    return c >= '0' && c <= '7';
}

int parseOctal(std::string const& digits)
{
    if (digits.size() != 3 && digits.size() != 4) {
        return kRefused;
    }
    int mode = 0;
    for (char const digit : digits) {
        mode = mode * 8 + (digit - '0');
    }
    return mode < 0 || mode > kHighestMode ? kRefused : mode;
}

// The bits one character adds at one position (0 to 8), or kRefused.
int symbolicBits(char c, std::size_t position)
{
    int const bit = kPositionBits[position];
    std::size_t const slot = position % 3; // 0 read, 1 write, 2 execute
    switch (c) {
    case '-':
        return 0;
    case 'r':
        return slot == 0 ? bit : 0;
    case 'w':
        return slot == 1 ? bit : 0;
    case 'x':
        return slot == 2 ? bit : 0;
    case 's':
    case 'S': {
        int const special = position == 2 ? 04000 : position == 5 ? 02000 : kRefused;
        if (special == kRefused) {
            return kRefused;
        }
        return c == 's' ? special | bit : special;
    }
    case 't':
        return position == 8 ? 01000 | bit : 0;
    case 'T':
        return position == 8 ? 01000 : kRefused;
    default:
        return kRefused;
    }
}

int parseSymbolic(std::string_view text)
{
    if (text.size() >= kSymbolicLength + 1 && kTypeCharacters.find(text.front()) != std::string_view::npos) {
        text.remove_prefix(1);
    }
    if (text.size() != kSymbolicLength) {
        return kRefused;
    }
    int mode = 0;
    for (std::size_t position = 0; position < kSymbolicLength; ++position) {
        int const bits = symbolicBits(text[position], position);
        if (bits == kRefused) {
            return kRefused;
        }
        mode |= bits;
    }
    return mode;
}

} // namespace

int parsePermissionMode(QString const& text)
{
    if (text.isNull()) {
        return kRefused;
    }
    QByteArray const trimmed = text.trimmed().toUtf8();
    std::string bytes;
    std::copy_if(trimmed.begin(), trimmed.end(), std::back_inserter(bytes),
        [](char c) { return std::isspace(static_cast<unsigned char>(c)) == 0; });
    if (bytes.empty()) {
        return kRefused;
    }
    if (std::all_of(bytes.begin(), bytes.end(), isOctalDigit)) {
        return parseOctal(bytes);
    }
    return parseSymbolic(bytes);
}

QString permissionDisplayFromModeString(QString const& text)
{
    int const mode = parsePermissionMode(text);
    if (mode >= 0) {
        return QString::number(mode, 8);
    }
    return text.isNull() ? QStringLiteral("") : text;
}

} // namespace perchftp::app::detail
