// Which row an action means, the context menu, drops, keys, the folder dialog, and the views around
// the panes: the divider lane and view lifetimes.
#include "app/pane/perch_pane_split_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "pane_test_support.hpp"
#include "support/scripted_shell_dialogs.hpp"

#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QSignalSpy>
#include <QToolButton>
#include <QUrl>

#include <gtest/gtest.h>

namespace perchftp::app {
namespace {

using testing::remoteFile;
using testing::remoteFolder;

class RemoteActions : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(true);
        pane->showRemoteEntries({remoteFile("a.txt", 1), remoteFolder("dir"), remoteFile("c.txt", 3),
                                 remoteFile("d.txt", 4)},
                                "/srv");
        delegate.calls.clear();
    }

    QStringList takeRequests() { return delegate.takeRequests(); }
    void press(std::initializer_list<Qt::Key> keys)
    {
        for (Qt::Key const key : keys) {
            QTest::keySequence(pane->tableView(), QKeySequence(key));
        }
    }
};

TEST_F(RemoteActions, OnlyDownloadWorksHereTheButtonsActOnTheSelectionAndTheMenuOnTheClickedRow)
{
    EXPECT_FALSE(pane->openFolderButton()->isVisible());
    EXPECT_FALSE(pane->uploadButton()->isEnabled());
    EXPECT_TRUE(pane->downloadButton()->isEnabled());

    pane->renameClicked();
    pane->deleteClicked();
    pane->contextPermissionAction();
    EXPECT_TRUE(takeRequests().isEmpty()) << "no selection and no clicked row";

    selectRows({1});
    pane->renameClicked();
    EXPECT_EQ(takeRequests(), QStringList({"rename /srv/dir (dir)"}));
    selectRows({3, 0});
    pane->deleteClicked();
    pane->contextPermissionAction();
    EXPECT_EQ(takeRequests(), QStringList({"deleteMany /srv/a.txt /srv/d.txt", "permissions /srv/a.txt /srv/d.txt"}));
    selectRows({3, 1});
    pane->uploadClicked();
    pane->downloadClicked();
    pane->createFolderClicked();
    EXPECT_EQ(takeRequests(), QStringList({"transfer /srv/dir (dir)", "transfer /srv/d.txt", "createFolder"}));

    // The context menu acts on the clicked row, and a right click selects an unselected row alone.
    EXPECT_EQ(contextMenuAt(1),
              QStringList({"Download", "-", "Create Folder", "Permission...", "Refresh", "Rename", "Delete"}));
    selectRows({0});
    contextMenuAt(2, "Rename");
    EXPECT_EQ(takeRequests(), QStringList({"rename /srv/c.txt"}));
    EXPECT_EQ(pane->clickedRow(), -1) << "the clicked row lasts only while the menu is open";

    selectRows({0, 1});
    contextMenuAt(2, "Download");
    EXPECT_EQ(pane->selectedItems().size(), 1);
    EXPECT_EQ(takeRequests(), QStringList({"transfer /srv/c.txt"}));
    selectRows({0, 2});
    contextMenuAt(2, "Download");
    EXPECT_EQ(takeRequests(), QStringList({"transfer /srv/a.txt", "transfer /srv/c.txt"}))
        << "a right click on one of several selected rows takes them all";
    rightClickRow(-1);
    EXPECT_EQ(pane->selectedItems().size(), 2) << "a right click below the rows changes no selection";

    // Permission and Create Folder need no row, Refresh does; a message row is no row.
    pane->tableView()->clearSelection();
    QStringList const rowless{"(Download)", "-", "Create Folder", "Permission...", "(Refresh)", "(Rename)", "(Delete)"};
    EXPECT_EQ(contextMenuAt(-1, "Create Folder"), rowless);
    contextMenuAt(1, "Permission...");
    EXPECT_EQ(takeRequests(), QStringList({"createFolder", "permissions /srv/dir"}));
    pane->showPlaceholder("Not connected.");
    EXPECT_EQ(contextMenuAt(0), rowless);
}

TEST_F(RemoteActions, OnlyLocalFilesAreTakenByADropAndADesktopDragCopiesIntoTheFolderRow)
{
    QMimeData text;
    text.setText("/home/u/one.txt");
    QMimeData web;
    web.setUrls({QUrl("https://example.invalid/file")});
    for (QMimeData const* refused : {&text, &web}) {
        EXPECT_FALSE(pane->validateDrop(refused));
        EXPECT_FALSE(pane->acceptDrop(refused, 1));
    }
    EXPECT_TRUE(takeRequests().isEmpty());

    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/home/u/one.txt"), QUrl::fromLocalFile("/home/u/two")});
    QWidget* viewport = pane->tableView()->viewport();
    QPoint const onFolder = rowCentre(1);
    QDragEnterEvent enter(onFolder, Qt::CopyAction | Qt::MoveAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDragMoveEvent move(onFolder, Qt::CopyAction | Qt::MoveAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &move);
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
    QDropEvent drop(onFolder, Qt::CopyAction | Qt::MoveAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &drop);
    EXPECT_EQ(takeRequests(), QStringList({"drop /srv/dir /home/u/one.txt,/home/u/two"}));
}

TEST_F(RemoteActions, TheFileListTakesTheKeysOfAFileManagerExceptOnTheMessageRowAndThePathFieldOnlyEdits)
{
    pane->setCurrentPath("/srv/site");
    pane->tableView()->setFocus();
    selectRows({0});
    press({Qt::Key_Down, Qt::Key_Return, Qt::Key_F2, Qt::Key_Delete, Qt::Key_F5, Qt::Key_Backspace});
    EXPECT_EQ(takeRequests(), QStringList({"open /srv/dir", "rename /srv/dir (dir)", "delete /srv/dir (dir)",
                                           "open /srv/site", "open /srv"}));

    pane->showPlaceholder("Not connected.");
    selectRows({0});
    press({Qt::Key_Return, Qt::Key_F2});
    EXPECT_TRUE(takeRequests().isEmpty());

    // A double click on the remote path field edits as usual and opens no dialog.
    test::ScriptedShellDialogs dialogs; // any question fails the test
    pane->setDialogs(&dialogs);
    pane->setPathValue("/var/www");
    testing::doubleClick(pane->pathField(), QPoint(12, pane->pathField()->height() / 2));
    QApplication::processEvents();
    pane->openFolderClicked();
    EXPECT_TRUE(dialogs.questions().empty());
    EXPECT_TRUE(pane->pathField()->hasSelectedText()) << "a double click selects a word of the path";
}

class LocalActions : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(false);
        pane->setDialogs(&dialogs);
        tree.make("folder/");
        tree.make("b.txt");
        pane->loadLocalDirectory(tree.path());
        delegate.calls.clear();
    }

    testing::FolderTree tree;
    test::ScriptedShellDialogs dialogs;
};

TEST_F(LocalActions, OnlyUploadAndOpenFolderWorkHereDropsAreRefusedAndThePathFieldOpensTheFolderDialog)
{
    EXPECT_TRUE(pane->openFolderButton()->isVisible());
    EXPECT_FALSE(pane->downloadButton()->isEnabled());
    selectRows({1, 0});
    pane->downloadClicked();
    pane->contextPermissionAction();
    pane->uploadClicked();
    EXPECT_EQ(delegate.takeRequests(),
              QStringList({"transfer " + tree.path("b.txt"), "transfer " + tree.path("folder") + " (dir)"}))
        << "permissions are a remote matter";

    EXPECT_EQ(contextMenuAt(0), QStringList({"Upload", "-", "Create Folder", "Refresh", "Rename", "Delete"}));
    pane->tableView()->clearSelection();
    EXPECT_EQ(contextMenuAt(-1), QStringList({"(Upload)", "-", "Create Folder", "Refresh", "(Rename)", "(Delete)"}));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(tree.path("b.txt"))});
    EXPECT_FALSE(pane->validateDrop(&data));
    EXPECT_FALSE(pane->model()->canDropMimeData(&data, Qt::CopyAction, -1, -1, pane->model()->index(0, 0)));
    EXPECT_TRUE(delegate.takeRequests().isEmpty());

    // A double click on the path field asks for a folder, only once the click has ended.
    dialogs.expectFolder(tree.path("folder") + "/ \n");
    testing::doubleClick(pane->pathField(), pane->pathField()->rect().center());
    EXPECT_TRUE(dialogs.questions().empty()) << "the dialog must be posted, not run inside the click";
    QTRY_COMPARE(dialogs.questions().size(), 1u);
    EXPECT_EQ(dialogs.questions().front().title, "Select a local folder");
    EXPECT_EQ(pane->pathValue(), tree.path("folder"));
    EXPECT_FALSE(pane->pathField()->hasSelectedText()) << "the double click ran the action instead of selecting";
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "a folder chosen here is not remembered";

    // A cancelled dialog leaves the pane where it was; an empty path starts at home, a missing
    // folder is not offered.
    std::pair<QString, QString> const starts[] = {
        {tree.path("folder"), tree.path("folder")}, {QStringLiteral(""), QDir::homePath()}, {tree.path("gone"), {}}};
    for (auto const& [path, offered] : starts) {
        dialogs.expectFolder(QString());
        pane->setCurrentPath(path);
        pane->openFolder();
        EXPECT_EQ(dialogs.questions().back().text, offered);
        EXPECT_EQ(pane->pathValue(), path);
    }

    int shellPickerRuns = 0;
    QObject receiver;
    pane->redirectOpenFolderButton(&receiver, [&] { ++shellPickerRuns; });
    pane->openFolderButton()->click();
    EXPECT_EQ(shellPickerRuns, 1);
    EXPECT_EQ(dialogs.questions().size(), 4u) << "the shell took over the button";
}

TEST(PaneViews, TheLaneDragsWhereItIsEmptyItsArrowsClickWithoutMovingItAndAViewLivesAsLongAsItsOwner)
{
    PerchPaneSplitView split;
    auto local = std::make_unique<PerchFilePaneController>(QStringLiteral("Local"), false);
    split.addWidget(local->view());
    split.addWidget(new QLabel("remote"));
    split.resize(1440, 400);
    split.setSizes({700, 700});
    split.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&split));
    QSignalSpy uploads(&split, &PerchPaneSplitView::rightArrowClicked);
    QSignalSpy downloads(&split, &PerchPaneSplitView::leftArrowClicked);
    for (QToolButton* arrow : {split.rightArrowButton(), split.leftArrowButton(), split.leftArrowButton()}) {
        QTest::mouseClick(arrow, Qt::LeftButton);
    }
    EXPECT_EQ(uploads.size(), 1);
    EXPECT_EQ(downloads.size(), 2);
    EXPECT_EQ(split.sizes().first(), 700);
    QSplitterHandle* lane = split.handle(1);
    QPoint const empty(20, 8);
    QTest::mousePress(lane, Qt::LeftButton, {}, empty);
    QTest::mouseMove(lane, empty + QPoint(60, 0));
    QTest::mouseRelease(lane, Qt::LeftButton, {}, empty + QPoint(60, 0));
    EXPECT_EQ(split.sizes().first(), 760);

    QPointer<QWidget> const view = local->view();
    local.reset();
    ASSERT_FALSE(view.isNull()) << "the splitter owns the adopted view";
    split.repaint();
    testing::doubleClick(view->findChild<PerchPathField*>(), QPoint(12, 8));
    EXPECT_TRUE(view->findChild<PerchPathField*>()->hasSelectedText()) << "the field is a plain one now";
    {
        PerchFilePaneController pane(QStringLiteral("Local"), false);
        delete pane.view();
        QLineEdit other;
        other.show();
        testing::doubleClick(&other, QPoint(5, 5));
        EXPECT_EQ(pane.view(), nullptr) << "a pane without its view ignores double clicks elsewhere";
    }
    auto remote = std::make_unique<PerchFilePaneController>(QStringLiteral("Remote"), true);
    QPointer<QWidget> const remoteView = remote->view();
    remote.reset();
    EXPECT_TRUE(remoteView.isNull()) << "a view no window adopted dies with its pane";
}

} // namespace
} // namespace perchftp::app
