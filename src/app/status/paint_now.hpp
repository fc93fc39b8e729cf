#pragma once

#include <QRect>

class QWidget;

namespace perchftp::app {

// Paints an area of a shown window (in the window's own coordinates), with every child widget
// over it, into the window's backing store and hands it to the display server at once.
//
// For the moments before a call that blocks the main thread. On a real X server, repaint() of a
// panel just shown over the window's content left the parts above the file panes unpainted
// until the event loop ran again; rendering the area straight into the backing store does not
// depend on the repaint bookkeeping. The X or Wayland connection is flushed too, since its
// requests would otherwise wait in its buffer. No event is processed here.
void paintWindowAreaNow(QWidget* window, QRect const& area);

} // namespace perchftp::app
