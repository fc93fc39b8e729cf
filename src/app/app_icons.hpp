#pragma once

#include <QIcon>
#include <QString>

namespace perchftp::app {

// Registers the shell's icons and licence text with the resource system; idempotent.
void ensureShellResources();

// The program's own icon, from the bundled PNGs; a null icon only if the resources are missing.
QIcon appIconImage();

// The icon for one of the shell's symbol names ("network", "trash", ...): the desktop theme's
// icon of the same meaning, else the bundled SVG, else the generic action icon.
QIcon themedIcon(QString const& symbolName);

} // namespace perchftp::app
