// Which row an action means, the context menu, drops and the folder dialog.
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "app/shell_dialogs.hpp"
#include "pane_test_support.hpp"

#include <QApplication>
#include <QDir>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace perchftp::app {
namespace {

using testing::remoteFile;
using testing::remoteFolder;

PaneEntries threeFilesAndAFolder()
{
    return {remoteFile("a.txt", 1), remoteFolder("dir"), remoteFile("c.txt", 3), remoteFile("d.txt", 4)};
}

class RemoteActions : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(true);
        pane->showRemoteEntries(threeFilesAndAFolder(), "/srv");
        delegate.clear();
    }

    QStringList withoutSelectionReports() const
    {
        QStringList kept;
        for (QString const& call : delegate.summaries()) {
            if (!call.startsWith("selection")) {
                kept.append(call);
            }
        }
        return kept;
    }

    void triggerContextItem(int row, QString const& title)
    {
        withContextMenuAt(row, [&](QMenu* menu) {
            for (QAction* action : menu->actions()) {
                if (action->text() == title) {
                    action->trigger();
                }
            }
        });
    }

    std::unique_ptr<QMimeData> filesToDrop(QStringList const& paths) const
    {
        auto data = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (QString const& path : paths) {
            urls.append(QUrl::fromLocalFile(path));
        }
        data->setUrls(urls);
        return data;
    }
};

TEST_F(RemoteActions, ButtonsStandInOrderAndOnlyDownloadWorksOnTheRemotePane)
{
    EXPECT_EQ(pane->upButton()->text(), "Up");
    EXPECT_EQ(pane->createFolderButton()->text(), "New");
    EXPECT_EQ(pane->openFolderButton()->text(), "Open Folder...");
    EXPECT_FALSE(pane->openFolderButton()->isEnabled());
    EXPECT_FALSE(pane->openFolderButton()->isVisible());
    EXPECT_FALSE(pane->uploadButton()->isEnabled());
    EXPECT_TRUE(pane->downloadButton()->isEnabled());
    EXPECT_LT(pane->upButton()->x(), pane->createFolderButton()->x());
    EXPECT_LT(pane->renameButton()->x(), pane->deleteButton()->x());
    EXPECT_LT(pane->deleteButton()->x(), pane->uploadButton()->x());
    EXPECT_LT(pane->uploadButton()->x(), pane->downloadButton()->x());
}

TEST_F(RemoteActions, RenameUsesTheSelectedRowAndDoesNothingWithoutOne)
{
    pane->renameClicked();
    EXPECT_TRUE(delegate.calls.empty());
    selectRows({1});
    delegate.clear();
    pane->renameClicked();
    ASSERT_EQ(delegate.summaries(), QStringList({"rename /srv/dir"}));
    EXPECT_TRUE(delegate.calls.front().isDirectory);
    EXPECT_TRUE(delegate.calls.front().isRemote);
}

TEST_F(RemoteActions, TheContextMenuActsOnTheClickedRowRatherThanTheSelectedOne)
{
    selectRows({0});
    pane->tableView()->selectionModel()->setCurrentIndex(pane->model()->index(0, 0), QItemSelectionModel::NoUpdate);
    triggerContextItem(2, "Rename");
    EXPECT_EQ(withoutSelectionReports(), QStringList({"rename /srv/c.txt"}));
    EXPECT_EQ(pane->clickedRow(), -1) << "the clicked row lasts only while the menu is open";
}

TEST_F(RemoteActions, DeleteTakesOneItemAloneAndSeveralAsOneRequest)
{
    pane->deleteClicked();
    EXPECT_TRUE(delegate.calls.empty());
    selectRows({2});
    delegate.clear();
    pane->deleteClicked();
    EXPECT_EQ(delegate.summaries(), QStringList({"delete /srv/c.txt"}));

    selectRows({3, 0});
    delegate.clear();
    pane->deleteClicked();
    EXPECT_EQ(delegate.summaries(), QStringList({"deleteMany /srv/a.txt /srv/d.txt"}));
}

TEST_F(RemoteActions, DownloadSendsEachSelectedItemInOrderAndUploadNothing)
{
    selectRows({3, 1});
    delegate.clear();
    pane->uploadClicked();
    EXPECT_TRUE(delegate.calls.empty());
    pane->downloadClicked();
    EXPECT_EQ(delegate.summaries(), QStringList({"transfer /srv/dir", "transfer /srv/d.txt"}));
    EXPECT_TRUE(delegate.calls[0].isDirectory);
    EXPECT_TRUE(delegate.calls[0].isRemote);
}

TEST_F(RemoteActions, ARightClickOnAnUnselectedRowSelectsItAloneAndTheTransferTakesItAlone)
{
    selectRows({0, 1});
    triggerContextItem(2, "Download");
    EXPECT_EQ(pane->selectedItems().size(), 1);
    EXPECT_EQ(pane->selectedPath(), "/srv/c.txt");
    EXPECT_EQ(withoutSelectionReports(), QStringList({"transfer /srv/c.txt"}));
}

TEST_F(RemoteActions, ARightClickOnOneOfSeveralSelectedRowsTransfersThemAll)
{
    selectRows({0, 2});
    triggerContextItem(2, "Download");
    EXPECT_EQ(pane->selectedItems().size(), 2);
    EXPECT_EQ(withoutSelectionReports(), QStringList({"transfer /srv/a.txt", "transfer /srv/c.txt"}));
}

TEST_F(RemoteActions, ARightClickBelowTheRowsChangesNoSelection)
{
    selectRows({0, 2});
    rightClickRow(-1);
    EXPECT_EQ(pane->selectedItems().size(), 2);
}

TEST_F(RemoteActions, TheMenuIsEnabledByIndexWithPermissionAlwaysOnAndRefreshNeedingARow)
{
    EXPECT_EQ(contextMenuEnabledStatesAt(1), QList<bool>({true, true, true, true, true, true, true}));
    pane->tableView()->clearSelection();
    EXPECT_EQ(contextMenuEnabledStatesAt(-1), QList<bool>({false, true, true, true, false, false, false}));
    QStringList titles;
    withContextMenuAt(-1, [&](QMenu* menu) {
        EXPECT_EQ(menu->title(), "Pane Actions");
        for (QAction const* action : menu->actions()) {
            titles.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        }
    });
    EXPECT_EQ(titles, QStringList({"Download", "-", "Create Folder", "Permission...", "Refresh", "Rename", "Delete"}));
}

TEST_F(RemoteActions, TheMenuOverTheNotConnectedRowOffersOnlyTheRowlessItems)
{
    pane->showPlaceholder("Not connected.");
    EXPECT_EQ(contextMenuEnabledStatesAt(0), QList<bool>({false, true, true, true, false, false, false}));
}

TEST_F(RemoteActions, PermissionsTakeTheSelectionOrElseTheClickedRow)
{
    selectRows({0, 3});
    delegate.clear();
    pane->contextPermissionAction();
    EXPECT_EQ(delegate.summaries(), QStringList({"permissions /srv/a.txt /srv/d.txt"}));

    pane->tableView()->clearSelection();
    delegate.clear();
    pane->contextPermissionAction();
    EXPECT_TRUE(delegate.calls.empty()) << "no selection and no clicked row";
    triggerContextItem(1, "Permission...");
    EXPECT_EQ(withoutSelectionReports(), QStringList({"permissions /srv/dir"}));
}

TEST_F(RemoteActions, CreateFolderNeedsNoRow)
{
    triggerContextItem(-1, "Create Folder");
    pane->createFolderClicked();
    EXPECT_EQ(withoutSelectionReports(), QStringList({"createFolder", "createFolder"}));
    EXPECT_TRUE(delegate.calls.front().isRemote);
}

TEST_F(RemoteActions, DroppedFilesGoIntoAFolderRowOrElseTheCurrentFolder)
{
    auto const data = filesToDrop({"/home/u/one.txt", "/home/u/two"});
    EXPECT_TRUE(pane->validateDrop(data.get()));
    EXPECT_TRUE(pane->acceptDrop(data.get(), 1));
    EXPECT_TRUE(pane->acceptDrop(data.get(), 2));
    EXPECT_TRUE(pane->acceptDrop(data.get(), -1));
    EXPECT_EQ(delegate.summaries(), QStringList({"drop /srv/dir /home/u/one.txt,/home/u/two",
                                                 "drop /srv /home/u/one.txt,/home/u/two",
                                                 "drop /srv /home/u/one.txt,/home/u/two"}));
    EXPECT_TRUE(delegate.calls.front().isRemote);
}

TEST_F(RemoteActions, DropsWithoutLocalFilesAreRefused)
{
    QMimeData text;
    text.setText("/home/u/one.txt");
    EXPECT_FALSE(pane->validateDrop(&text));
    EXPECT_FALSE(pane->acceptDrop(&text, 1));
    QMimeData web;
    web.setUrls({QUrl("https://example.invalid/file")});
    EXPECT_FALSE(pane->validateDrop(&web));
    EXPECT_FALSE(pane->acceptDrop(&web, -1));
    EXPECT_TRUE(delegate.calls.empty());
}

TEST_F(RemoteActions, ADropOnAFolderRowOfTheTableUploadsIntoThatFolder)
{
    auto const data = filesToDrop({"/home/u/one.txt"});
    QWidget* viewport = pane->tableView()->viewport();
    QPoint const onFolder = rowCentre(1);
    QDragEnterEvent enter(onFolder, Qt::CopyAction | Qt::MoveAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDragMoveEvent move(onFolder, Qt::CopyAction | Qt::MoveAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &move);
    EXPECT_TRUE(move.isAccepted());
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
    QDropEvent drop(onFolder, Qt::CopyAction | Qt::MoveAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &drop);
    EXPECT_EQ(delegate.summaries(), QStringList({"drop /srv/dir /home/u/one.txt"}));
}

class LocalActions : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(false);
        tree.makeFolder("folder");
        tree.makeFile("b.txt");
        tree.makeFile("c.txt");
        pane->loadLocalDirectory(tree.path());
        delegate.clear();
    }

    testing::FolderTree tree;
};

TEST_F(LocalActions, OnlyUploadAndOpenFolderWorkOnTheLocalPane)
{
    EXPECT_TRUE(pane->openFolderButton()->isEnabled());
    EXPECT_TRUE(pane->openFolderButton()->isVisible());
    EXPECT_TRUE(pane->uploadButton()->isEnabled());
    EXPECT_FALSE(pane->downloadButton()->isEnabled());
    EXPECT_LT(pane->upButton()->x(), pane->openFolderButton()->x());
    EXPECT_LT(pane->openFolderButton()->x(), pane->createFolderButton()->x());
}

TEST_F(LocalActions, UploadSendsEachSelectedItemAsLocalAndDownloadNothing)
{
    selectRows({2, 0});
    delegate.clear();
    pane->downloadClicked();
    EXPECT_TRUE(delegate.calls.empty());
    pane->uploadClicked();
    EXPECT_EQ(delegate.summaries(),
              QStringList({"transfer " + tree.path("b.txt"), "transfer " + tree.path("folder")}));
    EXPECT_FALSE(delegate.calls.front().isRemote);
    EXPECT_TRUE(delegate.calls.back().isDirectory);
}

TEST_F(LocalActions, TheMenuIsEnabledByIndexWithRefreshAlwaysOnAndRenameNeedingARow)
{
    EXPECT_EQ(contextMenuEnabledStatesAt(0), QList<bool>({true, true, true, true, true, true}));
    pane->tableView()->clearSelection();
    EXPECT_EQ(contextMenuEnabledStatesAt(-1), QList<bool>({false, true, true, true, false, false}));
    QStringList titles;
    withContextMenuAt(-1, [&](QMenu* menu) {
        for (QAction const* action : menu->actions()) {
            titles.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        }
    });
    EXPECT_EQ(titles, QStringList({"Upload", "-", "Create Folder", "Refresh", "Rename", "Delete"}));
}

TEST_F(LocalActions, RefreshRelistsTheFolderWithoutAskingTheShell)
{
    tree.makeFile("new.txt");
    pane->contextRefreshAction();
    EXPECT_TRUE(shownNames().contains("new.txt"));
    EXPECT_TRUE(delegate.calls.empty());
}

TEST_F(LocalActions, PermissionsAreARemoteMatter)
{
    selectRows({1});
    delegate.clear();
    pane->contextPermissionAction();
    EXPECT_TRUE(delegate.calls.empty());
}

TEST_F(LocalActions, TheLocalPaneRefusesDrops)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(tree.path("b.txt"))});
    EXPECT_FALSE(pane->validateDrop(&data));
    EXPECT_FALSE(pane->acceptDrop(&data, 0));
    EXPECT_FALSE(pane->model()->canDropMimeData(&data, Qt::CopyAction, -1, -1, pane->model()->index(0, 0)));
    EXPECT_TRUE(delegate.calls.empty());
}

// Answers the folder question from a script and remembers what it was asked.
class ScriptedDialogs : public ShellDialogs {
public:
    QString answer;
    QStringList startFolders;
    QStringList titles;

    QString chooseExistingFolder(QWidget*, QString const& title, QString const& startFolder) override
    {
        titles.append(title);
        startFolders.append(startFolder);
        return answer;
    }
};

class FolderDialog : public LocalActions {
protected:
    void SetUp() override
    {
        LocalActions::SetUp();
        pane->setDialogs(&dialogs);
    }

    ScriptedDialogs dialogs;
};

TEST_F(FolderDialog, ADoubleClickOnTheLocalPathFieldAsksForAFolderOnlyAfterTheClickHasEnded)
{
    dialogs.answer = tree.path("folder") + "/ \n";
    testing::doubleClick(pane->pathField(), pane->pathField()->rect().center());
    EXPECT_TRUE(dialogs.startFolders.isEmpty()) << "the dialog must be posted, not run inside the click";
    QTRY_COMPARE(dialogs.startFolders.size(), 1);
    EXPECT_EQ(dialogs.startFolders.front(), tree.path());
    EXPECT_EQ(dialogs.titles.front(), "Select a local folder");
    EXPECT_EQ(pane->pathValue(), tree.path("folder"));
    EXPECT_TRUE(delegate.calls.empty()) << "a folder chosen here is not remembered";
}

TEST_F(FolderDialog, ACancelledDialogLeavesThePaneWhereItWas)
{
    pane->openFolderClicked();
    EXPECT_EQ(dialogs.startFolders.size(), 1);
    EXPECT_EQ(pane->pathValue(), tree.path());
}

TEST_F(FolderDialog, TheDialogStartsAtHomeWhenThePathIsEmptyAndOffersNoMissingFolder)
{
    pane->setCurrentPath(QStringLiteral(""));
    pane->openFolder();
    pane->setCurrentPath(tree.path("gone"));
    pane->openFolder();
    EXPECT_EQ(dialogs.startFolders, QStringList({QDir::homePath(), QString()}));
}

TEST_F(FolderDialog, TheShellCanTakeOverTheOpenFolderButton)
{
    int shellPickerRuns = 0;
    QObject receiver;
    pane->redirectOpenFolderButton(&receiver, [&] { ++shellPickerRuns; });
    pane->openFolderButton()->click();
    EXPECT_EQ(shellPickerRuns, 1);
    EXPECT_TRUE(dialogs.startFolders.isEmpty());
}

class RemoteFolderDialog : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(true);
        pane->setDialogs(&dialogs);
    }

    ScriptedDialogs dialogs;
};

TEST_F(RemoteFolderDialog, ADoubleClickOnTheRemotePathFieldEditsAsUsualAndOpensNoDialog)
{
    pane->setPathValue("/var/www");
    testing::doubleClick(pane->pathField(), QPoint(12, pane->pathField()->height() / 2));
    QApplication::processEvents();
    pane->openFolderClicked();
    EXPECT_TRUE(dialogs.startFolders.isEmpty());
    EXPECT_TRUE(pane->pathField()->hasSelectedText()) << "a double click selects a word of the path";
}


class PaneKeys : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(true);
        pane->showRemoteEntries(threeFilesAndAFolder(), "/srv/site");
        pane->tableView()->setFocus();
        selectRows({1});
        delegate.clear();
    }

    void press(QKeySequence const& key) { QTest::keySequence(pane->tableView(), key); }
};

TEST_F(PaneKeys, TheFileListTakesTheKeysOfAFileManager)
{
    press(QKeySequence(Qt::Key_Return));
    press(QKeySequence(Qt::Key_F2));
    press(QKeySequence(Qt::Key_Delete));
    press(QKeySequence(Qt::Key_F5));
    press(QKeySequence(Qt::Key_Backspace));
    EXPECT_EQ(delegate.summaries(), QStringList({"open /srv/dir", "rename /srv/dir", "delete /srv/dir",
                                                 "open /srv/site", "open /srv"}));
}

TEST_F(PaneKeys, ReturnOnTheMessageRowDoesNothing)
{
    pane->showPlaceholder("Not connected.");
    selectRows({0});
    delegate.clear();
    press(QKeySequence(Qt::Key_Return));
    press(QKeySequence(Qt::Key_F2));
    EXPECT_TRUE(delegate.calls.empty());
}

} // namespace
} // namespace perchftp::app
