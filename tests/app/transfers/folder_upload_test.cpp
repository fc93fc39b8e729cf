// Folder uploads through the real shell and a real FTP server: the walk, its skips and cancels,
// and how it ends.
#include "connected_shell.hpp"

#include <gtest/gtest.h>

#include <QLineEdit>

#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace perchftp::test {
namespace {

namespace fs = std::filesystem;
using transfer::JobState;
using transfer::JobType;

// File access checked as an ordinary user for as long as it lives, even for root: the file
// system user of this thread becomes "nobody", which also drops root's right to read anything.
class FileAccessAsNobody {
public:
    static constexpr uid_t kNobody = 65534;

    FileAccessAsNobody()
    {
        if (::geteuid() == 0) {
            ::setfsgid(kNobody);
            ::setfsuid(kNobody);
        }
    }
    ~FileAccessAsNobody()
    {
        if (::geteuid() == 0) {
            ::setfsuid(0);
            ::setfsgid(0);
        }
    }
    FileAccessAsNobody(FileAccessAsNobody const&) = delete;
    FileAccessAsNobody& operator=(FileAccessAsNobody const&) = delete;
};

class FolderUpload : public ConnectedShellTest {
protected:
    void uploadFolder(std::string const& relative, QString const& remotePath = QStringLiteral("/"))
    {
        controller().localTransferField()->setText(localText(relative));
        controller().remoteTransferField()->setText(remotePath);
        controller().enqueueUpload();
    }

    std::vector<std::string> jobRemotePaths()
    {
        std::vector<std::string> paths;
        for (auto const& job : jobs()) {
            paths.push_back(job.remotePath);
        }
        std::sort(paths.begin(), paths.end());
        return paths;
    }
};

TEST_F(FolderUpload, NestedFoldersEmptyFoldersAndLinksArriveAsTheWalkFindsThem)
{
    putLocalFile("site/index.html", "<html>");
    putLocalFile("site/css/main.css", "body{}");
    putLocalFile("site/css/print/paper.css", "@page{}");
    fs::create_directories(localFolder() / "site/empty");
    putLocalFile("elsewhere/shared.txt", "shared");
    putLocalFile("elsewhere/deep/inner.txt", "inner");
    fs::create_symlink(localFolder() / "elsewhere/shared.txt", localFolder() / "site/linked.txt");
    fs::create_directory_symlink(localFolder() / "elsewhere/deep", localFolder() / "site/linked-folder");
    ASSERT_EQ(::mkfifo(local("site/pipe").c_str(), 0600), 0);
    selectLocal({"site"});
    recordQueueRowStates(0);

    controller().centerUploadAction();

    EXPECT_EQ(remoteContent("/site/index.html"), "<html>");
    EXPECT_EQ(remoteContent("/site/css/main.css"), "body{}");
    EXPECT_EQ(remoteContent("/site/css/print/paper.css"), "@page{}");
    EXPECT_TRUE(fs::is_directory(server().local("/site/empty")));
    EXPECT_EQ(remoteContent("/site/linked.txt"), "shared") << "a link to a file is uploaded under its own name";
    EXPECT_TRUE(fs::is_directory(server().local("/site/linked-folder")));
    EXPECT_TRUE(fs::is_empty(server().local("/site/linked-folder"))) << "a link to a folder is not descended";
    EXPECT_FALSE(remoteExists("/site/pipe")) << "a pipe is passed over";
    EXPECT_EQ(jobRemotePaths(), (std::vector<std::string>{"/site/css/main.css", "/site/css/print/paper.css",
                                    "/site/index.html", "/site/linked.txt"}))
        << "one job per file, none for a folder";
    for (auto const& job : jobs()) {
        EXPECT_EQ(job.state, JobState::Completed) << job.remotePath;
    }
    EXPECT_EQ(recordedStates(), (QStringList{"Queued", "Running", "Completed"})) << "the first file's row";
    EXPECT_EQ(popupMessage(), "Folder upload completed.");
    EXPECT_EQ(banner(), "Remote listing refreshed.") << "the refresh after the folder's own words has the banner";
    EXPECT_TRUE(dialogs().questions().empty());
}

TEST_F(FolderUpload, AnEmptyFolderMakesTheRemoteFolderAndNoJob)
{
    fs::create_directories(localFolder() / "nothing");
    uploadFolder("nothing");
    EXPECT_TRUE(fs::is_directory(server().local("/nothing")));
    EXPECT_TRUE(jobs().empty());
    EXPECT_EQ(popupMessage(), "Folder upload completed.");
}

TEST_F(FolderUpload, ARemotePathThatIsNotTheRootIsTheFoldersTarget)
{
    putLocalFile("photos/a.jpg", "A");
    uploadFolder("photos", QStringLiteral("/backup/"));
    EXPECT_EQ(remoteContent("/backup/a.jpg"), "A") << "a folder's target ending in / stands as it is";
    EXPECT_EQ(controller().remoteTransferField()->text(), "/backup/");
}

TEST_F(FolderUpload, ReplacingAnExistingRemoteFolderStopsAtItsMkdirWhoseWordsDoNotSayExist)
{
    putLocalFile("docs/a.txt", "new");
    putRemoteFile("/docs/a.txt", "old");
    dialogs().expectCheckBoxAlert(kReplace, false);
    uploadFolder("docs");

    ASSERT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(dialogs().questions().front().text, "Folder \"docs\" already exists at the destination.");
    EXPECT_TRUE(bannerIsError());
    EXPECT_TRUE(banner().startsWith("Remote folder create failed: ftp operation failed: ")) << banner().toStdString();
    EXPECT_EQ(popupMessage(), "Folder upload failed.");
    EXPECT_EQ(remoteContent("/docs/a.txt"), "old");
    EXPECT_TRUE(jobs().empty());
}

// A server that answers MKD of an existing folder with success, so that the walk goes on into
// the folder and meets the files one by one.
class FolderUploadIntoExistingTree : public FolderUpload {
protected:
    void SetUp() override
    {
        FolderUpload::SetUp();
        putLocalFile("docs/a.txt", "new a");
        putLocalFile("docs/b.txt", "new b");
        putLocalFile("docs/sub/c.txt", "new c");
        putRemoteFile("/docs/a.txt", "old a");
        putRemoteFile("/docs/b.txt", "old b");
        putRemoteFile("/docs/sub/c.txt", "old c");
        server().setReply("MKD", "257 \"folder\" is there.");
    }
};

TEST_F(FolderUploadIntoExistingTree, ARememberedReplaceAnswersEveryLaterConflictOfTheFolder)
{
    dialogs().expectCheckBoxAlert(kReplace, true);
    uploadFolder("docs");
    EXPECT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(remoteContent("/docs/a.txt"), "new a");
    EXPECT_EQ(remoteContent("/docs/b.txt"), "new b");
    EXPECT_EQ(remoteContent("/docs/sub/c.txt"), "new c");
    EXPECT_EQ(jobs().size(), 3u);
    EXPECT_EQ(popupMessage(), "Folder upload completed.");

    dialogs().expectCheckBoxAlert(kCancel, false);
    uploadFolder("docs");
    EXPECT_EQ(dialogs().questions().size(), 2u) << "the next transfer asks again";
}

TEST_F(FolderUploadIntoExistingTree, ARememberedSkipLeavesEveryLaterConflictOutAndSkipsAFoldersContents)
{
    dialogs().expectCheckBoxAlert(kReplace, false); // the folder itself
    dialogs().expectCheckBoxAlert(kSkip, true);     // the first entry, whatever it is
    uploadFolder("docs");
    EXPECT_EQ(dialogs().questions().size(), 2u);
    EXPECT_EQ(remoteContent("/docs/a.txt"), "old a");
    EXPECT_EQ(remoteContent("/docs/b.txt"), "old b");
    EXPECT_EQ(remoteContent("/docs/sub/c.txt"), "old c");
    std::vector<std::string> const skipped = jobRemotePaths();
    EXPECT_EQ(skipped, (std::vector<std::string>{"/docs/a.txt", "/docs/b.txt", "/docs/sub"}))
        << "the skipped folder's contents are not visited";
    for (auto const& job : jobs()) {
        EXPECT_EQ(job.state, JobState::Skipped);
        EXPECT_EQ(job.error, "skipped by user");
        EXPECT_EQ(job.localPath, job.remotePath == "/docs/sub" ? local("docs") : local(job.remotePath.substr(1)))
            << "a skipped folder is recorded under the local root, a file under its own path";
    }
    EXPECT_EQ(popupMessage(), "Folder upload completed.") << "skips don't make the walk fail";
}

TEST_F(FolderUploadIntoExistingTree, ACancelInsideTheFolderEndsTheWalkWithDifferentWordsInBannerAndPopup)
{
    dialogs().expectCheckBoxAlert(kReplace, false);
    dialogs().expectCheckBoxAlert(kCancel, true);
    uploadFolder("docs");
    EXPECT_EQ(banner(), "Folder upload canceled.");
    EXPECT_FALSE(bannerIsError());
    EXPECT_EQ(popupMessage(), "Folder upload failed.");
    ASSERT_EQ(jobs().size(), 1u);
    EXPECT_EQ(jobs().front().state, JobState::Canceled);
    EXPECT_FALSE(controller().rememberTransferConflictDecision());
}

TEST_F(FolderUpload, CancelOrSkipOfTheWholeFolderIsRecordedUnderTheLocalRoot)
{
    putLocalFile("docs/a.txt", "new");
    putRemoteFolder("/docs");
    dialogs().expectCheckBoxAlert(kCancel, false);
    uploadFolder("docs");
    EXPECT_EQ(popupMessage(), "Folder upload canceled.");
    dialogs().expectCheckBoxAlert(kSkip, false);
    uploadFolder("docs");
    EXPECT_EQ(popupMessage(), "Folder upload skipped.");
    EXPECT_EQ(banner(), "Folder upload skipped.");
    ASSERT_EQ(jobs().size(), 2u);
    EXPECT_EQ(jobs()[0].state, JobState::Canceled);
    EXPECT_EQ(jobs()[1].state, JobState::Skipped);
    for (auto const& job : jobs()) {
        EXPECT_EQ(job.localPath, local("docs"));
        EXPECT_EQ(job.remotePath, "/docs");
    }
}

TEST_F(FolderUpload, AFileThatFailsEndsTheWalkAndWhatWasUploadedStays)
{
    putLocalFile("batch/one.txt", "1");
    putLocalFile("batch/two.txt", "2");
    putLocalFile("batch/three.txt", "3");
    server().setReply("STOR two.txt", "CLOSE");
    uploadFolder("batch");

    EXPECT_TRUE(bannerIsError());
    EXPECT_TRUE(banner().startsWith("Transfer failed: ftp upload: ")) << banner().toStdString();
    EXPECT_EQ(popupMessage(), "Folder upload failed.");
    auto const all = jobs();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(all.back().remotePath, "/batch/two.txt") << "no job after the failed one";
    EXPECT_EQ(all.back().state, JobState::Failed);
    for (std::size_t index = 0; index + 1 < all.size(); ++index) {
        EXPECT_EQ(all[index].state, JobState::Completed);
        EXPECT_TRUE(remoteExists(all[index].remotePath)) << all[index].remotePath;
    }
}

TEST_F(FolderUpload, AFolderThatCantBeReadEndsTheWalkAsIfItWereDone)
{
    putLocalFile("tree/locked/secret.txt", "s");
    fs::permissions(localFolder(), fs::perms::all);
    fs::permissions(local("tree"), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(local("tree/locked"), fs::perms::none);
    {
        FileAccessAsNobody const asNobody;
        uploadFolder("tree");
    }
    fs::permissions(local("tree/locked"), fs::perms::owner_all);
    EXPECT_TRUE(fs::is_directory(server().local("/tree/locked")));
    EXPECT_FALSE(remoteExists("/tree/locked/secret.txt"));
    EXPECT_EQ(popupMessage(), "Folder upload completed.") << "a failed iteration is at its end";
    EXPECT_TRUE(jobs().empty());
}

TEST_F(FolderUpload, AnEntryWhosePathCantBeResolvedStopsTheWalk)
{
    putLocalFile("tree/listable/inside.txt", "i");
    fs::permissions(localFolder(), fs::perms::all);
    fs::permissions(local("tree"), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    // Readable but not searchable: the names can be listed, their paths can't be looked at.
    fs::permissions(local("tree/listable"), fs::perms::owner_read | fs::perms::others_read);
    {
        FileAccessAsNobody const asNobody;
        uploadFolder("tree");
    }
    fs::permissions(local("tree/listable"), fs::perms::owner_all);
    EXPECT_EQ(banner(), "Folder upload path resolution failed.");
    EXPECT_TRUE(bannerIsError());
    EXPECT_EQ(popupMessage(), "Folder upload failed.");
    EXPECT_TRUE(jobs().empty());
}

TEST_F(FolderUpload, ALocalFolderWithATrailingSlashAimsAtTheRootWhichCantBeMade)
{
    putLocalFile("loose/x.txt", "x");
    uploadFolder("loose/");
    EXPECT_EQ(controller().remoteTransferField()->text(), "/") << "an empty file name leaves the remote root as it is";
    EXPECT_TRUE(banner().startsWith("Remote folder create failed: ftp operation failed: ")) << banner().toStdString();
    EXPECT_EQ(popupMessage(), "Folder upload failed.");
    EXPECT_FALSE(remoteExists("/x.txt"));
}

} // namespace
} // namespace perchftp::test
