#include "app/pane/perch_pane_table_view.hpp"

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_row_view.hpp"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QPainter>

namespace perchftp::app {

namespace {

// The panes offer copies only: a drop never takes the user's files away from where they were.
template <typename DropEvent>
void proposeCopy(DropEvent* event)
{
    if (event->possibleActions() & Qt::CopyAction) {
        event->setDropAction(Qt::CopyAction);
    }
}

} // namespace

void PerchPaneCellDelegate::initStyleOption(QStyleOptionViewItem* option, QModelIndex const& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
}

PerchPaneTableView::PerchPaneTableView(QWidget* parent) : QTableView(parent)
{
    setItemDelegate(new PerchPaneCellDelegate(this));
    // The style fills a selected row with the highlight before the cells are drawn; the rounded
    // band painted underneath must show through instead.
    QPalette clearHighlight = palette();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        clearHighlight.setColor(group, QPalette::Highlight, Qt::transparent);
    }
    setPalette(clearHighlight);
}

void PerchPaneTableView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton && selectionModel() != nullptr) {
        int const row = rowAt(event->position().toPoint().y());
        if (row < 0) {
            // A right click on empty space keeps the selection; the item view would clear it.
            event->accept();
            return;
        }
        if (!selectionModel()->isRowSelected(row, QModelIndex())) {
            selectionModel()->setCurrentIndex(model()->index(row, 0),
                                              QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        }
    }
    QTableView::mousePressEvent(event);
}

void PerchPaneTableView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton && rowAt(event->position().toPoint().y()) < 0) {
        event->accept();
        return;
    }
    QTableView::mouseReleaseEvent(event);
}

void PerchPaneTableView::contextMenuEvent(QContextMenuEvent* event)
{
    int row = rowAt(event->pos().y());
    if (event->reason() == QContextMenuEvent::Keyboard && currentIndex().isValid()) {
        row = currentIndex().row();
    }
    emit contextMenuRequestedForRow(row, event->globalPos());
    event->accept();
}

void PerchPaneTableView::focusInEvent(QFocusEvent* event)
{
    QTableView::focusInEvent(event);
    bool const byKeyboard = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (!byKeyboard || model() == nullptr || model()->rowCount() == 0 || selectionModel() == nullptr
        || selectionModel()->hasSelection()) {
        return;
    }
    QModelIndex const current = currentIndex().isValid() ? currentIndex() : model()->index(0, 0);
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void PerchPaneTableView::paintEvent(QPaintEvent* event)
{
    paintRows(event->rect());
    QTableView::paintEvent(event);
}

void PerchPaneTableView::paintRows(QRect const& area)
{
    if (model() == nullptr || model()->rowCount() == 0) {
        return;
    }
    // Rows have no gaps, so an area whose top is on no row lies below the last one.
    int const firstRow = rowAt(area.top());
    if (firstRow < 0) {
        return;
    }
    int lastRow = rowAt(area.bottom());
    if (lastRow < 0) {
        lastRow = model()->rowCount() - 1;
    }
    QPainter painter(viewport());
    for (int row = firstRow; row <= lastRow; ++row) {
        QRect const bounds(0, rowViewportPosition(row), viewport()->width(), rowHeight(row));
        PerchPaneRowView const rowView(row);
        rowView.drawBackground(painter, bounds);
        if (selectionModel() != nullptr && selectionModel()->isRowSelected(row, QModelIndex())) {
            rowView.drawSelection(painter, bounds);
        }
    }
}

void PerchPaneTableView::dragEnterEvent(QDragEnterEvent* event)
{
    proposeCopy(event);
    QTableView::dragEnterEvent(event);
}

void PerchPaneTableView::dragMoveEvent(QDragMoveEvent* event)
{
    proposeCopy(event);
    QTableView::dragMoveEvent(event);
}

void PerchPaneTableView::dropEvent(QDropEvent* event)
{
    proposeCopy(event);
    QTableView::dropEvent(event);
}

} // namespace perchftp::app
