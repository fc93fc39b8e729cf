#include "app/transfers/permission_modes.hpp"
#include "fuzz_support.hpp"

using perchftp::app::detail::parsePermissionMode;
using perchftp::app::detail::permissionDisplayFromModeString;
using perchftp::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QString const text = QString::fromUtf8(reinterpret_cast<char const*>(data), static_cast<qsizetype>(size));
    int const mode = parsePermissionMode(text);
    require(mode >= -1 && mode <= 07777);
    // Blanks anywhere never change the reading.
    QString blankless = text;
    blankless.removeIf([](QChar c) { return c == u' ' || (c.unicode() >= '\t' && c.unicode() <= '\r'); });
    require(parsePermissionMode(blankless) == mode);

    QString const display = permissionDisplayFromModeString(text);
    if (mode < 0) {
        require(display == text);
        return 0;
    }
    // The proposal is the mode in octal. Read again it gives the same mode, except that one or
    // two digits ("7" for "-------rwx") are no octal text the parser takes.
    require(display == QString::number(mode, 8));
    require(parsePermissionMode(display) == (mode >= 0100 ? mode : -1));
    return 0;
}
