// The local pane on real folder trees: listing, fallbacks, odd names and navigation.
#include "app/pane/pane_icons.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "pane_test_support.hpp"

#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QIcon>
#include <QTest>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace perchftp::app {
namespace {

using testing::FolderTree;

class LocalPane : public testing::PaneFixture {
protected:
    void SetUp() override
    {
        makePane(false);
        delegate.onOpenPath = [](PerchFilePaneController* target, QString const& path) {
            target->loadLocalDirectory(path);
        };
        delegate.clear();
    }

    bool isDirectoryRow(QString const& name) const
    {
        for (PaneEntry const& entry : pane->entries()) {
            if (entry.name == name) {
                return entry.dir;
            }
        }
        ADD_FAILURE() << "no row " << name.toStdString();
        return false;
    }

    FolderTree tree;
};

TEST_F(LocalPane, StartsAtTheHomeFolder)
{
    EXPECT_EQ(pane->pathValue(), QDir::homePath());
    EXPECT_EQ(pane->pathField()->text(), QDir::homePath());
}

TEST_F(LocalPane, ListsNamesWithoutCaseWithFoldersMixedInAndHiddenFilesShown)
{
    tree.makeFile("b.txt");
    tree.makeFolder("A-dir");
    tree.makeFile(".hidden");
    tree.makeFolder("c-dir");
    tree.makeFile("a.txt");
    pane->loadLocalDirectory(tree.path());

    EXPECT_EQ(shownNames(), QStringList({".hidden", "A-dir", "a.txt", "b.txt", "c-dir"}));
    EXPECT_EQ(shownPaths().at(1), tree.path("A-dir"));
    EXPECT_TRUE(isDirectoryRow("A-dir"));
    EXPECT_FALSE(isDirectoryRow("a.txt"));
    EXPECT_EQ(pane->model()->columnCount(), 1);
    EXPECT_EQ(pane->model()->headerData(0, Qt::Horizontal).toString(), "Name");
}

TEST_F(LocalPane, AnEmptyFolderShowsOneInformationRowThatNoActionTouches)
{
    QString const empty = tree.makeFolder("empty");
    pane->loadLocalDirectory(empty);
    ASSERT_EQ(shownNames(), QStringList({"<empty directory>"}));
    EXPECT_TRUE(pane->entries().first().placeholder);
    EXPECT_EQ(pane->entries().first().path, empty);
    auto const icon = pane->model()->index(0, 0).data(Qt::DecorationRole).value<QIcon>();
    EXPECT_EQ(icon.cacheKey(), paneIcon(PaneIcon::Placeholder).cacheKey());

    selectRows({0});
    EXPECT_EQ(delegate.summaries(), QStringList({"selection " + empty}));
    delegate.clear();
    pane->renameClicked();
    pane->deleteClicked();
    pane->uploadClicked();
    pane->contextTransferAction();
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(0));
    EXPECT_TRUE(delegate.calls.empty()) << delegate.summaries().join("; ").toStdString();
    EXPECT_EQ(pane->pathValue(), empty);
    EXPECT_EQ(pane->actingRow(), -1);
}

TEST_F(LocalPane, AMissingPathOrAFileFallsBackToTheHomeFolderSilently)
{
    pane->loadLocalDirectory(tree.path("does/not/exist"));
    EXPECT_EQ(pane->pathValue(), QDir::homePath());
    EXPECT_EQ(pane->pathField()->text(), QDir::homePath());

    pane->loadLocalDirectory(tree.makeFile("plain.txt"));
    EXPECT_EQ(pane->pathValue(), QDir::homePath());
    EXPECT_TRUE(delegate.calls.empty());
}

TEST_F(LocalPane, SetPathValueListsTheFolderAndTakesNullOrEmptyAsHome)
{
    tree.makeFile("one.txt");
    pane->setPathValue(tree.path());
    EXPECT_EQ(shownNames(), QStringList({"one.txt"}));

    pane->setPathValue(QString());
    EXPECT_EQ(pane->pathValue(), QDir::homePath());
    pane->setPathValue(tree.path());
    pane->setPathValue(QStringLiteral(""));
    EXPECT_EQ(pane->pathValue(), QDir::homePath());
}

TEST_F(LocalPane, PathsAreStandardisedBeforeTheyAreShown)
{
    tree.makeFolder("x/y");
    pane->loadLocalDirectory(tree.path("x/./y/..//"));
    EXPECT_EQ(pane->pathValue(), tree.path("x"));
    EXPECT_EQ(shownNames(), QStringList({"y"}));
}

TEST_F(LocalPane, LinksAreFollowedAndABrokenLinkStaysInTheListAsAFile)
{
    tree.makeFolder("real-dir");
    QFile::link(tree.path("real-dir"), tree.path("link-to-dir"));
    QFile::link(tree.path("gone"), tree.path("broken-link"));
    pane->loadLocalDirectory(tree.path());

    EXPECT_EQ(shownNames(), QStringList({"broken-link", "link-to-dir", "real-dir"}));
    EXPECT_FALSE(isDirectoryRow("broken-link"));
    EXPECT_TRUE(isDirectoryRow("link-to-dir"));
}

TEST_F(LocalPane, NamesThatAreNotUtf8AreShownWithReplacementCharacters)
{
    QByteArray const folder = QFile::encodeName(tree.path());
    QByteArray const badFile = folder + "/caf\xe9.txt";
    QByteArray const badFolder = folder + "/dir-\xff\xfe";
    int const descriptor = ::open(badFile.constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(descriptor, 0);
    ::close(descriptor);
    ASSERT_EQ(::mkdir(badFolder.constData(), 0755), 0);
    tree.makeFile("plain.txt");

    pane->loadLocalDirectory(tree.path());
    ASSERT_EQ(pane->entries().size(), 3);
    QStringList const names = shownNames();
    EXPECT_TRUE(names.at(0).startsWith("caf")) << names.at(0).toStdString();
    EXPECT_TRUE(names.at(0).contains(QChar::ReplacementCharacter));
    EXPECT_TRUE(names.at(1).startsWith("dir-"));
    EXPECT_TRUE(pane->entries().at(1).dir) << "the folder flag is read from the disk, not from the shown name";
    EXPECT_EQ(names.at(2), "plain.txt");
    // The temporary folder cannot name these for removal itself.
    ::unlink(badFile.constData());
    ::rmdir(badFolder.constData());
}

TEST_F(LocalPane, AFolderWhoseNameIsNotUtf8CanBeOpened)
{
    QByteArray const badFolder = QFile::encodeName(tree.path()) + "/dir-\xff";
    ASSERT_EQ(::mkdir(badFolder.constData(), 0755), 0);
    int const descriptor = ::open((badFolder + "/inside.txt").constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(descriptor, 0);
    ::close(descriptor);

    pane->loadLocalDirectory(tree.path());
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(0));
    EXPECT_EQ(shownNames(), QStringList({"inside.txt"}));
    pane->goUp();
    EXPECT_EQ(pane->pathValue(), tree.path());

    ::unlink((badFolder + "/inside.txt").constData());
    ::rmdir(badFolder.constData());
}

TEST_F(LocalPane, UpGoesToTheParentAndStaysAtTheRoot)
{
    QString const inner = tree.makeFolder("outer/inner");
    pane->loadLocalDirectory(inner);
    pane->goUp();
    EXPECT_EQ(pane->pathValue(), tree.path("outer"));
    EXPECT_EQ(shownNames(), QStringList({"inner"}));

    pane->loadLocalDirectory(QStringLiteral("/"));
    pane->goUp();
    EXPECT_EQ(pane->pathValue(), "/");
    EXPECT_TRUE(delegate.calls.empty()) << "local navigation by Up is not reported";
}

TEST_F(LocalPane, DoubleClickOnAFileReportsItAsTheSelectionAndTransfersNothing)
{
    tree.makeFolder("sub");
    tree.makeFile("top.txt");
    pane->loadLocalDirectory(tree.path());

    testing::doubleClick(pane->tableView()->viewport(), rowCentre(1));
    EXPECT_TRUE(delegate.summaries().contains("selection " + tree.path("top.txt")));
    EXPECT_EQ(pane->pathValue(), tree.path());
    for (testing::PaneCall const& call : delegate.calls) {
        EXPECT_NE(call.method, "transfer") << "a double click never transfers";
    }
}

TEST_F(LocalPane, DoubleClickOnAFolderListsItWithoutAskingTheShell)
{
    tree.makeFolder("sub");
    tree.makeFile("sub/inside.txt");
    tree.makeFile("top.txt");
    pane->loadLocalDirectory(tree.path());

    testing::doubleClick(pane->tableView()->viewport(), rowCentre(0));
    EXPECT_EQ(pane->pathValue(), tree.path("sub"));
    EXPECT_EQ(shownNames(), QStringList({"inside.txt"}));
    for (testing::PaneCall const& call : delegate.calls) {
        EXPECT_NE(call.method, "open") << "local navigation by double click is not remembered";
    }
}

TEST_F(LocalPane, ThePathFieldAsksTheShellToOpenTheStandardisedPath)
{
    tree.makeFolder("typed");
    pane->pathField()->setText("  " + tree.path("typed/../typed/") + "\n");
    QTest::keyClick(pane->pathField(), Qt::Key_Return);
    EXPECT_EQ(delegate.summaries(), QStringList({"open " + tree.path("typed")}));
    EXPECT_FALSE(delegate.calls.front().isRemote);
    EXPECT_EQ(pane->pathValue(), tree.path("typed"));

    delegate.clear();
    pane->pathField()->setText("   ");
    QTest::keyClick(pane->pathField(), Qt::Key_Return);
    EXPECT_EQ(delegate.summaries(), QStringList({"open " + QDir::homePath()}));
}

TEST_F(LocalPane, GarbageInThePathFieldEndsAtTheHomeFolder)
{
    pane->loadLocalDirectory(tree.path());
    pane->pathField()->setText(QString::fromUtf8("\x01\x7f ../~nobody-here/\xe2\x80\xae?*<>|\t"));
    QTest::keyClick(pane->pathField(), Qt::Key_Return);
    ASSERT_EQ(delegate.calls.size(), 1u);
    EXPECT_EQ(pane->pathValue(), QDir::homePath());
}

TEST_F(LocalPane, LeavingAnEditedFieldCommitsItAndLeavingAnUntouchedOneDoesNot)
{
    pane->loadLocalDirectory(tree.path());
    pane->pathField()->setFocus();
    emit pane->pathField()->editingFinished();
    EXPECT_TRUE(delegate.calls.empty());

    QTest::keyClicks(pane->pathField(), "/");
    emit pane->pathField()->editingFinished();
    EXPECT_EQ(delegate.calls.size(), 1u);
}

TEST_F(LocalPane, AColumnSortShowsItsArrowButKeepsTheNameOrder)
{
    tree.makeFile("b");
    tree.makeFile("a");
    tree.makeFile("C");
    pane->loadLocalDirectory(tree.path());
    QHeaderView* header = pane->tableView()->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionPosition(0) + 20, 5));
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionPosition(0) + 20, 5));
    EXPECT_EQ(header->sortIndicatorSection(), 0);
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(shownNames(), QStringList({"a", "b", "C"}));
    pane->refresh();
    EXPECT_EQ(shownNames(), QStringList({"a", "b", "C"}));
}

TEST_F(LocalPane, ReloadingTheSameFolderKeepsTheSelectedItemsAndAnotherFolderClearsThem)
{
    tree.makeFile("b.txt");
    tree.makeFile("d.txt");
    pane->loadLocalDirectory(tree.path());
    selectRows({1});
    tree.makeFile("a.txt"); // sorts before the selected item
    delegate.clear();

    pane->refresh();
    EXPECT_EQ(pane->selectedPath(), tree.path("d.txt"));
    EXPECT_TRUE(delegate.calls.empty()) << "the selection did not change";

    pane->loadLocalDirectory(tree.makeFolder("elsewhere"));
    EXPECT_EQ(pane->selectedPath(), "");
    EXPECT_EQ(delegate.summaries(), QStringList({"selection "}));
}

// An unreadable folder needs a user the folder's mode applies to; root reads everything, so the
// check runs in a child that gives up root first.
void listUnreadableFolderAsAnotherUserAndExit(QString const& parent, QString const& locked)
{
    if (::geteuid() == 0) {
        passwd const* nobody = ::getpwnam("nobody");
        if (nobody == nullptr || ::setgid(nobody->pw_gid) != 0 || ::setuid(nobody->pw_uid) != 0) {
            std::fprintf(stderr, "could not drop root\n");
            std::_Exit(2);
        }
    }
    PerchFilePaneController pane(QStringLiteral("Local"), false);
    pane.loadLocalDirectory(locked);
    bool const placeholderShown = pane.entries().size() == 1 && pane.entries().first().placeholder
        && pane.entries().first().name == QStringLiteral("Unable to read directory: Permission denied")
        && pane.entries().first().path == locked;
    bool const pathKept = pane.pathValue() == locked && pane.pathField()->text() == locked;
    pane.goUp();
    bool const upLeaves = pane.pathValue() == parent && pane.entries().size() == 1
        && pane.entries().first().name == QStringLiteral("locked");
    std::fprintf(stderr, "placeholder=%d kept=%d up=%d\n", placeholderShown, pathKept, upLeaves);
    std::_Exit(placeholderShown && pathKept && upLeaves ? 0 : 1);
}

TEST_F(LocalPane, AnUnreadableFolderKeepsItsPathBehindAMessageRowAndUpLeavesIt)
{
    QString const parent = tree.path();
    QString const locked = tree.makeFolder("locked");
    // The tree must be reachable by the unprivileged child.
    ASSERT_EQ(::chmod(QFile::encodeName(parent).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(locked).constData(), 0), 0);
    EXPECT_EXIT(listUnreadableFolderAsAnotherUserAndExit(parent, locked), ::testing::ExitedWithCode(0),
                "placeholder=1 kept=1 up=1");
    ::chmod(QFile::encodeName(locked).constData(), 0755);
}

} // namespace
} // namespace perchftp::app
