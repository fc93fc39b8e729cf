#pragma once

#include <QtGlobal>

class QPainter;
class QRect;

namespace perchftp::app {

// How one row of a pane table is painted behind its cells: even rows dark grey, odd rows black,
// and a selected row as a rounded blue rectangle over that.
class PerchPaneRowView {
public:
    static constexpr int kSelectionInset = 1;
    static constexpr qreal kSelectionRadius = 5.0;

    explicit PerchPaneRowView(qint64 displayRow) : m_displayRow(displayRow) {}

    qint64 displayRow() const { return m_displayRow; }
    void setDisplayRow(qint64 row) { m_displayRow = row; }

    void drawBackground(QPainter& painter, QRect const& bounds) const;
    void drawSelection(QPainter& painter, QRect const& bounds) const;

private:
    qint64 m_displayRow;
};

} // namespace perchftp::app
