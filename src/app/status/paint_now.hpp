#pragma once

#include <QRect>

class QWidget;

namespace perchftp::app {

// Paints an area of a shown window (in the window's own coordinates), with every child widget
// over it, into the window's backing store and hands it to the display server at once.
//
// For the moments before a call that blocks the main thread: the usual repaint() waits on the
// window system and leaves requests in the connection's output buffer, so part of a freshly
// shown panel could stay unpainted until the event loop runs again. No event is processed here.
void paintWindowAreaNow(QWidget* window, QRect const& area);

} // namespace perchftp::app
