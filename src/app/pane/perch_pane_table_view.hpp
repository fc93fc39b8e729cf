#pragma once

#include <QPointer>
#include <QStyledItemDelegate>
#include <QTableView>

namespace perchftp::app {

class PerchFilePaneController;

// Paints a pane's cells without the style's own selection and focus marks; the table paints the
// rows behind them (PerchPaneRowView).
class PerchPaneCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, QModelIndex const& index) const override;
};

// The table of a file pane. A right click on a row that is not selected selects that row alone
// before the context menu opens, so that the menu acts on what the user points at; a right click
// on a selected row keeps a multiple selection. Rows are striped and the selection is rounded.
// Arriving with Tab in a list where nothing is selected selects the current row: rows carry no
// focus mark, so that the arrow keys start from a row the user can see.
class PerchPaneTableView : public QTableView {
    Q_OBJECT
public:
    explicit PerchPaneTableView(QWidget* parent = nullptr);

    // The pane this table belongs to; kept for the pane's own bookkeeping, not used here.
    PerchFilePaneController* paneController() const { return m_paneController; }
    void setPaneController(PerchFilePaneController* pane) { m_paneController = pane; }

signals:
    // A context menu is wanted for `row` (-1 below the rows) at a global position.
    void contextMenuRequestedForRow(int row, QPoint const& globalPosition);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void paintRows(QRect const& area);

    QPointer<PerchFilePaneController> m_paneController;
};

} // namespace perchftp::app
