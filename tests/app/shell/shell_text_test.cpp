// The shell's pure text rules: the form's fields, the rows of a remote listing and of the queue.
#include "app/queue/queue_table_model.hpp"
#include "app/remote_rows.hpp"
#include "app/shell_text.hpp"

#include <gtest/gtest.h>

#include <climits>

namespace perchftp::app {
namespace {

TEST(ShellText, APortFieldIsReadAsItsLeadingIntegerClampedToTheIntRange)
{
    std::pair<char const*, int> const rows[] = {{"21", 21}, {"  2121", 2121}, {"22abc", 22}, {"+990", 990}, {"-5", -5},
        {"abc", 0}, {"", 0}, {"- 5", 0}, {"99999999999999", INT_MAX}, {"-99999999999999", INT_MIN}};
    for (auto const& [text, value] : rows) {
        EXPECT_EQ(detail::leadingIntValue(text), value) << '"' << text << '"';
    }
}

TEST(ShellText, RemoteRowsKeepTheServersOrderAndJoinTheirPathsToTheBase)
{
    std::tuple<char const*, char const*, char const*> const joins[] = {{"/", "a", "/a"}, {"/srv", "a", "/srv/a"},
        {"/srv/", "a", "/srv/a"}, {"/srv", "", "/srv"}, {"", "", "/"}, {"rel", "a", "rel/a"}};
    for (auto const& [base, name, joined] : joins) {
        EXPECT_EQ(appendPathComponent(base, name), joined) << base << " + " << name;
    }
    PaneEntries const rows = remotePaneRows({{"b.txt", false, 2048, "-rw-r--r--", "Jan 1 10:00"},
        {"a", true, 4096, "", ""}, {std::string("bad\xff", 4), false, 1, "", ""}}, QStringLiteral("/srv"));
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].path, "/srv/b.txt");
    EXPECT_EQ(rows[0].size, "2048") << "a file's size is its bytes";
    EXPECT_TRUE(rows[1].dir);
    EXPECT_EQ(rows[1].size, "") << "a folder shows no size but keeps it for sorting";
    EXPECT_EQ(rows[1].sizeValue, 4096u);
    EXPECT_EQ(rows[2].name, "") << "a name that is not UTF-8";
    EXPECT_EQ(rows[2].path, "/srv");
}

TEST(QueueRows, StatesHaveTheirLabelsAndTheFileIsTheNameOnTheTransfersSourceSide)
{
    QStringList labels;
    for (std::uint32_t value = 0; value <= 7; ++value) {
        labels << queueStateLabel(static_cast<transfer::JobState>(value));
    }
    EXPECT_EQ(labels, (QStringList{"Queued", "Running", "Paused", "Skipped", "Completed", "Failed", "Canceled", "Unknown"}));

    struct Row {
        transfer::JobType type;
        std::string localPath;
        QString file;
    } const rows[] = {
        {transfer::JobType::Upload, "/home/a/report.pdf", "report.pdf"},
        {transfer::JobType::Download, "/home/a/report.pdf", "x.bin"},
        {transfer::JobType::Upload, "/home/a/folder/", "/home/a/folder/"}, // an empty name shows the whole path
        {transfer::JobType::Upload, "/tmp/caf\xe9.txt", "item"},
    };
    for (Row const& row : rows) {
        transfer::TransferQueueItem item;
        item.type = row.type;
        item.localPath = row.localPath;
        item.remotePath = "/srv/x.bin";
        item.timestamp = std::string("\xff\xfe");
        EXPECT_EQ(queueRowFromItem(item).file, row.file) << row.localPath;
        EXPECT_EQ(queueRowFromItem(item).timestamp, "");
    }
}

} // namespace
} // namespace perchftp::app
