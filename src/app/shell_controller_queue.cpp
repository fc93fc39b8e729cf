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
    std::vector<transfer::TransferQueueItem> const jobs = transferQueue_.queue().snapshot();
    std::size_t running = 0;
    std::size_t completed = 0;
    std::size_t failed = 0;
    for (auto const& job : jobs) {
        running += job.state == transfer::JobState::Running ? 1 : 0;
        completed += job.state == transfer::JobState::Completed ? 1 : 0;
        failed += job.state == transfer::JobState::Failed ? 1 : 0;
    }
    if (queueSummary_) {
        queueSummary_->setText(QStringLiteral("Queue: %1 total | Running: %2 | Completed: %3 | Failed: %4")
                                   .arg(jobs.size())
                                   .arg(running)
                                   .arg(completed)
                                   .arg(failed));
    }
    if (clearQueueButton_) {
        clearQueueButton_->setEnabled(!jobs.empty());
    }
    if (queueTableDataSource_ && queueTable_) {
        std::vector<QueueRow> rows;
        rows.reserve(jobs.size());
        for (auto const& job : jobs) {
            rows.push_back(queueRowFromItem(job));
        }
        queueTableDataSource_->setItems(std::move(rows));
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
