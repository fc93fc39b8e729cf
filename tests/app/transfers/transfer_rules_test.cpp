// The text rules of transfers and file operations (permission texts, remote joins, the "already
// exists" reading of a failure) and the queue view's record of what it shows.
#include "app/queue/queue_view_mirror.hpp"
#include "app/transfers/permission_modes.hpp"
#include "app/transfers/transfer_paths.hpp"

#include <gtest/gtest.h>

#include <QString>

#include <utility>

namespace perchftp::app {
namespace {

using namespace detail;

TEST(TransferText, PermissionTextsGiveTheirModesOrAreRefused)
{
    std::pair<QString, int> const accepted[] = {{"644", 0644}, {"0644", 0644}, {"7777", 07777},
        {" 7 5\t5 \n", 0755}, {"rwxr-xr-x", 0755}, {"drwxr-xr-x", 0755}, {"-rw-r--r--", 0644},
        {"rwx r-x r-x", 0755}, {"rwsr-xr-x", 04755}, {"rwSr--r--", 04644}, {"rwxrwsr-x", 02775},
        {"rwxrwxrwt", 01777}, {"rwxrwxrwT", 01776}, {"---------", 0}, {"xwrxwrxwr", 0222}, {"lrwxrwxrwx", 0777},
        {"rtxr-xr-x", 0755 & ~0200},
        {"xrwxrwxrw", 0}}; // letters in the wrong place are taken without effect
    for (auto const& [text, mode] : accepted) {
        EXPECT_EQ(parsePermissionMode(text), mode) << text.toStdString();
    }
    QString const refused[] = {QString(), "", "   \n", "64", "06444", "888", "rwxr-xr-", "xrwxr-xr-x", "rwsr-xr-s",
        "Twxr-xr-x", "rwxTwxr-x", "rwxr-xr-q", "rwxr-xr-x-", "drwxr-xr-xx", "r\u00e9xr-xr-x"};
    for (QString const& text : refused) {
        EXPECT_EQ(parsePermissionMode(text), -1) << '"' << text.toStdString() << '"';
    }

    std::pair<QString, QString> const displays[] = {{"drwxr-xr-x", "755"}, {"0644", "644"}, {"rwsr-xr-x", "4755"},
        {"---------", "0"}, {"weird", "weird"}, {"", ""}};
    for (auto const& [mode, display] : displays) {
        EXPECT_EQ(permissionDisplayFromModeString(mode), display) << mode.toStdString();
    }
    EXPECT_FALSE(permissionDisplayFromModeString(QString()).isNull());
    EXPECT_TRUE(permissionDisplayFromModeString(QString()).isEmpty());
}

TEST(TransferText, RemotePathsJoinPlainNamesWithOneSlashAndAnyMessageHoldingExistReadsAsAlreadyExists)
{
    EXPECT_EQ(joinRemotePath("", "a"), "/a");
    EXPECT_EQ(joinRemotePath("/", "a"), "/a");
    EXPECT_EQ(joinRemotePath("/srv/", "a"), "/srv/a");
    EXPECT_EQ(joinRemotePath("/srv", "a/b"), "/srv/a/b");
    EXPECT_EQ(joinRemotePath("srv", ""), "srv/");
    for (std::string const name : {"", ".", "..", "../up", "/etc", "a/b"}) {
        EXPECT_FALSE(isPlainEntryName(name)) << name;
    }
    EXPECT_TRUE(isPlainEntryName("..hidden"));
    EXPECT_EQ(lastPathComponent("/a/b.txt"), "b.txt");
    EXPECT_EQ(lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(lastPathComponent("name"), "name");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
    std::string const bytes = "/tmp/caf\xe9/x";
    EXPECT_EQ(pathBytes(pathText(bytes)), bytes);
    EXPECT_EQ(pathBytes(QStringLiteral("/tmp/café")), "/tmp/caf\xc3\xa9");

    EXPECT_TRUE(messageLooksLikeAlreadyExists("ftp mkdir: File exists"));
    EXPECT_TRUE(messageLooksLikeAlreadyExists("550 Directory already EXISTS"));
    EXPECT_TRUE(messageLooksLikeAlreadyExists("No such file: it does not exist")) << "deliberately this wide";
    EXPECT_FALSE(messageLooksLikeAlreadyExists("ftp operation failed: Quote command returned error"));
    EXPECT_FALSE(messageLooksLikeAlreadyExists(""));
}

transfer::TransferQueueItem job(std::uint64_t id, transfer::JobState state, double progress = 0.0)
{
    transfer::TransferQueueItem item;
    item.id = id;
    item.state = state;
    item.progressPercent = progress;
    item.timestamp = "2026-11-23 10:00:00";
    return item;
}

TEST(QueueViewMirror, CountsFollowEachChangeAndOnlyWhatIsShownCallsForWork)
{
    using transfer::JobState;
    using Change = QueueViewMirror::Change;
    QueueViewMirror mirror;
    std::size_t row = 99;
    EXPECT_EQ(mirror.apply(job(1, JobState::Queued), row), Change::Unknown) << "a job not shown needs a whole reload";
    mirror.reset({job(4, JobState::Queued), job(5, JobState::Failed), job(6, JobState::Skipped)});
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{3, 0, 0, 1}));
    EXPECT_EQ(mirror.apply(job(4, JobState::Running, 10.0), row), Change::Row);
    EXPECT_EQ(row, 0u);
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{3, 1, 0, 1}));
    EXPECT_EQ(mirror.apply(job(4, JobState::Completed, 100.0), row), Change::Row);
    EXPECT_EQ(mirror.apply(job(5, JobState::Completed, 100.0), row), Change::Row);
    EXPECT_EQ(row, 1u);
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{3, 0, 2, 0}));
    EXPECT_EQ(mirror.jobs()[1].state, JobState::Completed);
    EXPECT_EQ(mirror.apply(job(3, JobState::Running), row), Change::Unknown);
    EXPECT_EQ(mirror.apply(job(7, JobState::Running), row), Change::Unknown);
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{3, 0, 2, 0}));

    transfer::TransferQueueItem same = job(5, JobState::Completed, 100.0);
    same.transferredBytes = 12345; // not shown anywhere
    EXPECT_EQ(mirror.apply(same, row), Change::None);
    same.timestamp = "2026-11-23 10:00:01";
    EXPECT_EQ(mirror.apply(same, row), Change::Row) << "the time is shown";
}

} // namespace
} // namespace perchftp::app
