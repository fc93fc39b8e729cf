#include "app/pane/perch_pane_row_view.hpp"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QRect>

namespace perchftp::app {

namespace {

QColor const kEvenRowColour = QColor::fromRgbF(0.24f, 0.24f, 0.24f);
QColor const kOddRowColour = QColor::fromRgbF(0.0f, 0.0f, 0.0f);
QColor const kSelectionColour = QColor::fromRgbF(0.2f, 0.46f, 0.82f, 0.55f);

} // namespace

void PerchPaneRowView::drawBackground(QPainter& painter, QRect const& bounds) const
{
    painter.fillRect(bounds, m_displayRow % 2 == 0 ? kEvenRowColour : kOddRowColour);
}

void PerchPaneRowView::drawSelection(QPainter& painter, QRect const& bounds) const
{
    QRectF const inset = QRectF(bounds).adjusted(kSelectionInset, kSelectionInset, -kSelectionInset,
                                                 -kSelectionInset);
    QPainterPath rounded;
    rounded.addRoundedRect(inset, kSelectionRadius, kSelectionRadius);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.fillPath(rounded, kSelectionColour);
    painter.restore();
}

} // namespace perchftp::app
