// The queue view: the summary line, the clear button, the table of jobs and the activity log.
#include "app/shell_controller.hpp"

#include "app/queue/queue_table_model.hpp"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>

namespace perchftp::app {

namespace {

// Adds one line at the end of the view and scrolls to it. A null view takes nothing.
void appendStatusLine(QPlainTextEdit* view, std::string const& line)
{
    if (!view) {
        return;
    }
    view->appendPlainText(QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size())));
    view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
}

} // namespace

// One snapshot feeds the counts and the rows, so that the two always agree.
void PerchFtpShellController::reloadQueueSummary()
{
    queueViewMirror_.reset(transferQueue_.queue().snapshot());
    showQueueCounts();
    if (queueTableDataSource_ && queueTable_) {
        std::vector<QueueRow> rows;
        rows.reserve(queueViewMirror_.jobs().size());
        for (auto const& job : queueViewMirror_.jobs()) {
            rows.push_back(queueRowFromItem(job));
        }
        queueTableDataSource_->setItems(std::move(rows));
    }
}

// The reload of a queue observer. It leaves the view as the whole reload would, doing only the
// work that the changed job calls for: nothing when an earlier observer has shown the change.
void PerchFtpShellController::reloadQueueSummary(transfer::TransferQueueItem const& changed)
{
    std::size_t row = 0;
    switch (queueViewMirror_.apply(changed, row)) {
    case QueueViewMirror::Change::None:
        return;
    case QueueViewMirror::Change::Unknown:
        reloadQueueSummary();
        return;
    case QueueViewMirror::Change::Row:
        break;
    }
    showQueueCounts();
    if (queueTableDataSource_ && queueTable_) {
        queueTableDataSource_->setItem(row, queueRowFromItem(changed));
    }
}

void PerchFtpShellController::showQueueCounts()
{
    QueueViewMirror::Counts const& counts = queueViewMirror_.counts();
    if (queueSummary_) {
        queueSummary_->setText(QStringLiteral("Queue: %1 total | Running: %2 | Completed: %3 | Failed: %4")
                                   .arg(counts.total)
                                   .arg(counts.running)
                                   .arg(counts.completed)
                                   .arg(counts.failed));
    }
    if (clearQueueButton_) {
        clearQueueButton_->setEnabled(counts.total != 0);
    }
}

// No job can be running here: every transfer runs inside one action on the main thread.
void PerchFtpShellController::clearTransferQueue()
{
    transferQueue_.queue().clear();
    if (queueTableDataSource_) {
        queueTableDataSource_->setItems({});
    }
    reloadQueueSummary();
    setStatusText(QStringLiteral("Transfer queue cleared."), false);
}

void PerchFtpShellController::logMessage(std::string const& line)
{
    appendStatusLine(queueLog_, line);
}

} // namespace perchftp::app
