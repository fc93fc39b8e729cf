#include "app/queue/queue_table_model.hpp"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>

namespace perchftp::app {
namespace {

using transfer::JobState;
using transfer::JobType;

transfer::TransferQueueItem job(JobType type, std::string localPath, std::string remotePath)
{
    transfer::TransferQueueItem item;
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
        labels << queueStateLabel(static_cast<JobState>(value));
    }
    EXPECT_EQ(labels, (QStringList{"Queued", "Running", "Paused", "Skipped", "Completed", "Failed", "Canceled", "Unknown"}));
}

TEST(QueueRows, TheFileIsTheLocalNameForUploadsTheRemoteNameForDownloadsAndItemForTextThatIsNotUtf8)
{
    struct Row {
        JobType type;
        std::string localPath;
        QString file;
    } const rows[] = {
        {JobType::Upload, "/home/a/report.pdf", "report.pdf"},
        {JobType::Download, "/home/a/report.pdf", "x.bin"},
        {JobType::Upload, "/home/a/folder/", "/home/a/folder/"}, // an empty name shows the whole path
        {JobType::Upload, "plain.txt", "plain.txt"},
        {JobType::Upload, "/tmp/café.txt", QStringLiteral("café.txt")},
        {JobType::Upload, "/tmp/caf\xe9.txt", "item"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(queueRowFromItem(job(row.type, row.localPath, "/srv/x.bin")).file, row.file) << row.localPath;
    }
    auto item = job(JobType::Upload, "/tmp/a", "/srv");
    item.timestamp = std::string("\xff\xfe");
    EXPECT_EQ(queueRowFromItem(item).timestamp, "");
}

TEST(QueueRows, TheModelServesFourColumnsAndTheProgressAsANumber)
{
    PerchQueueTableDataSource model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    auto failed = job(JobType::Download, "/tmp/a", "/srv/big.iso");
    failed.state = JobState::Failed;
    failed.progressPercent = 42.5;
    failed.error = "ftp: connection reset";
    model.setItems({queueRowFromItem(failed), queueRowFromItem(job(JobType::Upload, "/tmp/b", "/srv"))});

    ASSERT_EQ(model.rowCount(), 2);
    ASSERT_EQ(model.columnCount(), 4);
    EXPECT_EQ(model.index(0, PerchQueueTableDataSource::FileColumn).data().toString(), "big.iso");
    EXPECT_EQ(model.index(0, PerchQueueTableDataSource::StatusColumn).data().toString(), "Failed")
        << "the row tells the state, not the error";
    EXPECT_DOUBLE_EQ(model.index(0, PerchQueueTableDataSource::ProgressColumn)
                         .data(PerchQueueTableDataSource::ProgressValueRole)
                         .toDouble(),
        42.5);
    EXPECT_EQ(model.index(0, PerchQueueTableDataSource::TimestampColumn).data().toString(), "2026-11-23 10:00:00");
    model.setItems({});
    EXPECT_EQ(model.rowCount(), 0);
}

} // namespace
} // namespace perchftp::app
