#pragma once

#include "transfer/transfer_queue.hpp"

#include <QAbstractTableModel>
#include <QString>

#include <vector>

namespace perchftp::app {

// One job as the queue table shows it. The row carries neither the job's id nor its error: the
// table does not tell why a job failed.
struct QueueRow {
    QString file;
    QString status;
    QString timestamp;
    double progressValue = 0.0;
};

// "Queued", "Running", ... for the seven states, "Unknown" for any other value.
QString queueStateLabel(transfer::JobState state);

// The row of one job: the file name of the local path for an upload, of the remote path for a
// download, the whole path when that name is empty, "item" when the text is not UTF-8.
QueueRow queueRowFromItem(transfer::TransferQueueItem const& item);

// The queue table's rows: file, progress, status, timestamp. It holds the rows of the last
// reload and nothing else; every reload replaces them all.
class PerchQueueTableDataSource : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { FileColumn, ProgressColumn, StatusColumn, TimestampColumn, ColumnCount };
    static constexpr int ProgressValueRole = Qt::UserRole + 1;

    using QAbstractTableModel::QAbstractTableModel;

    std::vector<QueueRow> const& items() const { return items_; }
    void setItems(std::vector<QueueRow> items);

    int rowCount(QModelIndex const& parent = {}) const override;
    int columnCount(QModelIndex const& parent = {}) const override;
    QVariant data(QModelIndex const& index, int role = Qt::DisplayRole) const override;

private:
    std::vector<QueueRow> items_;
};

} // namespace perchftp::app
