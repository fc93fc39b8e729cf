// Which row an action means, the context menu, drops, keys, the folder dialog, and the views around
// the panes: the divider lane, row painting and view lifetimes.
#include "app/pane/perch_pane_split_view.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "pane_test_support.hpp"
#include "support/scripted_shell_dialogs.hpp"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QUrl>

#include <gtest/gtest.h>

#include <cstdlib>

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
};

TEST_F(RemoteActions, OnlyDownloadWorksHereAndTheButtonsActOnTheSelection)
{
    EXPECT_FALSE(pane->openFolderButton()->isEnabled());
    EXPECT_FALSE(pane->openFolderButton()->isVisible());
    EXPECT_FALSE(pane->uploadButton()->isEnabled());
    EXPECT_TRUE(pane->downloadButton()->isEnabled());
    QList<QPushButton*> const order{pane->upButton(), pane->createFolderButton(), pane->renameButton(),
                                    pane->deleteButton(), pane->uploadButton(), pane->downloadButton()};
    for (int index = 1; index < order.size(); ++index) {
        EXPECT_LT(order[index - 1]->x(), order[index]->x()) << order[index]->text().toStdString();
    }

    pane->renameClicked();
    pane->deleteClicked();
    pane->contextPermissionAction();
    EXPECT_TRUE(takeRequests().isEmpty()) << "no selection and no clicked row";

    selectRows({1});
    pane->renameClicked();
    EXPECT_EQ(takeRequests(), QStringList({"rename /srv/dir (dir)"}));
    selectRows({2});
    pane->deleteClicked();
    EXPECT_EQ(takeRequests(), QStringList({"delete /srv/c.txt"}));
    selectRows({3, 0});
    pane->deleteClicked();
    pane->contextPermissionAction();
    EXPECT_EQ(takeRequests(), QStringList({"deleteMany /srv/a.txt /srv/d.txt", "permissions /srv/a.txt /srv/d.txt"}));
    selectRows({3, 1});
    pane->uploadClicked();
    pane->downloadClicked();
    pane->createFolderClicked();
    EXPECT_EQ(takeRequests(), QStringList({"transfer /srv/dir (dir)", "transfer /srv/d.txt", "createFolder"}));
}

TEST_F(RemoteActions, TheContextMenuActsOnTheClickedRowAndARightClickSelectsAnUnselectedRowAlone)
{
    selectRows({0});
    pane->tableView()->selectionModel()->setCurrentIndex(pane->model()->index(0, 0), QItemSelectionModel::NoUpdate);
    triggerContextItem(2, "Rename");
    EXPECT_EQ(takeRequests(), QStringList({"rename /srv/c.txt"}));
    EXPECT_EQ(pane->clickedRow(), -1) << "the clicked row lasts only while the menu is open";

    selectRows({0, 1});
    triggerContextItem(2, "Download");
    EXPECT_EQ(pane->selectedItems().size(), 1);
    EXPECT_EQ(pane->selectedPath(), "/srv/c.txt");
    EXPECT_EQ(takeRequests(), QStringList({"transfer /srv/c.txt"}));

    selectRows({0, 2});
    triggerContextItem(2, "Download");
    EXPECT_EQ(pane->selectedItems().size(), 2) << "a right click on one of several selected rows takes them all";
    EXPECT_EQ(takeRequests(), QStringList({"transfer /srv/a.txt", "transfer /srv/c.txt"}));
    rightClickRow(-1);
    EXPECT_EQ(pane->selectedItems().size(), 2) << "a right click below the rows changes no selection";

    pane->tableView()->clearSelection();
    triggerContextItem(1, "Permission...");
    triggerContextItem(-1, "Create Folder");
    EXPECT_EQ(takeRequests(), QStringList({"permissions /srv/dir", "createFolder"}));
}

TEST_F(RemoteActions, TheMenuIsEnabledByIndexWithPermissionAlwaysOnAndRefreshNeedingARow)
{
    EXPECT_EQ(contextMenuAt(1),
              QStringList({"Download", "-", "Create Folder", "Permission...", "Refresh", "Rename", "Delete"}));
    QStringList const rowless{"(Download)", "-", "Create Folder", "Permission...", "(Refresh)", "(Rename)", "(Delete)"};
    pane->tableView()->clearSelection();
    EXPECT_EQ(contextMenuAt(-1), rowless);
    pane->showPlaceholder("Not connected.");
    EXPECT_EQ(contextMenuAt(0), rowless);
}

TEST_F(RemoteActions, LocalFilesDroppedGoIntoAFolderRowOrElseTheCurrentFolderAndNothingElseIsTaken)
{
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/home/u/one.txt"), QUrl::fromLocalFile("/home/u/two")});
    EXPECT_TRUE(pane->validateDrop(&files));
    EXPECT_TRUE(pane->acceptDrop(&files, 1));
    EXPECT_TRUE(pane->acceptDrop(&files, 2));
    EXPECT_TRUE(pane->acceptDrop(&files, -1));
    EXPECT_EQ(takeRequests(), QStringList({"drop /srv/dir /home/u/one.txt,/home/u/two",
                                           "drop /srv /home/u/one.txt,/home/u/two",
                                           "drop /srv /home/u/one.txt,/home/u/two"}));

    QMimeData text;
    text.setText("/home/u/one.txt");
    QMimeData web;
    web.setUrls({QUrl("https://example.invalid/file")});
    for (QMimeData const* refused : {&text, &web}) {
        EXPECT_FALSE(pane->validateDrop(refused));
        EXPECT_FALSE(pane->acceptDrop(refused, 1));
        EXPECT_FALSE(pane->acceptDrop(refused, -1));
    }
    EXPECT_TRUE(takeRequests().isEmpty());

    // The way a desktop drag delivers it to the table.
    QMimeData one;
    one.setUrls({QUrl::fromLocalFile("/home/u/one.txt")});
    QWidget* viewport = pane->tableView()->viewport();
    QPoint const onFolder = rowCentre(1);
    QDragEnterEvent enter(onFolder, Qt::CopyAction | Qt::MoveAction, &one, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDragMoveEvent move(onFolder, Qt::CopyAction | Qt::MoveAction, &one, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &move);
    EXPECT_TRUE(move.isAccepted());
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
    QDropEvent drop(onFolder, Qt::CopyAction | Qt::MoveAction, &one, Qt::LeftButton, {});
    QApplication::sendEvent(viewport, &drop);
    EXPECT_EQ(takeRequests(), QStringList({"drop /srv/dir /home/u/one.txt"}));
}

TEST_F(RemoteActions, TheFileListTakesTheKeysOfAFileManagerExceptOnTheMessageRow)
{
    pane->setCurrentPath("/srv/site");
    pane->tableView()->setFocus();
    selectRows({1});
    for (Qt::Key const key : {Qt::Key_Return, Qt::Key_F2, Qt::Key_Delete, Qt::Key_F5, Qt::Key_Backspace}) {
        QTest::keySequence(pane->tableView(), QKeySequence(key));
    }
    EXPECT_EQ(takeRequests(), QStringList({"open /srv/dir", "rename /srv/dir (dir)", "delete /srv/dir (dir)",
                                           "open /srv/site", "open /srv"}));

    pane->showPlaceholder("Not connected.");
    selectRows({0});
    QTest::keySequence(pane->tableView(), QKeySequence(Qt::Key_Return));
    QTest::keySequence(pane->tableView(), QKeySequence(Qt::Key_F2));
    EXPECT_TRUE(takeRequests().isEmpty());
}

class LocalActions : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(false);
        pane->setDialogs(&dialogs);
        tree.makeFolder("folder");
        tree.makeFile("b.txt");
        tree.makeFile("c.txt");
        pane->loadLocalDirectory(tree.path());
        delegate.calls.clear();
    }

    testing::FolderTree tree;
    test::ScriptedShellDialogs dialogs;
};

TEST_F(LocalActions, OnlyUploadAndOpenFolderWorkHereAndTheMenuFitsTheLocalSide)
{
    EXPECT_TRUE(pane->openFolderButton()->isEnabled());
    EXPECT_TRUE(pane->openFolderButton()->isVisible());
    EXPECT_TRUE(pane->uploadButton()->isEnabled());
    EXPECT_FALSE(pane->downloadButton()->isEnabled());
    EXPECT_LT(pane->upButton()->x(), pane->openFolderButton()->x());
    EXPECT_LT(pane->openFolderButton()->x(), pane->createFolderButton()->x());

    selectRows({2, 0});
    pane->downloadClicked();
    pane->contextPermissionAction();
    pane->uploadClicked();
    EXPECT_EQ(delegate.takeRequests(),
              QStringList({"transfer " + tree.path("b.txt"), "transfer " + tree.path("folder") + " (dir)"}))
        << "permissions are a remote matter";

    EXPECT_EQ(contextMenuAt(0), QStringList({"Upload", "-", "Create Folder", "Refresh", "Rename", "Delete"}));
    pane->tableView()->clearSelection();
    EXPECT_EQ(contextMenuAt(-1), QStringList({"(Upload)", "-", "Create Folder", "Refresh", "(Rename)", "(Delete)"}));

    tree.makeFile("new.txt");
    pane->contextRefreshAction();
    EXPECT_TRUE(shownNames().contains("new.txt"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(tree.path("b.txt"))});
    EXPECT_FALSE(pane->validateDrop(&data));
    EXPECT_FALSE(pane->acceptDrop(&data, 0));
    EXPECT_FALSE(pane->model()->canDropMimeData(&data, Qt::CopyAction, -1, -1, pane->model()->index(0, 0)));
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "a local refresh asks nothing of the shell and drops are refused";
}

TEST_F(LocalActions, ADoubleClickOnThePathFieldAsksForAFolderOnlyAfterTheClickHasEnded)
{
    auto const startFolders = [this] {
        QStringList folders;
        for (auto const& question : dialogs.questions()) {
            folders.append(question.text);
        }
        return folders;
    };
    dialogs.expectFolder(tree.path("folder") + "/ \n");
    testing::doubleClick(pane->pathField(), pane->pathField()->rect().center());
    EXPECT_TRUE(dialogs.questions().empty()) << "the dialog must be posted, not run inside the click";
    QTRY_COMPARE(dialogs.questions().size(), 1u);
    EXPECT_EQ(dialogs.questions().front().title, "Select a local folder");
    EXPECT_EQ(pane->pathValue(), tree.path("folder"));
    EXPECT_FALSE(pane->pathField()->hasSelectedText()) << "the double click ran the action instead of selecting";
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "a folder chosen here is not remembered";

    for (int cancelled = 0; cancelled < 3; ++cancelled) {
        dialogs.expectFolder(QString());
    }
    pane->openFolderClicked();
    EXPECT_EQ(pane->pathValue(), tree.path("folder")) << "a cancelled dialog leaves the pane where it was";
    pane->setCurrentPath(QStringLiteral(""));
    pane->openFolder();
    pane->setCurrentPath(tree.path("gone"));
    pane->openFolder();
    EXPECT_EQ(startFolders(), QStringList({tree.path(), tree.path("folder"), QDir::homePath(), QString()}))
        << "an empty path starts at home and a missing folder is not offered";

    int shellPickerRuns = 0;
    QObject receiver;
    pane->redirectOpenFolderButton(&receiver, [&] { ++shellPickerRuns; });
    pane->openFolderButton()->click();
    EXPECT_EQ(shellPickerRuns, 1);
    EXPECT_EQ(dialogs.questions().size(), 4u) << "the shell took over the button";
}

TEST_F(RemoteActions, ADoubleClickOnThePathFieldEditsAsUsualAndOpensNoDialog)
{
    test::ScriptedShellDialogs dialogs; // any question fails the test
    pane->setDialogs(&dialogs);
    pane->setPathValue("/var/www");
    testing::doubleClick(pane->pathField(), QPoint(12, pane->pathField()->height() / 2));
    QApplication::processEvents();
    pane->openFolderClicked();
    EXPECT_TRUE(dialogs.questions().empty());
    EXPECT_TRUE(pane->pathField()->hasSelectedText()) << "a double click selects a word of the path";
}

TEST(PaneSplitView, TheLaneIs40WideWithTwoDarkStripsTwoLiveArrowsAndDragsWhereItIsEmpty)
{
    PerchPaneSplitView split;
    split.addWidget(new QLabel("local"));
    split.addWidget(new QLabel("remote"));
    split.resize(840, 400);
    split.setSizes({400, 400});
    split.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&split));
    QSplitterHandle* lane = split.handle(1);

    EXPECT_EQ(lane->width(), 40);
    QImage const image = lane->grab().toImage();
    QRgb const strip = QColor::fromRgbF(0.02f, 0.02f, 0.02f).rgb();
    EXPECT_EQ(image.pixel(2, 10), strip);
    EXPECT_EQ(image.pixel(37, 10), strip);
    EXPECT_EQ(image.pixel(20, 10), split.palette().color(QPalette::Window).rgb()) << "the middle is not painted";

    QToolButton* right = split.rightArrowButton();
    QToolButton* left = split.leftArrowButton();
    ASSERT_NE(right, nullptr);
    ASSERT_NE(left, nullptr);
    EXPECT_EQ(right->size(), QSize(34, 44));
    EXPECT_EQ(left->size(), QSize(34, 44));
    EXPECT_LE(std::abs(right->geometry().center().y() - lane->height() / 2), 1);
    EXPECT_LE(std::abs(right->geometry().center().x() - lane->width() / 2), 1);
    EXPECT_EQ(left->y(), right->geometry().bottom() + 1 + 26);

    QSignalSpy uploads(&split, &PerchPaneSplitView::rightArrowClicked);
    QSignalSpy downloads(&split, &PerchPaneSplitView::leftArrowClicked);
    QTest::mouseClick(right, Qt::LeftButton);
    QTest::mouseClick(left, Qt::LeftButton);
    QTest::mouseClick(left, Qt::LeftButton);
    EXPECT_EQ(uploads.size(), 1);
    EXPECT_EQ(downloads.size(), 2);
    EXPECT_EQ(split.sizes().first(), 400) << "a click on a button does not move the divider";

    QPoint const empty(20, 8);
    QTest::mousePress(lane, Qt::LeftButton, {}, empty);
    QTest::mouseMove(lane, empty + QPoint(60, 0));
    QTest::mouseRelease(lane, Qt::LeftButton, {}, empty + QPoint(60, 0));
    EXPECT_EQ(split.sizes().first(), 460);
}

TEST_F(RemoteActions, RowsAreStripedAndTheSelectionIsARoundedBlueBand)
{
    auto const pixelInRow = [this](QImage const& image, int row, int x) {
        return QColor(image.pixel(x, pane->tableView()->visualRect(pane->model()->index(row, 0)).center().y()));
    };
    selectRows({1});
    QWidget* viewport = pane->tableView()->viewport();
    QImage const image = viewport->grab().toImage();
    int const farRight = viewport->width() - 4;
    QColor const evenRow = QColor::fromRgbF(0.24f, 0.24f, 0.24f).toRgb();
    EXPECT_EQ(pixelInRow(image, 0, farRight).rgb(), evenRow.rgb());

    // The selection blue at alpha 0.55 over the black of an odd row.
    QColor const selected = pixelInRow(image, 1, farRight);
    EXPECT_NEAR(selected.red(), 28, 2);
    EXPECT_NEAR(selected.green(), 64, 2);
    EXPECT_NEAR(selected.blue(), 115, 2);
    QRect const row = pane->tableView()->visualRect(pane->model()->index(1, 0));
    EXPECT_EQ(QColor(image.pixel(0, row.top())), QColor(Qt::black)) << "the band is inset and its corners round";
    pane->tableView()->clearSelection();
    QImage const unselected = viewport->grab().toImage();
    EXPECT_EQ(pixelInRow(unselected, 1, farRight), QColor(Qt::black)) << "odd rows are black";
}

TEST(PaneLifetime, AViewOutlivesItsPaneWhenAWindowAdoptedItAndDiesWithItOtherwise)
{
    {
        PerchPaneSplitView split;
        auto local = std::make_unique<PerchFilePaneController>(QStringLiteral("Local"), false);
        auto remote = std::make_unique<PerchFilePaneController>(QStringLiteral("Remote"), true);
        split.addWidget(local->view());
        split.addWidget(remote->view());
        split.show();
        QPointer<QWidget> const view = local->view();
        local.reset();
        remote.reset();
        ASSERT_FALSE(view.isNull()) << "the splitter owns the adopted view";
        split.repaint();
        testing::doubleClick(view->findChild<PerchPathField*>(), QPoint(12, 8));
        EXPECT_TRUE(view->findChild<PerchPathField*>()->hasSelectedText()) << "the field is a plain one now";
    }
    {
        PerchFilePaneController pane(QStringLiteral("Local"), false);
        delete pane.view();
        QLineEdit other;
        other.show();
        testing::doubleClick(&other, QPoint(5, 5));
        EXPECT_EQ(pane.view(), nullptr) << "a pane without its view ignores double clicks elsewhere";
    }
    auto pane = std::make_unique<PerchFilePaneController>(QStringLiteral("Remote"), true);
    QPointer<QWidget> const view = pane->view();
    pane.reset();
    EXPECT_TRUE(view.isNull());
}

} // namespace
} // namespace perchftp::app
