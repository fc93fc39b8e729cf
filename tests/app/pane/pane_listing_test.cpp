// What the panes list and where their clicks lead: the local pane on real folder trees, the remote
// pane on the rows the shell hands it.
#include "app/pane/perch_path_field.hpp"
#include "pane_test_support.hpp"
#include "support/file_access_as_nobody.hpp"

#include <QHeaderView>
#include <QScrollBar>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace perchftp::app {
namespace {

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
    void SetUp() override { makePane(false); }

    // The shown names, a folder's with a "/" after it.
    QStringList listed() const
    {
        QStringList names = shownNames();
        for (int row = 0; row < names.size(); ++row) {
            names[row] += pane->entries().at(row).dir ? QStringLiteral("/") : QString();
        }
        return names;
    }

    testing::FolderTree tree;
};

TEST_F(LocalPane, ListsAStandardisedFolderByNameWithoutCaseOrFoldersFirstFallsBackToHomeAndOpensEditedPaths)
{
    EXPECT_EQ(pane->pathField()->text(), QDir::homePath());

    // An edited path field asks the shell to open the standardised path; garbage ends at home.
    tree.make("typed/");
    auto const commit = [this](QString const& text) {
        pane->pathField()->setText(text);
        QTest::keyClick(pane->pathField(), Qt::Key_Return);
        return delegate.takeRequests();
    };
    EXPECT_EQ(commit("  " + tree.path("typed/../typed/") + "\n"), QStringList({"open " + tree.path("typed")}));
    EXPECT_EQ(commit("   "), QStringList({"open " + QDir::homePath()}));
    EXPECT_EQ(commit(QString::fromUtf8("\x01\x7f ../~nobody-here/\xe2\x80\xae?*<>|\t")).size(), 1);
    EXPECT_EQ(pane->pathValue(), QDir::homePath());
    pane->loadLocalDirectory(tree.path());
    pane->pathField()->setFocus();
    emit pane->pathField()->editingFinished();
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "leaving an unedited field commits nothing";
    QTest::keyClicks(pane->pathField(), "/");
    emit pane->pathField()->editingFinished();
    EXPECT_EQ(delegate.takeRequests(), QStringList({"open " + tree.path()}));

    for (QString const name : {"A-dir/", "c-dir/", "b.txt", ".hidden", "a.txt"}) {
        tree.make("list/" + name);
    }
    pane->loadLocalDirectory(tree.path("list/./A-dir/..//"));
    EXPECT_EQ(pane->pathValue(), tree.path("list"));
    EXPECT_EQ(listed(), QStringList({".hidden", "A-dir/", "a.txt", "b.txt", "c-dir/"}));
    EXPECT_EQ(pane->entries().at(1).path, tree.path("list/A-dir"));

    // A column sort shows its arrow but the local rows keep their order.
    clickHeader(*pane, 0);
    clickHeader(*pane, 0);
    EXPECT_EQ(pane->tableView()->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    pane->refresh();
    EXPECT_EQ(shownNames(), QStringList({".hidden", "A-dir", "a.txt", "b.txt", "c-dir"}));

    for (QString const& path : {tree.path("does/not/exist"), tree.path("list/a.txt"), QString(), QStringLiteral("")}) {
        pane->setPathValue(tree.path("list"));
        path.isEmpty() ? pane->setPathValue(path) : pane->loadLocalDirectory(path);
        EXPECT_EQ(pane->pathValue(), QDir::homePath()) << path.toStdString();
        EXPECT_EQ(pane->pathField()->text(), QDir::homePath());
    }
    EXPECT_TRUE(delegate.calls.isEmpty());

}

TEST_F(LocalPane, LinksAreFollowedBrokenLinksAreFilesNamesThatAreNotUtf8AreShownAndClicksNavigateQuietly)
{
    tree.make("real-dir/");
    QFile::link(tree.path("real-dir"), tree.path("link-to-dir"));
    QFile::link(tree.path("gone"), tree.path("broken-link"));
    std::string const root = QFile::encodeName(tree.path()).toStdString();
    ASSERT_TRUE(std::filesystem::create_directory(root + "/dir-\xff\xfe"));
    std::ofstream(root + "/caf\xe9.txt").put('x');
    std::ofstream(root + "/dir-\xff\xfe/inside.txt").put('x');

    pane->loadLocalDirectory(tree.path());
    QString const replacement(QChar::ReplacementCharacter);
    EXPECT_EQ(listed(), QStringList({"broken-link", "caf" + replacement + ".txt",
                                     "dir-" + replacement + replacement + "/", "link-to-dir/", "real-dir/"}))
        << "the folder flag is read from the disk, not from the shown name";
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(2));
    EXPECT_EQ(shownNames(), QStringList({"inside.txt"}));
    pane->goUp();
    EXPECT_EQ(pane->pathValue(), tree.path());
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(1));
    EXPECT_EQ(pane->pathValue(), tree.path()) << "a double click on a file selects it and does nothing else";
    EXPECT_TRUE(delegate.takeRequests().isEmpty()) << "local navigation is neither asked for nor remembered";
    std::filesystem::remove_all(root); // the temporary folder cannot name these for removal itself
}

TEST_F(LocalPane, EmptyAndUnreadableFoldersShowAMessageRowThatNoActionTouchesAndUpLeavesThem)
{
    QString const empty = tree.make("empty/");
    pane->loadLocalDirectory(empty);
    ASSERT_EQ(shownNames(), QStringList({"<empty directory>"}));
    EXPECT_EQ(pane->entries().first().path, empty);
    selectRows({0});
    pane->renameClicked();
    pane->deleteClicked();
    pane->uploadClicked();
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(0));
    EXPECT_EQ(delegate.calls, QStringList({"selection " + empty}));
    EXPECT_EQ(pane->pathValue(), empty);

    QString const locked = tree.make("locked/");
    ASSERT_EQ(::chmod(QFile::encodeName(tree.path()).constData(), 0755), 0);
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

class RemotePane : public testing::PaneFixture {
protected:
    void SetUp() override { makePane(true); }

    // As the server lists them: neither by name nor by size.
    PaneEntries serverListing() const
    {
        return {remoteFile("mid.bin", 2048, "-rw-r--r--", "2024-01-02 10:00"), remoteFolder("Docs", 4096),
                remoteFile("big.iso", 3221225472ULL), remoteFile("alpha.txt", 10), remoteFolder("empty", 0)};
    }

    QString cell(int row, int column) const { return pane->model()->index(row, column).data().toString(); }
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
    pane->showRemoteEntries({}, "");
    EXPECT_EQ(pane->pathValue(), "/") << "an empty path means the root";
    ASSERT_EQ(shownNames(), QStringList({"<empty directory>"}));
    EXPECT_EQ(cell(0, Model::SizeColumn), "");
    EXPECT_TRUE(delegate.takeRequests().isEmpty());

    // Listings keep the server's order until a sort is chosen, which keeps the selection and lasts.
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames(), QStringList({"mid.bin", "Docs", "big.iso", "alpha.txt", "empty"}));
    EXPECT_EQ(QStringList({cell(0, Model::PermissionsColumn), cell(0, Model::ModifiedColumn),
                  cell(0, Model::SizeColumn), cell(1, Model::SizeColumn)}),
        QStringList({"-rw-r--r--", "2024-01-02 10:00", "2.0 KB", ""}));

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

    // Navigation and selections are reported to the shell.
    pane->showRemoteEntries(serverListing(), "/srv");
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(1));
    for (QString const path : {"/srv/data", "/", ""}) {
        pane->setPathValue(path);
        pane->goUp();
    }
    pane->pathField()->setFocus();
    for (QString const typed : {" ~/site/../www ", ""}) {
        pane->pathField()->setText(typed);
        QTest::keyClick(pane->pathField(), Qt::Key_Return);
    }
    pane->setCurrentPath("/srv");
    pane->contextRefreshAction();
    pane->setCurrentPath(QString());
    pane->contextRefreshAction();
    EXPECT_EQ(delegate.takeRequests(), QStringList({"open /srv/Docs", "open /srv", "open /", "open /",
                                                    "open " + QDir::homePath() + "/www", "open /", "open /srv",
                                                    "open /"}));

    pane->tableView()->clearSelection();
    delegate.calls.clear();
    selectRows({3});
    pane->tableView()->clearSelection();
    EXPECT_EQ(delegate.calls, QStringList({"selection /srv/alpha.txt", "selection "}));
}

} // namespace
} // namespace perchftp::app
