#include "app/queue/queue_progress_delegate.hpp"

#include "app/queue/queue_table_model.hpp"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionProgressBar>

#include <algorithm>
#include <cmath>

namespace perchftp::app {

void PerchQueueProgressDelegate::paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const
{
    double const value = std::clamp(index.data(PerchQueueTableDataSource::ProgressValueRole).toDouble(), 0.0, 100.0);
    QStyleOptionProgressBar bar;
    bar.rect = option.rect.adjusted(6, 7, -6, -7);
    bar.state = option.state | QStyle::State_Horizontal;
    bar.palette = option.palette;
    bar.minimum = 0;
    bar.maximum = 100;
    bar.progress = static_cast<int>(std::lround(value));
    bar.textVisible = false;
    QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ProgressBar, &bar, painter, option.widget);
}

} // namespace perchftp::app
