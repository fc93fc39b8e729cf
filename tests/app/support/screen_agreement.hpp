#pragma once

#include <QImage>
#include <QLabel>
#include <QPoint>
#include <QRect>

namespace perchftp::test {

// How much of the label's place in a picture of the screen agrees with a fresh rendering of its
// window there: the share of equal pixels, 0 when the place is not in the picture.
// `windowOrigin` is where the window's top-left corner stands in the picture.
inline double shareDrawnAsRendered(QImage const& screen, QPoint windowOrigin, QLabel* label)
{
    QWidget* window = label->window();
    QRect const inWindow(label->mapTo(window, QPoint()), label->size());
    QImage const shown = screen.copy(inWindow.translated(windowOrigin)).convertToFormat(QImage::Format_RGB32);
    QImage const expected = window->grab(inWindow).toImage().convertToFormat(QImage::Format_RGB32);
    if (shown.isNull() || shown.size() != expected.size()) {
        return 0;
    }
    qsizetype same = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            same += shown.pixel(x, y) == expected.pixel(x, y) ? 1 : 0;
        }
    }
    return static_cast<double>(same) / static_cast<double>(shown.width() * shown.height());
}

} // namespace perchftp::test
