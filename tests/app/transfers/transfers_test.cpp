// Uploads and downloads of single files through the real shell and a real FTP server, and the
// conflicts they meet.
#include "connected_shell.hpp"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace perchftp::test {
namespace {

using transfer::JobState;
using transfer::JobType;
using Transfers = ConnectedShellTest;

TEST_F(Transfers, SelectedFilesGoUpAndComeDownEachJobRunningToItsOwnEnd)
{
    std::string const up(300000, 'u');
    putLocal("report.pdf", up);
    select(localPane(), {"report.pdf"});
    // The states that the queue table shows for its first row, each change once.
    QStringList shownStates;
    QObject const recording; // ends with this test's body
    app::PerchQueueTableDataSource* table = controller().queueTableDataSource();
    auto const record = [&] {
        auto const& rows = table->items();
        if (!rows.empty() && (shownStates.isEmpty() || shownStates.back() != rows[0].status)) {
            shownStates.append(rows[0].status);
        }
    };
    QObject::connect(table, &QAbstractItemModel::modelReset, &recording, record);
    QObject::connect(table, &QAbstractItemModel::dataChanged, &recording, record);
    controller().centerUploadAction();

    EXPECT_EQ(remoteContent("/report.pdf"), up);
    ASSERT_EQ(jobs().size(), 1u);
    transfer::TransferQueueItem const upload = jobs().front();
    EXPECT_EQ(upload.protocolName, "ftp");
    EXPECT_EQ(upload.localPath, local("report.pdf"));
    EXPECT_EQ(upload.transferredBytes, up.size());
    EXPECT_EQ(shownStates, (QStringList{"Queued", "Running", "Completed"})) << "as the queue table shows it";
    EXPECT_EQ(banner(), "✅ Transfer completed.");
    EXPECT_EQ(controller().remoteTransferField()->text(), "/report.pdf");
    EXPECT_EQ(popupMessage(), "Transfer completed.");
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(popupMessage(), "Uploading 100% (300000 / 300000 bytes)")
        << "the progress texts are posted during the transfer and shown after it, the last one standing";
    ASSERT_EQ(remotePane().entries().size(), 1);
    EXPECT_EQ(remotePane().entries().front().name, "report.pdf") << "the remote pane lists the new file";

    putRemote("/data/archive.tar", std::string(200000, 'd'));
    remotePane().setPathValue(QStringLiteral("/data"));
    select(remotePane(), {"archive.tar"});
    controller().centerDownloadAction();
    EXPECT_EQ(readFile(local("archive.tar")), std::string(200000, 'd'));
    EXPECT_EQ(jobs().back().remotePath, "/data/archive.tar");
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.") << "a download lists the remote folder after its own words";
    EXPECT_EQ(selectPaneRowsNamed(localPane(), {"archive.tar"}), 1) << "the local pane is listed again";

    // Each selected item runs to its end, a failed one too.
    for (std::string const name : {"a", "b", "c"}) {
        putLocal(name + ".txt", name);
    }
    select(localPane(), {"a.txt", "b.txt", "c.txt"});
    server().setReply("STOR b.txt", "553 Refused.");
    controller().centerUploadAction();
    EXPECT_EQ(states(), (std::vector<JobState>{JobState::Completed, JobState::Completed, JobState::Completed,
                            JobState::Failed, JobState::Completed}));
    EXPECT_EQ(remoteContent("/data/c.txt"), "c") << "into the remote pane's folder";
    EXPECT_FALSE(remoteExists("/data/b.txt"));
    EXPECT_EQ(jobs()[3].error.rfind("ftp upload: ", 0), 0u) << "the session's message: " << jobs()[3].error;
    transfer(JobType::Upload, localText("b.txt"), QStringLiteral("/b.txt"));
    EXPECT_EQ(popupMessage(), "Transfer failed.");
}

TEST_F(Transfers, RefusalsLeaveTheQueueEmptyAndTargetsFollowThePathsForm)
{
    putRemote("/srv/");
    QString const bothPaths = QStringLiteral("Both local and remote paths are required");
    QString const noFolder = QStringLiteral("Select a remote file before downloading.");
    struct Case {
        JobType type;
        QString local;
        QString remote;
        QString banner;
        QString popup; // "" when the popup says what the banner says
    } const cases[] = {
        {JobType::Upload, "", "/a", bothPaths + " to create a transfer.", bothPaths + "."},
        {JobType::Upload, localText("missing.txt"), "/missing.txt", "Upload source file does not exist.", ""},
        {JobType::Download, localText("new/"), "/srv/", noFolder, ""},
        {JobType::Download, localText("file.txt"), "/srv/", "Select a remote file to download.", ""},
    };
    for (Case const& refusal : cases) {
        SCOPED_TRACE(refusal.local.toStdString() + " " + refusal.remote.toStdString());
        transfer(refusal.type, refusal.local, refusal.remote);
        EXPECT_EQ(banner(), "⚠️ " + refusal.banner);
        EXPECT_EQ(popupMessage(), refusal.popup.isEmpty() ? refusal.banner : refusal.popup);
    }
    controller().centerDownloadAction();
    EXPECT_EQ(banner(), "⚠️ Select one or more remote files or folders to download.");
    controller().startTransferFromPanePath(QStringLiteral(""), true, false);
    EXPECT_EQ(banner(), "⚠️ Selected item path is invalid.");
    EXPECT_TRUE(jobs().empty());
    EXPECT_FALSE(std::filesystem::exists(local("new"))) << "nothing is made on the local side";

    putLocal("notes.txt", "N");
    putRemote("/in/");
    transfer(JobType::Upload, localText("notes.txt"), QStringLiteral("/in/"));
    EXPECT_EQ(remoteContent("/in/notes.txt"), "N") << "a path ending in / takes the file name";
    transfer(JobType::Upload, localText("notes.txt"), QStringLiteral("/in/renamed.txt"));
    EXPECT_EQ(remoteContent("/in/renamed.txt"), "N") << "any other path is the full target";

    putRemote("/photos/one.jpg", "1");
    controller().startTransferFromPanePath(QStringLiteral("/photos"), true, true);
    ASSERT_EQ(jobs().size(), 3u) << "a remote folder is one download, nothing recurses";
    EXPECT_EQ(jobs().back().localPath, local("photos"));
    EXPECT_EQ(jobs().back().remotePath, "/photos");
    EXPECT_EQ(jobs().back().state, JobState::Failed) << "the session decides, and refuses";
    EXPECT_FALSE(std::filesystem::exists(local("photos/one.jpg")));
}

TEST_F(Transfers, ConflictsAskOnceATransferAndAnUnreadableParentIsNoConflict)
{
    putLocal("a.txt", "new");
    putRemote("/a.txt", "old");
    auto const upload = [this](int button, bool remember) {
        dialogs().expectCheckBoxAlert(button, remember);
        transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
        return jobs().back();
    };
    EXPECT_EQ(upload(kCancel, true).state, JobState::Canceled);
    ASSERT_EQ(dialogs().questions().size(), 1u);
    auto const& question = dialogs().questions().front();
    EXPECT_EQ(question.kind, "checkBoxAlert");
    EXPECT_EQ(question.title, "Replace Existing Item?");
    EXPECT_EQ(question.text, "File \"a.txt\" already exists at the destination.");
    EXPECT_EQ(question.options, (QStringList{"Replace", "Skip", "Cancel", "Remember this decision for next conflict"}));
    EXPECT_EQ(remoteContent("/a.txt"), "old");
    EXPECT_EQ(banner(), "✅ Upload canceled.");
    EXPECT_EQ(popupMessage(), "Upload canceled.");
    EXPECT_FALSE(controller().rememberTransferConflictDecision()) << "a Cancel is never remembered";

    EXPECT_EQ(upload(kSkip, false).error, "skipped by user");
    EXPECT_EQ(jobs().back().state, JobState::Skipped);
    EXPECT_EQ(popupMessage(), "Upload skipped.");
    EXPECT_EQ(remoteContent("/a.txt"), "old");
    upload(kSkip, true);
    EXPECT_TRUE(controller().rememberTransferConflictDecision());
    EXPECT_FALSE(controller().replaceOnTransferConflict());
    EXPECT_EQ(upload(kReplace, false).state, JobState::Completed);
    EXPECT_EQ(dialogs().questions().size(), 4u) << "the next transfer asks again";
    EXPECT_EQ(remoteContent("/a.txt"), "new");

    // A download into an existing folder saves under the remote name, and asks before replacing.
    putRemote("/r/data.csv", "remote");
    putLocal("into/");
    transfer(JobType::Download, localText("into"), QStringLiteral("/r/data.csv"));
    EXPECT_EQ(readFile(local("into/data.csv")), "remote");
    writeFile(local("into/data.csv"), "local");
    dialogs().expectCheckBoxAlert(kSkip, false);
    transfer(JobType::Download, localText("into/"), QStringLiteral("/r/data.csv"));
    EXPECT_EQ(dialogs().questions().size(), 5u);
    EXPECT_EQ(jobs().back().state, JobState::Skipped);
    EXPECT_EQ(popupMessage(), "Download skipped.");
    EXPECT_EQ(readFile(local("into/data.csv")), "local");

    putRemote("/a.txt", "old");
    server().setReply("LIST", "550 Not today.");
    transfer(JobType::Upload, localText("a.txt"), QStringLiteral("/a.txt"));
    EXPECT_EQ(dialogs().questions().size(), 5u);
    EXPECT_EQ(remoteContent("/a.txt"), "new");
}

} // namespace
} // namespace perchftp::test
