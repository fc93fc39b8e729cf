#include "app/queue/queue_table_model.hpp"

#include "app/shell_text.hpp"

#include <QFont>

#include <array>

namespace perchftp::app {

QString queueStateLabel(transfer::JobState state)
{
    static constexpr std::array<char const*, 7> kLabels{
        "Queued", "Running", "Paused", "Skipped", "Completed", "Failed", "Canceled"};
    auto const index = static_cast<std::size_t>(state);
    return index < kLabels.size() ? QString::fromLatin1(kLabels[index]) : QStringLiteral("Unknown");
}

QueueRow queueRowFromItem(transfer::TransferQueueItem const& item)
{
    std::string const& path = item.type == transfer::JobType::Download ? item.remotePath : item.localPath;
    std::size_t const slash = path.rfind('/');
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.empty()) {
        name = path;
    }
    QueueRow row;
    row.file = detail::fromUtf8Or(name, QStringLiteral("item"));
    row.status = queueStateLabel(item.state);
    row.timestamp = detail::fromUtf8Or(item.timestamp, QString());
    row.progressValue = item.progressPercent;
    return row;
}

void PerchQueueTableDataSource::setItems(std::vector<QueueRow> items)
{
    beginResetModel();
    items_ = std::move(items);
    endResetModel();
}

int PerchQueueTableDataSource::rowCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

int PerchQueueTableDataSource::columnCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PerchQueueTableDataSource::data(QModelIndex const& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    QueueRow const& row = items_[static_cast<std::size_t>(index.row())];
    if (role == ProgressValueRole) {
        return row.progressValue;
    }
    if (role == Qt::FontRole && index.column() != ProgressColumn) {
        QFont font;
        font.setWeight(QFont::Medium);
        return font;
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (index.column()) {
    case FileColumn:
        return row.file;
    case StatusColumn:
        return row.status;
    case TimestampColumn:
        return row.timestamp;
    case ProgressColumn:
        return row.progressValue;
    default:
        return {};
    }
}

} // namespace perchftp::app
