#pragma once

#include <QStyledItemDelegate>

namespace perchftp::app {

// Draws the progress column of the queue table as a determinate bar from 0 to 100.
class PerchQueueProgressDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const override;
};

} // namespace perchftp::app
