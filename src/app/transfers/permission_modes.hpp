#pragma once

#include <QString>

// Permission texts as users type them and as listings print them.
namespace perchftp::app::detail {

// The mode (0 to 07777) of an octal text of three or four digits, or of a symbolic text of nine
// characters with an optional leading type character ("-rwxr-xr-x", "rwsr-xr-x"); -1 when the
// text is neither. Blanks anywhere are ignored. A misplaced "r", "w", "x" or "t" is taken without
// effect, while a misplaced "s", "S" or "T" refuses the whole text.
int parsePermissionMode(QString const& text);

// The octal digits of a text that parsePermissionMode() accepts ("drwxr-xr-x" gives "755"),
// else the text itself; a null text gives "".
QString permissionDisplayFromModeString(QString const& text);

} // namespace perchftp::app::detail
