// What the panes list, where their clicks lead and which row an action means: the local pane on
// real folder trees, the remote pane on the rows the shell hands it; then the views around the
// panes: the divider lane and view lifetimes.
#include "app/pane/perch_pane_split_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "pane_test_support.hpp"
#include "support/file_access_as_nobody.hpp"
#include "support/scripted_shell_dialogs.hpp"

#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>
#include <QUrl>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace perchftp::app {
namespace {

using testing::doubleClick;
using testing::remoteFile;
using testing::remoteFolder;
using Model = PerchPaneTableModel;

void clickHeader(PerchFilePaneController& pane, int column)
{
    QHeaderView* header = pane.tableView()->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(column) + 10, 5));
}

class LocalPane : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(false);
        pane->setDialogs(&dialogs);
    }

    QString path(QString const& relative = {}) const
    {
        return relative.isEmpty() ? root.path() : root.path() + u'/' + relative;
    }
    // Makes a file, or a folder where the path ends in "/"; gives its path without that "/".
    QString make(QString const& relative) const
    {
        if (relative.endsWith(u'/')) {
            EXPECT_TRUE(QDir().mkpath(path(relative)));
            return path(relative.chopped(1));
        }
        QFile file(path(relative));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << relative.toStdString();
        return path(relative);
    }
    // The shown names, a folder's with a "/" after it.
    QStringList listed() const
    {
        QStringList names = shownNames();
        for (int row = 0; row < names.size(); ++row) {
            names[row] += pane->entries().at(row).dir ? QStringLiteral("/") : QString();
        }
        return names;
    }

    QTemporaryDir root;
    test::ScriptedShellDialogs dialogs; // any question not scripted fails the test
};

TEST_F(LocalPane, ListsAStandardisedFolderByNameWithoutCaseOrFoldersFirstFallsBackToHomeAndOpensEditedPaths)
{
    EXPECT_EQ(pane->pathField()->text(), QDir::homePath());

    // An edited path field asks the shell to open the standardised path, a blank one home.
    make("typed/");
    auto const commit = [this](QString const& text) {
        pane->pathField()->setText(text);
        QTest::keyClick(pane->pathField(), Qt::Key_Return);
        return delegate.takeRequests();
    };
    EXPECT_EQ(commit("  " + path("typed/../typed/") + "\n"), QStringList({"open " + path("typed")}));
    EXPECT_EQ(commit("   "), QStringList({"open " + QDir::homePath()}));
    pane->loadLocalDirectory(path());
    pane->pathField()->setFocus();
    emit pane->pathField()->editingFinished();
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "leaving an unedited field commits nothing";
    QTest::keyClicks(pane->pathField(), "/");
    emit pane->pathField()->editingFinished();
    EXPECT_EQ(delegate.takeRequests(), QStringList({"open " + path()}));

    for (QString const name : {"A-dir/", "c-dir/", "b.txt", ".hidden", "a.txt"}) {
        make("list/" + name);
    }
    pane->loadLocalDirectory(path("list/./A-dir/..//"));
    EXPECT_EQ(pane->pathValue(), path("list"));
    EXPECT_EQ(listed(), QStringList({".hidden", "A-dir/", "a.txt", "b.txt", "c-dir/"}));
    EXPECT_EQ(pane->entries().at(1).path, path("list/A-dir"));

    // A column sort shows its arrow but the local rows keep their order.
    clickHeader(*pane, 0);
    clickHeader(*pane, 0);
    EXPECT_EQ(pane->tableView()->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    pane->refresh();
    EXPECT_EQ(shownNames(), QStringList({".hidden", "A-dir", "a.txt", "b.txt", "c-dir"}));

    // What is no folder, a null path and an empty one all end at home.
    for (QString const& fallback : {path("list/a.txt"), QString(), QStringLiteral("")}) {
        pane->setPathValue(path("list"));
        fallback.isEmpty() ? pane->setPathValue(fallback) : pane->loadLocalDirectory(fallback);
        EXPECT_EQ(pane->pathValue(), QDir::homePath()) << fallback.toStdString();
        EXPECT_EQ(pane->pathField()->text(), QDir::homePath());
    }
    EXPECT_TRUE(delegate.calls.isEmpty());
}

TEST_F(LocalPane, LinksAreFollowedBrokenLinksAreFilesNamesThatAreNotUtf8AreShownAndClicksNavigateQuietly)
{
    make("real-dir/");
    QFile::link(path("real-dir"), path("link-to-dir"));
    QFile::link(path("gone"), path("broken-link"));
    std::string const bytes = QFile::encodeName(path()).toStdString() + "/dir-\xff\xfe";
    ASSERT_TRUE(std::filesystem::create_directory(bytes));
    std::ofstream(bytes + "/inside.txt").put('x');

    pane->loadLocalDirectory(path());
    QString const replacement(QChar::ReplacementCharacter);
    QString const oddFolder = "dir-" + replacement + replacement + "/";
    EXPECT_EQ(listed(), QStringList({"broken-link", oddFolder, "link-to-dir/", "real-dir/"}))
        << "the folder flag is read from the disk, not from the shown name";
    doubleClick(pane->tableView()->viewport(), rowCentre(1));
    EXPECT_EQ(shownNames(), QStringList({"inside.txt"}));
    pane->goUp();
    EXPECT_EQ(pane->pathValue(), path());
    doubleClick(pane->tableView()->viewport(), rowCentre(0));
    EXPECT_EQ(pane->pathValue(), path()) << "a double click on a file selects it and does nothing else";
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "local navigation is neither asked for nor remembered";
    std::filesystem::remove_all(bytes); // the temporary folder cannot name it for removal itself
}

TEST_F(LocalPane, EmptyAndUnreadableFoldersShowAMessageRowAndUpLeavesThem)
{
    QString const empty = make("empty/");
    pane->loadLocalDirectory(empty);
    ASSERT_EQ(shownNames(), QStringList({"<empty directory>"}));
    selectRows({0});
    doubleClick(pane->tableView()->viewport(), rowCentre(0));
    EXPECT_EQ(delegate.calls, QStringList({"selection " + empty})) << "a message row gives its folder's path";

    QString const locked = make("locked/");
    ASSERT_EQ(::chmod(QFile::encodeName(path()).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(locked).constData(), 0), 0);
    {
        test::FileAccessAsNobody const nobody;
        pane->loadLocalDirectory(locked);
    }
    ::chmod(QFile::encodeName(locked).constData(), 0755);
    ASSERT_EQ(shownNames(), QStringList({"Unable to read directory: Permission denied"}));
    EXPECT_TRUE(pane->entries().first().placeholder);
    EXPECT_EQ(pane->pathField()->text(), locked);
    pane->goUp();
    EXPECT_EQ(shownNames(), QStringList({"empty", "locked"}));
}

TEST_F(LocalPane, OnlyUploadAndOpenFolderWorkHereDropsAreRefusedAndThePathFieldOpensTheFolderDialog)
{
    make("folder/");
    make("b.txt");
    pane->loadLocalDirectory(path());
    delegate.calls.clear();
    EXPECT_TRUE(pane->openFolderButton()->isVisible());
    EXPECT_FALSE(pane->downloadButton()->isEnabled());
    selectRows({1, 0});
    pane->downloadClicked();
    pane->contextPermissionAction();
    pane->uploadClicked();
    EXPECT_EQ(delegate.takeRequests(),
              QStringList({"transfer " + path("b.txt"), "transfer " + path("folder") + " (dir)"}))
        << "permissions are a remote matter";

    EXPECT_EQ(contextMenuAt(0), QStringList({"Upload", "-", "Create Folder", "Refresh", "Rename", "Delete"}));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("b.txt"))});
    EXPECT_FALSE(pane->validateDrop(&data));
    EXPECT_FALSE(pane->model()->canDropMimeData(&data, Qt::CopyAction, -1, -1, pane->model()->index(0, 0)));
    EXPECT_TRUE(delegate.takeRequests().isEmpty());

    // A double click on the path field asks for a folder, only once the click has ended.
    dialogs.expectFolder(path("folder") + "/ \n");
    doubleClick(pane->pathField(), pane->pathField()->rect().center());
    EXPECT_TRUE(dialogs.questions().empty()) << "the dialog must be posted, not run inside the click";
    QTRY_COMPARE(dialogs.questions().size(), 1u);
    EXPECT_EQ(dialogs.questions().front().title, "Select a local folder");
    EXPECT_EQ(pane->pathValue(), path("folder"));
    EXPECT_FALSE(pane->pathField()->hasSelectedText()) << "the double click ran the action instead of selecting";
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "a folder chosen here is not remembered";

    // A cancelled dialog leaves the pane where it was; an empty path starts at home, a missing
    // folder is not offered.
    std::pair<QString, QString> const starts[] = {{QStringLiteral(""), QDir::homePath()}, {path("gone"), {}}};
    for (auto const& [start, offered] : starts) {
        dialogs.expectFolder(QString());
        pane->setCurrentPath(start);
        pane->openFolder();
        EXPECT_EQ(dialogs.questions().back().text, offered);
        EXPECT_EQ(pane->pathValue(), start);
    }

    int shellPickerRuns = 0;
    QObject receiver;
    pane->redirectOpenFolderButton(&receiver, [&] { ++shellPickerRuns; });
    pane->openFolderButton()->click();
    EXPECT_EQ(shellPickerRuns, 1);
    EXPECT_EQ(dialogs.questions().size(), 3u) << "the shell took over the button";
}

class RemotePane : public testing::PaneFixture {
protected:
    void SetUp() override { makePane(true); }

    // As the server lists them: neither by name nor by size.
    PaneEntries serverListing() const
    {
        return {remoteFile("mid.bin", 2048, "-rw-r--r--", "2024-01-02 10:00"), remoteFolder("Docs", 4096),
                remoteFile("big.iso", 3221225472ULL), remoteFile("alpha.txt", 10), remoteFolder("empty", 0)};
    }
    // The rows the actions are tried on.
    void showActionRows()
    {
        PaneEntries const rows{remoteFile("a.txt", 1), remoteFolder("dir"), remoteFile("c.txt", 3),
                               remoteFile("d.txt", 4)};
        pane->showRemoteEntries(rows, "/srv");
        delegate.calls.clear();
    }

    QStringList takeRequests() { return delegate.takeRequests(); }
    QString cell(int row, int column) const { return pane->model()->index(row, column).data().toString(); }
    void press(std::initializer_list<Qt::Key> keys)
    {
        for (Qt::Key const key : keys) {
            QTest::keySequence(pane->tableView(), QKeySequence(key));
        }
    }
};

TEST_F(RemotePane, MessageRowsLeaveAnEditedPathAloneAndTheServersOrderLastsUntilASortIsChosen)
{
    EXPECT_EQ(pane->pathField()->text(), "/");
    ASSERT_EQ(shownNames(), QStringList({"Not connected."}));
    pane->showRemoteEntries(serverListing(), "/srv");
    pane->setPathValue(QString());
    EXPECT_EQ(pane->pathValue(), "/");
    pane->setPathValue("/elsewhere");
    pane->pathField()->setText("typed but not committed");
    pane->refresh();
    EXPECT_EQ(pane->pathField()->text(), "/elsewhere");
    EXPECT_EQ(shownNames().size(), 5) << "setting the path lists nothing";

    pane->pathField()->setText("being edited");
    pane->showPlaceholder(QString());
    ASSERT_EQ(shownNames(), QStringList({""}));
    EXPECT_EQ(pane->entries().first().path, "/elsewhere");
    EXPECT_EQ(pane->pathField()->text(), "being edited");
    EXPECT_TRUE(takeRequests().isEmpty());

    // Listings keep the server's order until a sort is chosen, which keeps the selection and lasts.
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames(), QStringList({"mid.bin", "Docs", "big.iso", "alpha.txt", "empty"}));
    EXPECT_EQ(QStringList({cell(0, Model::PermissionsColumn), cell(0, Model::ModifiedColumn),
                           cell(0, Model::SizeColumn)}),
              QStringList({"-rw-r--r--", "2024-01-02 10:00", "2.0 KB"}));

    selectRows({2});
    clickHeader(*pane, Model::SizeColumn);
    QStringList const ascending{"empty", "alpha.txt", "mid.bin", "Docs", "big.iso"};
    EXPECT_EQ(shownNames(), ascending) << "folders sort by their size value";
    EXPECT_EQ(pane->selectedPath(), "/srv/big.iso");
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames(), ascending);
    clickHeader(*pane, Model::SizeColumn);
    EXPECT_EQ(shownNames(), QStringList({"big.iso", "Docs", "mid.bin", "alpha.txt", "empty"}));

    pane->showPlaceholder("Not connected.");
    clickHeader(*pane, Model::SizeColumn);
    EXPECT_EQ(shownNames(), QStringList({"Not connected."}));
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames().first(), "empty") << "the sort chosen over a placeholder applies to the next listing";
}

TEST_F(RemotePane, ARefreshOfTheSameFolderKeepsSelectionAndScrollAndNavigationIsReportedToTheShell)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    selectRows({0, 1, 3, 4});
    PaneEntries refreshed = serverListing();
    refreshed.prepend(remoteFile("new.txt", 1));
    refreshed.removeAt(4); // alpha.txt went away
    pane->showRemoteEntries(refreshed, "/srv");
    QStringList selected;
    for (PaneEntry const& item : pane->selectedItems()) {
        selected.append(item.name);
    }
    EXPECT_EQ(selected, QStringList({"mid.bin", "Docs", "empty"}));

    PaneEntries many;
    for (int index = 0; index < 500; ++index) {
        many.append(remoteFile(QStringLiteral("f%1").arg(index), quint64(index)));
    }
    pane->showRemoteEntries(many, "/srv");
    selectRows({3});
    QScrollBar* scroll = pane->tableView()->verticalScrollBar();
    QCoreApplication::processEvents(); // the view lays out the new rows
    scroll->setValue(2400);
    ASSERT_EQ(scroll->value(), 2400);
    delegate.calls.clear();
    pane->showRemoteEntries(many, "/srv");
    EXPECT_EQ(scroll->value(), 2400);
    EXPECT_TRUE(delegate.calls.isEmpty()) << "the selection did not change";
    pane->showRemoteEntries(many, "/srv/other");
    EXPECT_EQ(scroll->value(), 0);
    EXPECT_EQ(delegate.calls, QStringList({"selection "}));

    // Up from the root, an emptied path field and a refresh without a path all open the root.
    pane->showRemoteEntries(serverListing(), "/srv");
    pane->setPathValue("/");
    pane->goUp();
    pane->pathField()->clear();
    QTest::keyClick(pane->pathField(), Qt::Key_Return);
    pane->setCurrentPath(QString());
    pane->contextRefreshAction();
    EXPECT_EQ(takeRequests(), QStringList(3, QStringLiteral("open /")));

    pane->tableView()->clearSelection();
    delegate.calls.clear();
    selectRows({3});
    pane->tableView()->clearSelection();
    EXPECT_EQ(delegate.calls, QStringList({"selection /srv/alpha.txt", "selection "}));
}

TEST_F(RemotePane, OnlyDownloadWorksHereTheButtonsActOnTheSelectionAndTheMenuOnTheClickedRow)
{
    showActionRows();
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
    selectRows({0, 1});
    contextMenuAt(2, "Rename");
    EXPECT_EQ(takeRequests(), QStringList({"rename /srv/c.txt"}));
    EXPECT_EQ(pane->selectedItems().size(), 1);
    EXPECT_EQ(pane->clickedRow(), -1) << "the clicked row lasts only while the menu is open";
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

TEST_F(RemotePane, OnlyLocalFilesAreTakenByADropAndADesktopDragCopiesIntoTheFolderRow)
{
    showActionRows();
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

    // A file row, the space below the rows and an empty folder's message row mean the folder shown.
    EXPECT_TRUE(pane->acceptDrop(&files, 0));
    EXPECT_TRUE(pane->acceptDrop(&files, -1));
    pane->showRemoteEntries({}, "/srv/empty");
    EXPECT_TRUE(pane->acceptDrop(&files, 0));
    QString const dropped = QStringLiteral(" /home/u/one.txt,/home/u/two");
    EXPECT_EQ(takeRequests(),
              QStringList({"drop /srv" + dropped, "drop /srv" + dropped, "drop /srv/empty" + dropped}));
}

TEST_F(RemotePane, TheFileListTakesTheKeysOfAFileManagerExceptOnTheMessageRowAndThePathFieldOnlyEdits)
{
    showActionRows();
    pane->setCurrentPath("/srv/site");
    pane->tableView()->setFocus();
    selectRows({0});
    press({Qt::Key_Down, Qt::Key_Return, Qt::Key_F2, Qt::Key_Delete, Qt::Key_F5, Qt::Key_Backspace});
    EXPECT_EQ(takeRequests(), QStringList({"open /srv/dir", "rename /srv/dir (dir)", "delete /srv/dir (dir)",
                                           "open /srv/site", "open /srv"}));

    pane->showPlaceholder("Not connected.");
    selectRows({0});
    press({Qt::Key_Return, Qt::Key_F2, Qt::Key_Delete});
    EXPECT_TRUE(takeRequests().isEmpty());

    // A double click on the remote path field edits as usual and opens no dialog.
    test::ScriptedShellDialogs dialogs; // any question fails the test
    pane->setDialogs(&dialogs);
    pane->setPathValue("/var/www");
    doubleClick(pane->pathField(), QPoint(12, pane->pathField()->height() / 2));
    QApplication::processEvents();
    pane->openFolderClicked();
    EXPECT_TRUE(dialogs.questions().empty());
    EXPECT_TRUE(pane->pathField()->hasSelectedText()) << "a double click selects a word of the path";
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
    doubleClick(view->findChild<PerchPathField*>(), QPoint(12, 8));
    EXPECT_TRUE(view->findChild<PerchPathField*>()->hasSelectedText()) << "the field is a plain one now";
    {
        PerchFilePaneController pane(QStringLiteral("Local"), false);
        delete pane.view();
        QLineEdit other;
        other.show();
        doubleClick(&other, QPoint(5, 5));
        EXPECT_EQ(pane.view(), nullptr) << "a pane without its view ignores double clicks elsewhere";
    }
    auto remote = std::make_unique<PerchFilePaneController>(QStringLiteral("Remote"), true);
    QPointer<QWidget> const remoteView = remote->view();
    remote.reset();
    EXPECT_TRUE(remoteView.isNull()) << "a view no window adopted dies with its pane";
}

} // namespace
} // namespace perchftp::app
