// File operations from the panes through the real shell: local ones on a real folder, remote ones
// on a real FTP server, and local files dropped on the real remote pane.
#include "connected_shell.hpp"

#include <gtest/gtest.h>

#include <QMimeData>
#include <QPlainTextEdit>
#include <QUrl>

namespace perchftp::test {
namespace {

namespace fs = std::filesystem;
using app::PaneEntry;
using transfer::JobType;

constexpr int kConfirm = app::kFirstAlertButton;
constexpr int kDecline = app::kFirstAlertButton + 1;

PaneEntry item(QString const& path, bool dir = false, QString const& permissions = QString())
{
    return {path.section(u'/', -1), path, dir, false, permissions, {}, 0, {}};
}

class FileOperations : public ConnectedShellTest {
protected:
    // The last question as "title: text [options]".
    QString lastAsked()
    {
        auto const& question = dialogs().questions().back();
        return question.title + ": " + question.text + " [" + question.options.join(u',') + ']';
    }
};

TEST_F(FileOperations, LocalItemsAreCreatedRenamedAndDeletedOrTheSystemsWordsAreShownAndRefusalsTouchNothing)
{
    dialogs().expectText(QStringLiteral("  Reports  "));
    controller().createFolderInPane(false);
    EXPECT_TRUE(fs::is_directory(local("Reports")));
    EXPECT_EQ(popupMessage(), "Created local folder Reports.");
    EXPECT_EQ(banner(), "✅ Created local folder Reports");
    EXPECT_EQ(lastAsked(), "Create Folder: Enter a new local folder name. [,New Folder]");

    dialogs().expectText(QStringLiteral("Archive"));
    controller().renamePanePath(localText("Reports"), false, true);
    EXPECT_TRUE(fs::is_directory(local("Archive")));
    EXPECT_EQ(lastAsked(), "Rename Item: Enter the new name. [Reports,Reports]");
    EXPECT_EQ(popupMessage(), "Renamed local item to Archive.");

    putLocal("Archive/inner.txt", "x");
    dialogs().expectAlertButton(kConfirm);
    controller().deletePanePath(localText("Archive"), false, true);
    EXPECT_EQ(lastAsked(), "Delete Item: Delete \"Archive\"? [Delete,Cancel]");
    EXPECT_FALSE(fs::exists(local("Archive"))) << "a folder goes with its contents";
    EXPECT_EQ(banner(), "✅ Deleted local item Archive");

    putLocal("taken/");
    putLocal("other.txt", "o");
    dialogs().expectText(QStringLiteral("taken"));
    controller().createFolderInPane(false);
    EXPECT_EQ(banner(), "⚠️ Local folder create failed: File exists");
    EXPECT_EQ(popupMessage(), "Local folder create failed: File exists");
    dialogs().expectText(QStringLiteral("taken"));
    controller().renamePanePath(localText("other.txt"), false, false);
    EXPECT_EQ(banner(), "⚠️ Local rename failed: File exists") << "a move never replaces what is there";
    EXPECT_EQ(readFile(local("other.txt")), "o");
    dialogs().expectAlertButton(kConfirm);
    controller().deletePanePath(localText("gone.txt"), false, false);
    EXPECT_EQ(banner(), "⚠️ Local delete failed: No such file or directory");

    putLocal("a.txt", "a");
    putLocal("c.txt", "c");
    dialogs().expectAlertButton(kConfirm);
    controller().deleteSelectedItems(
        {item(localText("a.txt")), item(""), item(localText("missing")), item(localText("c.txt"))}, false);
    EXPECT_EQ(lastAsked(), "Delete Items: Delete 4 selected item(s)? [Delete,Cancel]");
    EXPECT_FALSE(fs::exists(local("a.txt")));
    EXPECT_TRUE(fs::exists(local("c.txt"))) << "the loop ends at the first failure";
    EXPECT_EQ(banner(), "⚠️ Local delete failed: No such file or directory");
    dialogs().expectAlertButton(kConfirm);
    controller().deleteSelectedItems({item(localText("c.txt")), item("")}, false);
    EXPECT_EQ(popupMessage(), "Deleted 2 local item(s).") << "the count is that of the selection";

    // Canceled, unchanged, empty and unconnected requests touch nothing.
    putLocal("keep.txt", "k");
    ASSERT_TRUE(waitUntil([this] { return controller().statusPopupWindow() == nullptr; }));
    dialogs().expectText(std::nullopt);
    controller().createFolderInPane(true);
    EXPECT_EQ(banner(), "✅ Folder creation canceled.");
    dialogs().expectText(QStringLiteral("   "));
    controller().renamePanePath(localText("keep.txt"), false, false);
    EXPECT_EQ(banner(), "✅ Rename canceled.") << "blanks count as canceled";
    dialogs().expectText(QStringLiteral("keep.txt"));
    controller().renamePanePath(localText("keep.txt"), false, false);
    EXPECT_EQ(banner(), "✅ Rename skipped because the name did not change.");
    dialogs().expectAlertButton(kDecline);
    controller().deletePanePath(localText("keep.txt"), false, false);
    EXPECT_EQ(banner(), "✅ Delete canceled.");
    EXPECT_EQ(readFile(local("keep.txt")), "k");

    std::size_t const asked = dialogs().questions().size();
    controller().renamePanePath(QStringLiteral(""), true, false);
    EXPECT_EQ(banner(), "⚠️ Select an item to rename.");
    controller().deletePanePath(QStringLiteral(""), true, false);
    EXPECT_EQ(banner(), "⚠️ Select an item to delete.");
    controller().deleteSelectedItems({}, true);
    EXPECT_EQ(banner(), "⚠️ Select one or more items to delete.");
    controller().changePermissionsForItems({}, true);
    EXPECT_EQ(banner(), "⚠️ Select one or more remote items to change permissions.");
    controller().changePermissionsForItems({item(localText("keep.txt"))}, false);
    EXPECT_EQ(banner(), "⚠️ Remote-only operation.");
    EXPECT_EQ(dialogs().questions().size(), asked) << "refused before any question";

    // Without a connection remote requests are refused after asking, and transfers at once.
    controller().setSession(nullptr);
    transfer(JobType::Upload, localText("keep.txt"), QStringLiteral("/keep.txt"));
    EXPECT_EQ(banner(), "⚠️ Connect before starting transfer (Upload or Download).");
    EXPECT_TRUE(jobs().empty());
    dialogs().expectText(QStringLiteral("new"));
    controller().createFolderInPane(true);
    EXPECT_EQ(banner(), "⚠️ Connect before creating a remote folder.");
    dialogs().expectText(QStringLiteral("b"));
    controller().renamePanePath(QStringLiteral("/a"), true, false);
    EXPECT_EQ(banner(), "⚠️ Connect before renaming a remote item.");
    dialogs().expectAlertButton(kConfirm);
    controller().deletePanePath(QStringLiteral("/a"), true, false);
    EXPECT_EQ(banner(), "⚠️ Connect before deleting a remote item.");
    dialogs().expectAlertButton(kConfirm);
    controller().deleteSelectedItems({item("/a"), item("/b")}, true);
    EXPECT_EQ(banner(), "⚠️ Connect before deleting remote items.");
    controller().changePermissionsForItems({item("/a")}, true);
    EXPECT_EQ(banner(), "⚠️ Connect before changing permissions.");
    EXPECT_EQ(dialogs().questions().size(), asked + 4) << "permissions check the connection before asking";
    EXPECT_EQ(controller().statusPopupWindow(), nullptr) << "no popup opened";
}

TEST_F(FileOperations, RemoteItemsAreCreatedRenamedDeletedAndChangedUntilTheFirstFailure)
{
    dialogs().expectText(QStringLiteral("incoming"));
    controller().createFolderInPane(true);
    EXPECT_TRUE(fs::is_directory(server().local("/incoming")));
    EXPECT_EQ(popupMessage(), "Created remote folder incoming.");
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.") << "the refresh has the last word in the banner";
    dialogs().expectText(QStringLiteral("incoming"));
    controller().createFolderInPane(true);
    EXPECT_TRUE(popupMessage().startsWith("Remote folder create failed: ")) << "an existing folder is a failure";

    putRemote("/incoming/a.txt", "a");
    dialogs().expectText(QStringLiteral("b.txt"));
    controller().renamePanePath(QStringLiteral("/incoming/a.txt"), true, false);
    EXPECT_EQ(remoteContent("/incoming/b.txt"), "a");
    EXPECT_EQ(popupMessage(), "Renamed remote item to b.txt.");
    dialogs().expectAlertButton(kConfirm);
    controller().deletePanePath(QStringLiteral("/incoming/b.txt"), true, false);
    EXPECT_FALSE(remoteExists("/incoming/b.txt"));
    EXPECT_EQ(popupMessage(), "Deleted remote item b.txt.");

    for (std::string const path : {"/other.txt", "/dir/x.txt", "/tree/sub/b.txt"}) {
        putRemote(path, "x");
    }
    dialogs().expectAlertButton(kConfirm);
    controller().deleteSelectedItems({item("/other.txt"), item("/dir", true)}, true);
    EXPECT_FALSE(remoteExists("/other.txt"));
    EXPECT_FALSE(remoteExists("/dir"));
    EXPECT_EQ(popupMessage(), "Deleted 2 remote item(s).");

    server().setReply("DELE", "550 Refused.");
    controller().queueLog()->clear();
    dialogs().expectAlertButton(kConfirm);
    controller().deletePanePath(QStringLiteral("/tree"), true, true);
    EXPECT_TRUE(remoteExists("/tree/sub/b.txt"));
    EXPECT_EQ(banner(), "⚠️ Remote delete failed: recursive remote delete failed");
    QString const log = controller().queueLog()->toPlainText();
    EXPECT_TRUE(log.startsWith("Remote nested file delete failed: ftp ") && !log.contains(u'\n'))
        << "one line: " << log.toStdString();

    // Permissions are proposed from the first item. The mode travels in decimal, so a mode whose
    // decimal form holds an 8 or a 9 is refused by the server.
    putRemote("/a.sh", "a");
    putRemote("/b.sh", "b");
    dialogs().expectText(QStringLiteral("rw-r--r--"));
    controller().changePermissionsForItems({item("/a.sh", false, "-rwxr-xr-x"), item(""), item("/b.sh")}, true);
    EXPECT_EQ(lastAsked(), "Change Permissions: Enter numeric octal (644) or symbolic (rwxr-xr-x). "
                           "[755,644 or rwxr-xr-x]");
    EXPECT_EQ(server().receivedCommands({"SITE"}),
              (std::vector<std::string>{"SITE CHMOD 420 /a.sh", "SITE CHMOD 420 /b.sh"}));
    EXPECT_EQ(popupMessage(), "Updated permissions of 3 remote item(s) to 644.");

    dialogs().expectText(QStringLiteral("rwxr-xr-s"));
    controller().changePermissionsForItems({item("/a.sh", false, "")}, true);
    EXPECT_EQ(dialogs().questions().back().options.front(), "755") << "nothing to read proposes 755";
    EXPECT_EQ(banner(), "⚠️ Invalid permission format. Use octal (644) or symbolic (rwxr-xr-x).");

    dialogs().expectText(QStringLiteral("750"));
    controller().changePermissionsForItems({item("/a.sh"), item("/b.sh")}, true);
    EXPECT_TRUE(popupMessage().startsWith("Remote permission change failed: ftp operation failed: "))
        << "the server reads 488 as octal and refuses it";
    EXPECT_EQ(server().receivedCommands({"SITE"}).size(), 3u) << "the first failure ends the loop";
}

TEST_F(FileOperations, ADroppedFileIsUploadedIntoTheFolderThePaneNamesAndOnlyOneAtATime)
{
    putLocal("photo.jpg", "jpg");
    putLocal("b.txt", "b");
    putRemote("/albums/2024/");
    controller().refreshRemoteDirectory();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(localText("photo.jpg"))});
    ASSERT_EQ(remotePane().entries().front().name, "albums");
    EXPECT_TRUE(remotePane().acceptDrop(&data, 0));
    EXPECT_EQ(remoteContent("/albums/photo.jpg"), "jpg");

    data.setUrls({QUrl::fromLocalFile(localText("photo.jpg")), QUrl::fromLocalFile(localText("b.txt"))});
    EXPECT_TRUE(remotePane().acceptDrop(&data, -1));
    EXPECT_EQ(banner(), "⚠️ Multi-file drag upload is not implemented yet. Drop one item at a time.");
    controller().didDropPaths(&localPane(), {localText("b.txt")}, QStringLiteral("/"), false);
    controller().didDropPaths(&remotePane(), {QStringLiteral("")}, QStringLiteral("/"), true);
    EXPECT_EQ(banner(), "⚠️ Dropped item path is invalid.");
    EXPECT_EQ(jobs().size(), 1u);
    EXPECT_FALSE(remoteExists("/b.txt"));
}

} // namespace
} // namespace perchftp::test
