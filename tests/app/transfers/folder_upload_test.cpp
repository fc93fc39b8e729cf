// Folder uploads through the real shell and a real FTP server: the walk, its skips and cancels,
// and how it ends.
#include "connected_shell.hpp"
#include "support/file_access_as_nobody.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>

namespace perchftp::test {
namespace {

namespace fs = std::filesystem;
using transfer::JobState;
using transfer::JobType;

class FolderUpload : public ConnectedShellTest {
protected:
    void uploadFolder(std::string const& relative, QString const& remotePath = QStringLiteral("/"))
    {
        transfer(JobType::Upload, localText(relative), remotePath);
    }

    std::vector<transfer::TransferQueueItem> jobsByRemotePath()
    {
        std::vector<transfer::TransferQueueItem> all = jobs();
        std::sort(all.begin(), all.end(), [](auto const& a, auto const& b) { return a.remotePath < b.remotePath; });
        return all;
    }
};

TEST_F(FolderUpload, NestedFoldersEmptyFoldersAndLinksArriveAsTheWalkFindsThem)
{
    putLocal("site/index.html", "<html>");
    putLocal("site/css/main.css", "body{}");
    putLocal("site/css/print/paper.css", "@page{}");
    putLocal("site/empty/");
    putLocal("elsewhere/shared.txt", "shared");
    putLocal("elsewhere/deep/inner.txt", "inner");
    fs::create_symlink(local("elsewhere/shared.txt"), local("site/linked.txt"));
    fs::create_directory_symlink(local("elsewhere/deep"), local("site/linked-folder"));
    ASSERT_EQ(::mkfifo(local("site/pipe").c_str(), 0600), 0);
    select(localPane(), {"site"});
    controller().centerUploadAction();

    EXPECT_EQ(remoteContent("/site/index.html"), "<html>");
    EXPECT_EQ(remoteContent("/site/css/main.css"), "body{}");
    EXPECT_EQ(remoteContent("/site/css/print/paper.css"), "@page{}");
    EXPECT_TRUE(fs::is_directory(server().local("/site/empty")));
    EXPECT_EQ(remoteContent("/site/linked.txt"), "shared") << "a link to a file is uploaded under its own name";
    EXPECT_TRUE(fs::is_directory(server().local("/site/linked-folder")));
    EXPECT_TRUE(fs::is_empty(server().local("/site/linked-folder"))) << "a link to a folder is not descended";
    EXPECT_FALSE(remoteExists("/site/pipe")) << "a pipe is passed over";
    std::vector<std::string> paths;
    for (auto const& job : jobsByRemotePath()) {
        paths.push_back(job.remotePath);
        EXPECT_EQ(job.state, JobState::Completed) << job.remotePath;
    }
    EXPECT_EQ(paths, (std::vector<std::string>{"/site/css/main.css", "/site/css/print/paper.css", "/site/index.html",
                                               "/site/linked.txt"}))
        << "one job per file, none for a folder";
    EXPECT_EQ(popupMessage(), "Folder upload completed.");
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.") << "the refresh after the folder's own words has the banner";

    putLocal("photos/a.jpg", "A");
    uploadFolder("photos", QStringLiteral("/backup/"));
    EXPECT_EQ(remoteContent("/backup/a.jpg"), "A") << "a folder's target ending in / stands as it is";

    putLocal("loose/x.txt", "x");
    uploadFolder("loose/");
    EXPECT_EQ(controller().remoteTransferField()->text(), "/") << "an empty file name leaves the remote root as it is";
    EXPECT_EQ(popupMessage(), "Folder upload failed.") << "the root cannot be made";
    EXPECT_FALSE(remoteExists("/x.txt"));
}

// Without its own answer to MKD the server refuses an existing folder, and the adapter's words for
// that never say "exist", so a replace stops there. Once MKD of an existing folder succeeds, the
// walk goes on into the folder and meets the files one by one.
TEST_F(FolderUpload, AnExistingFolderIsCanceledSkippedOrReplacedAndARememberedAnswerTakesEveryLaterConflict)
{
    for (std::string const name : {"a.txt", "b.txt", "sub/c.txt"}) {
        putLocal("docs/" + name, "new " + name);
        putRemote("/docs/" + name, "old " + name);
    }
    dialogs().expectCheckBoxAlert(kCancel, false);
    uploadFolder("docs");
    EXPECT_EQ(popupMessage(), "Folder upload canceled.");
    dialogs().expectCheckBoxAlert(kSkip, false);
    uploadFolder("docs");
    EXPECT_EQ(popupMessage(), "Folder upload skipped.");
    EXPECT_EQ(banner(), "✅ Folder upload skipped.");
    dialogs().expectCheckBoxAlert(kReplace, false);
    uploadFolder("docs");
    EXPECT_EQ(dialogs().questions().back().text, "Folder \"docs\" already exists at the destination.");
    EXPECT_TRUE(banner().startsWith("⚠️ Remote folder create failed: ftp operation failed: ")) << banner().toStdString();
    EXPECT_EQ(popupMessage(), "Folder upload failed.");
    EXPECT_EQ(remoteContent("/docs/a.txt"), "old a.txt");
    ASSERT_EQ(states(), (std::vector<JobState>{JobState::Canceled, JobState::Skipped}));
    controller().clearTransferQueue();

    server().setReply("MKD", "257 \"folder\" is there.");
    dialogs().expectCheckBoxAlert(kReplace, false); // the folder itself
    dialogs().expectCheckBoxAlert(kSkip, true);     // the first entry, whatever it is
    uploadFolder("docs");
    EXPECT_EQ(remoteContent("/docs/a.txt"), "old a.txt");
    EXPECT_EQ(remoteContent("/docs/sub/c.txt"), "old sub/c.txt");
    std::vector<std::string> skipped;
    for (auto const& job : jobsByRemotePath()) {
        skipped.push_back(job.remotePath);
        EXPECT_EQ(job.state, JobState::Skipped);
        EXPECT_EQ(job.error, "skipped by user");
        EXPECT_EQ(job.localPath, job.remotePath == "/docs/sub" ? local("docs") : local(job.remotePath.substr(1)))
            << "a skipped folder is recorded under the local root, a file under its own path";
    }
    EXPECT_EQ(skipped, (std::vector<std::string>{"/docs/a.txt", "/docs/b.txt", "/docs/sub"}))
        << "the skipped folder's contents are not visited";
    EXPECT_EQ(popupMessage(), "Folder upload completed.") << "skips don't make the walk fail";

    dialogs().expectCheckBoxAlert(kReplace, false);
    dialogs().expectCheckBoxAlert(kCancel, true);
    uploadFolder("docs");
    EXPECT_EQ(banner(), "✅ Folder upload canceled.");
    EXPECT_EQ(popupMessage(), "Folder upload failed.") << "a cancel inside the folder ends the walk";
    ASSERT_EQ(jobs().size(), 4u);
    EXPECT_EQ(jobs().back().state, JobState::Canceled);
}

TEST_F(FolderUpload, UnreadableFoldersUnresolvablePathsAndADroppedConnectionEndTheWalk)
{
    putLocal("tree/locked/secret.txt", "s");
    putLocal("names/listable/inside.txt", "i");
    fs::permissions(local(""), fs::perms::all);
    for (std::string const top : {"tree", "names"}) {
        fs::permissions(local(top), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    }
    fs::permissions(local("tree/locked"), fs::perms::none);
    // Readable but not searchable: the names can be listed, their paths can't be looked at.
    fs::permissions(local("names/listable"), fs::perms::owner_read | fs::perms::others_read);
    {
        FileAccessAsNobody const nobody;
        uploadFolder("tree");
        EXPECT_EQ(popupMessage(), "Folder upload completed.") << "a failed iteration is at its end";
        uploadFolder("names");
    }
    fs::permissions(local("tree/locked"), fs::perms::owner_all);
    fs::permissions(local("names/listable"), fs::perms::owner_all);
    EXPECT_TRUE(fs::is_directory(server().local("/tree/locked")));
    EXPECT_FALSE(remoteExists("/tree/locked/secret.txt"));
    EXPECT_EQ(banner(), "⚠️ Folder upload path resolution failed.");
    EXPECT_EQ(popupMessage(), "Folder upload failed.");
    EXPECT_TRUE(jobs().empty());

    putLocal("batch/one.txt", "1");
    putLocal("batch/two.txt", "2");
    putLocal("batch/three.txt", "3");
    server().setReply("STOR two.txt", "CLOSE");
    uploadFolder("batch");
    EXPECT_TRUE(banner().startsWith("⚠️ Transfer failed: ftp upload: ")) << banner().toStdString();
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

} // namespace
} // namespace perchftp::test
