#pragma once

#include <QColor>

namespace perchftp::app {

// The dark appearance's signal colours, the ones the desktop uses for go and stop.
inline QColor systemGreenColor()
{
    return QColor(0x30, 0xd1, 0x58);
}

inline QColor systemRedColor()
{
    return QColor(0xff, 0x45, 0x3a);
}

} // namespace perchftp::app
