#include "app/queue/queue_table_model.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QLabel>
#include <QPushButton>
#include <QTableView>

namespace perchftp::test {
namespace {

using transfer::JobState;
using transfer::JobType;
using transfer::TransferQueueItem;

TransferQueueItem job(JobType type, std::string localPath, std::string remotePath)
{
    TransferQueueItem item;
    item.type = type;
    item.localPath = std::move(localPath);
    item.remotePath = std::move(remotePath);
    item.timestamp = "2026-11-23 10:00:00";
    return item;
}

TEST(QueueRows, StatesHaveTheirLabelsAndAnyOtherValueIsUnknown)
{
    QStringList labels;
    for (std::uint32_t value = 0; value <= 7; ++value) {
        labels << app::queueStateLabel(static_cast<JobState>(value));
    }
    EXPECT_EQ(labels,
        (QStringList{"Queued", "Running", "Paused", "Skipped", "Completed", "Failed", "Canceled", "Unknown"}));
}

TEST(QueueRows, TheFileIsTheNameOfTheLocalPathForUploadsAndOfTheRemotePathForDownloads)
{
    EXPECT_EQ(app::queueRowFromItem(job(JobType::Upload, "/home/a/report.pdf", "/srv/x.bin")).file, "report.pdf");
    EXPECT_EQ(app::queueRowFromItem(job(JobType::Download, "/home/a/report.pdf", "/srv/x.bin")).file, "x.bin");
    EXPECT_EQ(app::queueRowFromItem(job(JobType::Upload, "/home/a/folder/", "/srv")).file, "/home/a/folder/")
        << "an empty name shows the whole path";
    EXPECT_EQ(app::queueRowFromItem(job(JobType::Upload, "plain.txt", "/srv")).file, "plain.txt");
}

TEST(QueueRows, TextThatIsNotUtf8BecomesItemAndAnEmptyTimestamp)
{
    auto item = job(JobType::Upload, std::string("/tmp/caf\xe9.txt"), "/srv");
    item.timestamp = std::string("\xff\xfe");
    app::QueueRow const row = app::queueRowFromItem(item);
    EXPECT_EQ(row.file, "item");
    EXPECT_EQ(row.timestamp, "");
    EXPECT_EQ(app::queueRowFromItem(job(JobType::Upload, "/tmp/café.txt", "/srv")).file, QStringLiteral("café.txt"));
}

TEST(QueueRows, TheModelServesFourColumnsAndTheProgressAsANumber)
{
    app::PerchQueueTableDataSource model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    auto failed = job(JobType::Download, "/tmp/a", "/srv/big.iso");
    failed.state = JobState::Failed;
    failed.progressPercent = 42.5;
    failed.error = "ftp: connection reset";
    model.setItems({app::queueRowFromItem(failed), app::queueRowFromItem(job(JobType::Upload, "/tmp/b", "/srv"))});

    ASSERT_EQ(model.rowCount(), 2);
    ASSERT_EQ(model.columnCount(), 4);
    EXPECT_EQ(model.index(0, app::PerchQueueTableDataSource::FileColumn).data().toString(), "big.iso");
    EXPECT_EQ(model.index(0, app::PerchQueueTableDataSource::StatusColumn).data().toString(), "Failed")
        << "the row tells the state, not the error";
    EXPECT_DOUBLE_EQ(
        model.index(0, app::PerchQueueTableDataSource::ProgressColumn).data(app::PerchQueueTableDataSource::ProgressValueRole).toDouble(),
        42.5);
    EXPECT_EQ(model.index(0, app::PerchQueueTableDataSource::TimestampColumn).data().toString(), "2026-11-23 10:00:00");
    model.setItems({});
    EXPECT_EQ(model.rowCount(), 0);
}

class QueueView : public StartedShellTest {
protected:
    void SetUp() override { startShell(); }

    transfer::TransferQueue& queue() { return controller().transferQueue().queue(); }

    std::uint64_t enqueue(std::string const& name)
    {
        return controller().transferQueue().enqueue(JobType::Upload, "ftp", "/tmp/" + name, "/srv/" + name, 1, 3);
    }
};

TEST_F(QueueView, CountsTheRunningCompletedAndFailedJobsAndTheOthersOnlyInTheTotal)
{
    auto const running = enqueue("running");
    auto const completed = enqueue("completed");
    auto const failed = enqueue("failed");
    auto const skipped = enqueue("skipped");
    auto const canceled = enqueue("canceled");
    enqueue("queued");
    queue().simulateProgress(running, 10, 100);
    queue().complete(completed, true, "");
    queue().simulateProgress(failed, 30, 100);
    queue().complete(failed, false, "ftp: broken pipe");
    queue().skip(skipped, "exists");
    queue().cancel(canceled);
    controller().reloadQueueSummary();

    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 6 total | Running: 1 | Completed: 1 | Failed: 1");
    EXPECT_TRUE(controller().clearQueueButton()->isEnabled());
    auto const& rows = controller().queueTableDataSource()->items();
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 6);
    EXPECT_EQ(rows[2].status, "Failed");
    EXPECT_DOUBLE_EQ(rows[2].progressValue, 30.0);
    EXPECT_EQ(rows[3].status, "Skipped");
    EXPECT_EQ(rows[5].file, "queued");
}

TEST_F(QueueView, ClearingEmptiesTheTableAndSaysSoEvenWhenItWasEmpty)
{
    enqueue("one");
    controller().reloadQueueSummary();
    controller().clearQueueButton()->click();
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 0 total | Running: 0 | Completed: 0 | Failed: 0");
    EXPECT_FALSE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 0);
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("✅ Transfer queue cleared."));

    controller().setStatusText(QStringLiteral("other"), true);
    controller().clearTransferQueue();
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("✅ Transfer queue cleared."));
    EXPECT_EQ(enqueue("after"), 2u) << "ids go on after a clear";
}

TEST_F(QueueView, AMissingSummaryButtonOrTableIsSkipped)
{
    enqueue("one");
    controller().setQueueSummary(nullptr);
    controller().setClearQueueButton(nullptr);
    controller().setQueueTable(nullptr);
    controller().reloadQueueSummary();
    EXPECT_TRUE(controller().queueTableDataSource()->items().empty()) << "no table, no rows";
    controller().setQueueTableDataSource(nullptr);
    controller().clearTransferQueue();
    EXPECT_TRUE(queue().snapshot().empty());

    controller().setStatusLabel(nullptr);
    controller().setStatusText(QStringLiteral("nobody shows this"), true);
}

TEST_F(QueueView, LogLinesGoToTheActivityLogInOrder)
{
    controller().logMessage("Connected to example.org");
    controller().logMessage("Remote list failed: ftp: denied");
    EXPECT_EQ(controller().queueLog()->toPlainText(),
        "Connected to example.org\nRemote list failed: ftp: denied");
    controller().setQueueLog(nullptr);
    controller().logMessage("goes nowhere");
}

} // namespace
} // namespace perchftp::test
