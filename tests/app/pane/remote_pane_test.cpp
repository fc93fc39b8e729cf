// The remote pane: what the shell hands it, how it sorts, and where its clicks lead.
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "pane_test_support.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

namespace perchftp::app {
namespace {

using testing::remoteFile;
using testing::remoteFolder;

class RemotePane : public testing::PaneFixture {
protected:
    void SetUp() override { makePane(true); }

    // As the server lists them: neither by name nor by size.
    PaneEntries serverListing() const
    {
        return {remoteFile("mid.bin", 2048, "-rw-r--r--", "2024-01-02 10:00"), remoteFolder("Docs", 4096),
                remoteFile("big.iso", 3221225472ULL), remoteFile("alpha.txt", 10), remoteFolder("empty", 0)};
    }

    void clickHeader(int column)
    {
        QHeaderView* header = pane->tableView()->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(column) + 10, 5));
    }

    QString cell(int row, int column) const { return pane->model()->index(row, column).data().toString(); }
};

TEST_F(RemotePane, StartsAtTheRootBehindANotConnectedRow)
{
    EXPECT_EQ(pane->pathValue(), "/");
    EXPECT_EQ(pane->pathField()->text(), "/");
    ASSERT_EQ(shownNames(), QStringList({"Not connected."}));
    EXPECT_TRUE(pane->entries().first().placeholder);
    EXPECT_EQ(pane->entries().first().path, "/");
}

TEST_F(RemotePane, HasFourColumnsOfTheirOwnWidthsAndRowsOf24)
{
    QStringList titles;
    for (int column = 0; column < pane->model()->columnCount(); ++column) {
        titles.append(pane->model()->headerData(column, Qt::Horizontal).toString());
    }
    EXPECT_EQ(titles, QStringList({"Name", "Permissions", "Size", "Modified"}));
    QHeaderView const* header = pane->tableView()->horizontalHeader();
    EXPECT_EQ(header->sectionSize(0), 280);
    EXPECT_EQ(header->sectionSize(1), 120);
    EXPECT_EQ(header->sectionSize(2), 90);
    EXPECT_GE(header->sectionSize(3), 140);
    EXPECT_EQ(pane->tableView()->rowHeight(0), 24);
    EXPECT_EQ(header->sortIndicatorSection(), -1) << "no sort is active at first";
}

TEST_F(RemotePane, SetPathValueTakesNullAsTheRootKeepsEmptyAndListsNothing)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    pane->setPathValue(QString());
    EXPECT_EQ(pane->pathValue(), "/");
    pane->setPathValue(QStringLiteral(""));
    EXPECT_TRUE(pane->pathValue().isEmpty());
    EXPECT_FALSE(pane->pathValue().isNull());
    EXPECT_EQ(pane->pathField()->text(), "");
    EXPECT_EQ(pane->entries().size(), 5);
    EXPECT_TRUE(delegate.calls.empty());
}

TEST_F(RemotePane, RefreshShowsThePathAndKeepsTheRowsItHas)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    pane->setPathValue("/elsewhere");
    pane->pathField()->setText("typed but not committed");
    pane->refresh();
    EXPECT_EQ(pane->pathField()->text(), "/elsewhere");
    EXPECT_EQ(shownNames().size(), 5);

    pane->setCurrentPath(QString());
    pane->refresh();
    EXPECT_EQ(pane->pathField()->text(), "/");
}

TEST_F(RemotePane, AnEmptyListingShowsTheEmptyFolderRowAndAnEmptyPathMeansTheRoot)
{
    pane->showRemoteEntries({}, "");
    EXPECT_EQ(pane->pathValue(), "/");
    ASSERT_EQ(shownNames(), QStringList({"<empty directory>"}));
    EXPECT_EQ(pane->entries().first().path, "/");
    EXPECT_EQ(cell(0, PerchPaneTableModel::SizeColumn), "");
}

TEST_F(RemotePane, APlaceholderLeavesThePathFieldAloneAndTakesNullAsEmptyText)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    pane->pathField()->setText("being edited");
    pane->showPlaceholder(QString());
    ASSERT_EQ(shownNames(), QStringList({""}));
    EXPECT_EQ(pane->entries().first().path, "/srv");
    EXPECT_EQ(pane->pathField()->text(), "being edited");

    pane->setCurrentPath(QString());
    pane->showPlaceholder("List failed: x");
    EXPECT_EQ(pane->entries().first().path, "");
    EXPECT_FALSE(pane->entries().first().path.isNull());
}

TEST_F(RemotePane, CellsShowPermissionsSizesInUnitsAndModificationTimes)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(cell(0, PerchPaneTableModel::PermissionsColumn), "-rw-r--r--");
    EXPECT_EQ(cell(0, PerchPaneTableModel::SizeColumn), "2.0 KB");
    EXPECT_EQ(cell(0, PerchPaneTableModel::ModifiedColumn), "2024-01-02 10:00");
    EXPECT_EQ(cell(1, PerchPaneTableModel::SizeColumn), "") << "a folder shows no size";
    EXPECT_EQ(cell(2, PerchPaneTableModel::SizeColumn), "3.0 GB");
    EXPECT_EQ(cell(3, PerchPaneTableModel::SizeColumn), "10 B");
}

TEST_F(RemotePane, ListingsKeepTheServersOrderUntilASortIsChosen)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames(), QStringList({"mid.bin", "Docs", "big.iso", "alpha.txt", "empty"}));
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames(), QStringList({"mid.bin", "Docs", "big.iso", "alpha.txt", "empty"}));
}

TEST_F(RemotePane, ASizeSortOrdersFoldersByTheirSizeValueAndSurvivesARefresh)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    clickHeader(PerchPaneTableModel::SizeColumn);
    QStringList const ascending{"empty", "alpha.txt", "mid.bin", "Docs", "big.iso"};
    EXPECT_EQ(shownNames(), ascending);
    EXPECT_EQ(pane->tableView()->horizontalHeader()->sortIndicatorSection(), PerchPaneTableModel::SizeColumn);

    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames(), ascending);

    clickHeader(PerchPaneTableModel::SizeColumn);
    EXPECT_EQ(shownNames(), QStringList({"big.iso", "Docs", "mid.bin", "alpha.txt", "empty"}));
    EXPECT_EQ(pane->tableView()->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
}

TEST_F(RemotePane, ANameSortIgnoresCaseAndPutsNoFolderFirst)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    clickHeader(PerchPaneTableModel::NameColumn);
    EXPECT_EQ(shownNames(), QStringList({"alpha.txt", "big.iso", "Docs", "empty", "mid.bin"}));
}

TEST_F(RemotePane, ASortOnAPlaceholderDoesNothingAndTheSortStillAppliesToTheNextListing)
{
    clickHeader(PerchPaneTableModel::SizeColumn);
    EXPECT_EQ(shownNames(), QStringList({"Not connected."}));
    pane->showRemoteEntries(serverListing(), "/srv");
    EXPECT_EQ(shownNames().first(), "empty");
}

TEST_F(RemotePane, SortingKeepsTheSelectedItemSelected)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    selectRows({2});
    delegate.clear();
    clickHeader(PerchPaneTableModel::SizeColumn);
    EXPECT_EQ(pane->selectedPath(), "/srv/big.iso");
    EXPECT_EQ(pane->selectedRow(), 4);
}

TEST_F(RemotePane, ARefreshOfTheSameFolderKeepsTheScrollPositionAndAnotherFolderStartsAtTheTop)
{
    PaneEntries many;
    for (int index = 0; index < 500; ++index) {
        many.append(remoteFile(QStringLiteral("f%1").arg(index), quint64(index)));
    }
    pane->showRemoteEntries(many, "/srv");
    QScrollBar* scroll = pane->tableView()->verticalScrollBar();
    QCoreApplication::processEvents(); // the view lays out the new rows
    scroll->setValue(2400);
    ASSERT_EQ(scroll->value(), 2400);
    pane->showRemoteEntries(many, "/srv");
    EXPECT_EQ(scroll->value(), 2400);
    pane->showRemoteEntries(many, "/srv/other");
    EXPECT_EQ(scroll->value(), 0);
}

TEST_F(RemotePane, DoubleClickOnAFolderAsksTheShellToOpenIt)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(1));
    EXPECT_TRUE(delegate.summaries().contains("open /srv/Docs"));
    EXPECT_TRUE(delegate.calls.back().isRemote);
}

TEST_F(RemotePane, DoubleClickOnTheNotConnectedRowDoesNothing)
{
    testing::doubleClick(pane->tableView()->viewport(), rowCentre(0));
    for (testing::PaneCall const& call : delegate.calls) {
        EXPECT_EQ(call.method, "selection") << "selecting the message row reports its path, nothing else";
        EXPECT_EQ(call.path, "/");
    }
}

TEST_F(RemotePane, UpAsksTheShellForTheParentAndTheRootStaysTheRoot)
{
    pane->showRemoteEntries(serverListing(), "/srv/data");
    pane->goUp();
    pane->setPathValue("/");
    pane->goUp();
    pane->setPathValue("");
    pane->goUp();
    EXPECT_EQ(delegate.summaries(), QStringList({"open /srv", "open /", "open /"}));
}

TEST_F(RemotePane, ThePathFieldExpandsATildeToTheLocalHomeAndAnEmptyFieldMeansTheRoot)
{
    pane->pathField()->setText(" ~/site/../www ");
    QTest::keyClick(pane->pathField(), Qt::Key_Return);
    pane->pathField()->setText("");
    QTest::keyClick(pane->pathField(), Qt::Key_Return);
    EXPECT_EQ(delegate.summaries(), QStringList({"open " + QDir::homePath() + "/www", "open /"}));
    EXPECT_TRUE(delegate.calls.front().isRemote);
}

TEST_F(RemotePane, RefreshFromTheMenuAsksTheShellToListTheCurrentPath)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    pane->contextRefreshAction();
    pane->setCurrentPath(QString());
    pane->contextRefreshAction();
    EXPECT_EQ(delegate.summaries(), QStringList({"open /srv", "open /"}));
}

TEST_F(RemotePane, SelectionChangesAreReportedWithTheSelectedPath)
{
    pane->showRemoteEntries(serverListing(), "/srv");
    selectRows({3});
    pane->tableView()->clearSelection();
    EXPECT_EQ(delegate.summaries(), QStringList({"selection /srv/alpha.txt", "selection "}));
    EXPECT_TRUE(delegate.calls.front().isRemote);
}

TEST_F(RemotePane, AHundredThousandRowsAreOneListing)
{
    PaneEntries many;
    many.reserve(100000);
    for (int index = 0; index < 100000; ++index) {
        many.append(remoteFile(QStringLiteral("f%1").arg(index), quint64((index * 7919) % 100003)));
    }
    pane->showRemoteEntries(std::move(many), "/big");
    EXPECT_EQ(pane->model()->rowCount(), 100000);
    clickHeader(PerchPaneTableModel::SizeColumn);
    EXPECT_EQ(pane->entries().first().sizeValue, 0u);
    EXPECT_EQ(pane->entries().last().sizeValue, 100002u);
}

} // namespace
} // namespace perchftp::app
