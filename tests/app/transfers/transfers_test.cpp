// Uploads and downloads of single files through the real shell and a real FTP server.
#include "connected_shell.hpp"

#include <gtest/gtest.h>

#include "app/queue/queue_table_model.hpp"

#include <QLabel>
#include <QLineEdit>

namespace perchftp::test {
namespace {

using transfer::JobState;
using transfer::JobType;

class Transfers : public ConnectedShellTest {
protected:
    // The two hidden fields, as the panes' selections fill them, then the hidden button.
    void transfer(JobType type, QString const& localPath, QString const& remotePath)
    {
        controller().localTransferField()->setText(localPath);
        controller().remoteTransferField()->setText(remotePath);
        if (type == JobType::Upload) {
            controller().enqueueUpload();
        } else {
            controller().enqueueDownload();
        }
    }
};

TEST_F(Transfers, AnUploadOfTheSelectedFileLandsOnTheServerAndItsJobRunsToCompleted)
{
    std::string const bytes(300000, 'u');
    putLocalFile("report.pdf", bytes);
    selectLocal({"report.pdf"});
    recordQueueRowStates(0);

    controller().centerUploadAction();

    EXPECT_EQ(remoteContent("/report.pdf"), bytes);
    ASSERT_EQ(jobs().size(), 1u);
    transfer::TransferQueueItem const job = jobs().front();
    EXPECT_EQ(job.type, JobType::Upload);
    EXPECT_EQ(job.state, JobState::Completed);
    EXPECT_EQ(job.protocolName, "ftp");
    EXPECT_EQ(job.localPath, local("report.pdf"));
    EXPECT_EQ(job.remotePath, "/report.pdf");
    EXPECT_EQ(job.priority, 1);
    EXPECT_EQ(job.maxRetries, 3);
    EXPECT_EQ(job.transferredBytes, bytes.size());
    EXPECT_EQ(recordedStates(), (QStringList{"Queued", "Running", "Completed"}));
    EXPECT_EQ(banner(), "Transfer completed.");
    EXPECT_FALSE(bannerIsError());
    EXPECT_EQ(controller().remoteTransferField()->text(), "/report.pdf");
    EXPECT_EQ(popupMessage(), "Transfer completed.");
    deliverPostedEvents();
    EXPECT_EQ(popupMessage(), "Uploading 100% (300000 / 300000 bytes)")
        << "the progress texts are posted during the transfer and shown after it, the last one standing";
    EXPECT_TRUE(remotePane().entries().size() == 1 && remotePane().entries().front().name == "report.pdf")
        << "the remote pane lists the new file";
}

TEST_F(Transfers, ADownloadOfTheSelectedFileLandsInTheLocalPanesFolderAndRunsOnlyFromItsFirstProgress)
{
    std::string const bytes(200000, 'd');
    putRemoteFile("/data/archive.tar", bytes);
    remotePane().setPathValue(QStringLiteral("/data"));
    selectRemote({"archive.tar"});
    recordQueueRowStates(0);

    controller().centerDownloadAction();

    EXPECT_EQ(readFile(local("archive.tar")), bytes);
    ASSERT_EQ(jobs().size(), 1u);
    EXPECT_EQ(jobs().front().type, JobType::Download);
    EXPECT_EQ(jobs().front().state, JobState::Completed);
    EXPECT_EQ(jobs().front().localPath, local("archive.tar"));
    EXPECT_EQ(jobs().front().remotePath, "/data/archive.tar");
    EXPECT_EQ(recordedStates(), (QStringList{"Queued", "Running", "Completed"}));
    EXPECT_EQ(popupMessage(), "Transfer completed.");
    EXPECT_EQ(banner(), "Remote listing refreshed.") << "a download lists the remote folder after its own words";
    QStringList localNames;
    for (auto const& entry : localPane().entries()) {
        localNames << entry.name;
    }
    EXPECT_TRUE(localNames.contains("archive.tar")) << "the local pane is listed again";
    deliverPostedEvents();
    EXPECT_TRUE(popupMessage().startsWith("Downloading 100% (200000 / 200000 bytes)")) << popupMessage().toStdString();
}

TEST_F(Transfers, EachSelectedItemRunsToItsEndAndAFailureDoesNotStopTheNext)
{
    putLocalFile("a.txt", "A");
    putLocalFile("b.txt", "B");
    putLocalFile("c.txt", "C");
    selectLocal({"a.txt", "b.txt", "c.txt"});
    server().setReply("STOR b.txt", "553 Refused.");

    controller().centerUploadAction();

    ASSERT_EQ(jobs().size(), 3u);
    EXPECT_EQ(jobs()[0].state, JobState::Completed);
    EXPECT_EQ(jobs()[1].state, JobState::Failed);
    EXPECT_EQ(jobs()[1].error.rfind("ftp upload: ", 0), 0u) << "the session's message, not the event's words: "
                                                            << jobs()[1].error;
    EXPECT_EQ(jobs()[2].state, JobState::Completed);
    EXPECT_EQ(remoteContent("/a.txt"), "A");
    EXPECT_FALSE(remoteExists("/b.txt"));
    EXPECT_EQ(remoteContent("/c.txt"), "C");
}

TEST_F(Transfers, AFailedUploadTellsTheSessionsWordsInTheBannerAndTheJob)
{
    putLocalFile("x.bin", "xyz");
    server().setReply("STOR x.bin", "553 Refused.");
    transfer(JobType::Upload, localText("x.bin"), QStringLiteral("/x.bin"));

    ASSERT_EQ(jobs().size(), 1u);
    EXPECT_EQ(jobs().front().state, JobState::Failed);
    EXPECT_TRUE(bannerIsError());
    EXPECT_EQ(banner(), QStringLiteral("Transfer failed: %1").arg(QString::fromStdString(jobs().front().error)));
    EXPECT_EQ(popupMessage(), "Transfer failed.");
}

TEST_F(Transfers, RefusalsBeforeAnyWorkLeaveTheQueueEmpty)
{
    struct Case {
        JobType type;
        QString local;
        QString remote;
        QString banner;
        QString popup; // "" when no popup opens
    };
    std::filesystem::create_directories(localFolder() / "folder");
    putRemoteFolder("/srv");
    std::vector<Case> const cases{
        {JobType::Upload, "", "/a", "Both local and remote paths are required to create a transfer.",
            "Both local and remote paths are required."},
        {JobType::Download, localText("a"), "", "Both local and remote paths are required to create a transfer.",
            "Both local and remote paths are required."},
        {JobType::Upload, localText("missing.txt"), "/missing.txt", "Upload source file does not exist.",
            "Upload source file does not exist."},
        {JobType::Download, localText("folder"), "/srv/", "Select a remote file before downloading.",
            "Select a remote file before downloading."},
        {JobType::Download, localText("new/"), "/srv/", "Select a remote file before downloading.",
            "Select a remote file before downloading."},
        {JobType::Download, localText("file.txt"), "/srv/", "Select a remote file to download.",
            "Select a remote file to download."},
    };
    for (Case const& refusal : cases) {
        transfer(refusal.type, refusal.local, refusal.remote);
        EXPECT_EQ(banner(), refusal.banner) << refusal.local.toStdString() << " " << refusal.remote.toStdString();
        EXPECT_TRUE(bannerIsError());
        EXPECT_EQ(popupMessage(), refusal.popup);
    }
    EXPECT_TRUE(jobs().empty());
    EXPECT_FALSE(std::filesystem::exists(local("new"))) << "nothing is made on the local side";
}

TEST_F(Transfers, WithoutAConnectionNoPopupOpensAndNothingIsAsked)
{
    putLocalFile("a.txt", "A");
    controller().setSession(nullptr);
    ASSERT_TRUE(waitUntil([this] { return controller().statusPopupWindow() == nullptr; })) << "the start's popup goes";
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    EXPECT_EQ(banner(), "Connect before starting transfer (Upload or Download).");
    EXPECT_TRUE(bannerIsError());
    EXPECT_EQ(controller().statusPopupWindow(), nullptr);
    EXPECT_TRUE(jobs().empty());
}

TEST_F(Transfers, EmptySelectionsAndEmptyPathsAreRefusedInTheBanner)
{
    controller().centerUploadAction();
    EXPECT_EQ(banner(), "Select one or more local files or folders to upload.");
    controller().centerDownloadAction();
    EXPECT_EQ(banner(), "Select one or more remote files or folders to download.");
    controller().startTransferFromPanePath(QStringLiteral(""), true, false);
    EXPECT_EQ(banner(), "Selected item path is invalid.");
    EXPECT_TRUE(bannerIsError());
}

TEST_F(Transfers, UploadTargetsFollowTheRemotePathsForm)
{
    putLocalFile("notes.txt", "N");
    putRemoteFolder("/in");
    transfer(JobType::Upload, localText("notes.txt"), QStringLiteral("/in/"));
    EXPECT_EQ(remoteContent("/in/notes.txt"), "N") << "a path ending in / takes the file name";
    transfer(JobType::Upload, localText("notes.txt"), QStringLiteral("/"));
    EXPECT_EQ(remoteContent("/notes.txt"), "N") << "the root takes the file name";
    transfer(JobType::Upload, localText("notes.txt"), QStringLiteral("/in/renamed.txt"));
    EXPECT_EQ(remoteContent("/in/renamed.txt"), "N") << "any other path is the full target";
    EXPECT_EQ(jobs().size(), 3u);
}

TEST_F(Transfers, ARemoteFolderSentToDownloadIsOneJobThatTheSessionDecides)
{
    putRemoteFolder("/photos");
    putRemoteFile("/photos/one.jpg", "1");
    controller().startTransferFromPanePath(QStringLiteral("/photos"), true, true);
    ASSERT_EQ(jobs().size(), 1u) << "nothing recurses";
    EXPECT_EQ(jobs().front().localPath, local("photos"));
    EXPECT_EQ(jobs().front().remotePath, "/photos");
    EXPECT_EQ(jobs().front().state, JobState::Failed);
    EXPECT_FALSE(std::filesystem::exists(local("photos/one.jpg")));
}

TEST_F(Transfers, AnUploadOverAnExistingFileAsksAndCancelLeavesACanceledRowWithoutError)
{
    putLocalFile("a.txt", "new");
    putRemoteFile("/a.txt", "old");
    dialogs().expectCheckBoxAlert(kCancel, true);
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));

    ASSERT_EQ(dialogs().questions().size(), 1u);
    auto const& question = dialogs().questions().front();
    EXPECT_EQ(question.kind, "checkBoxAlert");
    EXPECT_EQ(question.title, "Replace Existing Item?");
    EXPECT_EQ(question.text, "File \"a.txt\" already exists at the destination.");
    EXPECT_EQ(question.options,
        (QStringList{"Replace", "Skip", "Cancel", "Remember this decision for next conflict"}));
    EXPECT_EQ(remoteContent("/a.txt"), "old");
    ASSERT_EQ(jobs().size(), 1u);
    EXPECT_EQ(jobs().front().state, JobState::Canceled);
    EXPECT_EQ(jobs().front().error, "");
    EXPECT_EQ(banner(), "Upload canceled.");
    EXPECT_FALSE(bannerIsError());
    EXPECT_EQ(popupMessage(), "Upload canceled.");
    EXPECT_FALSE(controller().rememberTransferConflictDecision()) << "a Cancel is never remembered";
}

TEST_F(Transfers, SkipLeavesASkippedRowAndReplaceOverwrites)
{
    putLocalFile("a.txt", "new");
    putRemoteFile("/a.txt", "old");
    dialogs().expectCheckBoxAlert(kSkip, false);
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    EXPECT_EQ(remoteContent("/a.txt"), "old");
    EXPECT_EQ(jobs().back().state, JobState::Skipped);
    EXPECT_EQ(jobs().back().error, "skipped by user");
    EXPECT_EQ(popupMessage(), "Upload skipped.");

    dialogs().expectCheckBoxAlert(kReplace, false);
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    EXPECT_EQ(remoteContent("/a.txt"), "new");
    EXPECT_EQ(jobs().back().state, JobState::Completed);
}

TEST_F(Transfers, ARememberedDecisionLivesForOneTransferOnly)
{
    putLocalFile("a.txt", "new");
    putRemoteFile("/a.txt", "old");
    dialogs().expectCheckBoxAlert(kSkip, true);
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    EXPECT_TRUE(controller().rememberTransferConflictDecision());
    EXPECT_FALSE(controller().replaceOnTransferConflict());

    dialogs().expectCheckBoxAlert(kReplace, false);
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    EXPECT_EQ(dialogs().questions().size(), 2u) << "the next transfer asks again";
    EXPECT_EQ(remoteContent("/a.txt"), "new");
}

TEST_F(Transfers, AnUnreadableRemoteParentCountsAsNoConflict)
{
    putLocalFile("a.txt", "new");
    putRemoteFile("/a.txt", "old");
    server().setReply("LIST", "550 Not today.");
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    EXPECT_TRUE(dialogs().questions().empty());
    EXPECT_EQ(remoteContent("/a.txt"), "new");
}

TEST_F(Transfers, ADownloadIntoAnExistingFolderSavesUnderTheRemoteNameAndAsksBeforeReplacing)
{
    putRemoteFile("/r/data.csv", "remote");
    std::filesystem::create_directories(localFolder() / "into");
    transfer(JobType::Download, localText("into"), QStringLiteral("/r/data.csv"));
    EXPECT_EQ(readFile(local("into/data.csv")), "remote");
    EXPECT_TRUE(dialogs().questions().empty());

    writeFile(local("into/data.csv"), "local");
    dialogs().expectCheckBoxAlert(kSkip, false);
    transfer(JobType::Download, localText("into"), QStringLiteral("/r/data.csv"));
    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(dialogs().questions().front().text, "File \"data.csv\" already exists at the destination.");
    EXPECT_EQ(readFile(local("into/data.csv")), "local");
    EXPECT_EQ(jobs().back().state, JobState::Skipped);
    EXPECT_EQ(jobs().back().type, JobType::Download);
    EXPECT_EQ(popupMessage(), "Download skipped.");

    dialogs().expectCheckBoxAlert(kCancel, false);
    transfer(JobType::Download, localText("into/"), QStringLiteral("/r/data.csv"));
    EXPECT_EQ(jobs().back().state, JobState::Canceled);
    EXPECT_EQ(banner(), "Download canceled.");
    EXPECT_EQ(readFile(local("into/data.csv")), "local");
}

TEST_F(Transfers, OutcomesWithoutARunAreRecordedAsTheirTableSays)
{
    using app::PerchFtpShellController;
    PerchFtpShellController& shell = controller();
    shell.recordTransferQueueOutcome(JobType::Upload, "/l", "/r", "ftp", JobState::Skipped, "because");
    shell.recordTransferQueueOutcome(JobType::Upload, "/l", "/r", "ftp", JobState::Canceled, "dropped");
    shell.recordTransferQueueOutcome(JobType::Upload, "/l", "/r", "ftp", JobState::Failed, "kept");
    shell.recordTransferQueueOutcome(JobType::Upload, "/l", "/r", "ftp", JobState::Completed, "dropped");
    shell.recordTransferQueueOutcome(JobType::Upload, "/l", "/r", "ftp", JobState::Running, "unused");
    shell.recordTransferQueueOutcome(JobType::Upload, "", "/r", "ftp", JobState::Failed, "refused by the queue");
    auto const all = jobs();
    ASSERT_EQ(all.size(), 5u);
    std::vector<std::pair<JobState, std::string>> seen;
    for (auto const& job : all) {
        seen.emplace_back(job.state, job.error);
    }
    EXPECT_EQ(seen, (std::vector<std::pair<JobState, std::string>>{{JobState::Skipped, "because"},
                        {JobState::Canceled, ""}, {JobState::Failed, "kept"}, {JobState::Completed, ""},
                        {JobState::Queued, ""}}));
}

TEST_F(Transfers, TheQueueViewAfterTransfersIsWhatAWholeReloadShows)
{
    putLocalFile("a.txt", "A");
    putLocalFile("b.txt", "B");
    controller().recordTransferQueueOutcome(JobType::Upload, "/l", "/r", "ftp", JobState::Skipped, "earlier");
    server().setReply("STOR b.txt", "553 Refused.");
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    transfer(JobType::Upload, localText("b.txt"), QStringLiteral("/b.txt"));
    ASSERT_EQ(jobs().back().state, JobState::Failed) << "the run ends on an observer's reload, not a whole one";

    auto const shownRows = [this] {
        QStringList rows;
        for (auto const& row : controller().queueTableDataSource()->items()) {
            rows << row.file + "|" + row.status + "|" + row.timestamp + "|" + QString::number(row.progressValue);
        }
        return rows;
    };
    QStringList const rows = shownRows();
    QString const summary = controller().queueSummary()->text();
    controller().reloadQueueSummary();
    EXPECT_EQ(shownRows(), rows);
    EXPECT_EQ(controller().queueSummary()->text(), summary);
    EXPECT_EQ(summary, "Queue: 3 total | Running: 0 | Completed: 1 | Failed: 1");
}

} // namespace
} // namespace perchftp::test
