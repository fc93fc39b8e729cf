// Path text, size cells and row ordering: the rules the panes apply to text alone.
#include "app/pane/pane_cells.hpp"
#include "app/pane/pane_file_names.hpp"
#include "app/pane/pane_paths.hpp"
#include "app/pane/pane_sorting.hpp"
#include "pane_test_support.hpp"

#include <QDir>

#include <gtest/gtest.h>

#include <limits>

namespace perchftp::app {
namespace {

using detail::appendingPathComponent;
using detail::deletingLastPathComponent;
using detail::sizeCellText;
using detail::standardizePath;
using testing::remoteFile;
using testing::remoteFolder;

TEST(PanePathText, StandardizingExpandsTheTildeAndResolvesDotsOnlyInAbsolutePaths)
{
    QString const home = QDir::homePath();
    EXPECT_EQ(standardizePath("~"), home);
    EXPECT_EQ(standardizePath("~/docs//./a/"), home + "/docs/a");
    EXPECT_EQ(standardizePath("/a/b/../c/./d//"), "/a/c/d");
    EXPECT_EQ(standardizePath("/../.."), "/");
    EXPECT_EQ(standardizePath("a/../b/./c"), "a/../b/c");
    EXPECT_EQ(standardizePath("/"), "/");
    EXPECT_EQ(standardizePath("~no-such-user-perchftp/x"), "~no-such-user-perchftp/x");
}

TEST(PanePathText, StandardizingKeepsNullAndEmptyApart)
{
    EXPECT_TRUE(standardizePath(QString()).isNull());
    QString const empty = standardizePath(QStringLiteral(""));
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_FALSE(empty.isNull());
}

TEST(PanePathText, TheParentOfTheRootIsTheRootAndOfASingleNameIsEmpty)
{
    EXPECT_EQ(deletingLastPathComponent("/a/b"), "/a");
    EXPECT_EQ(deletingLastPathComponent("/a/b/"), "/a");
    EXPECT_EQ(deletingLastPathComponent("/a"), "/");
    EXPECT_EQ(deletingLastPathComponent("/"), "/");
    EXPECT_EQ(deletingLastPathComponent("name"), "");
    EXPECT_EQ(deletingLastPathComponent(""), "");
}

TEST(PanePathText, AppendingUsesExactlyOneSlash)
{
    EXPECT_EQ(appendingPathComponent("/", "x"), "/x");
    EXPECT_EQ(appendingPathComponent("/a", "x"), "/a/x");
    EXPECT_EQ(appendingPathComponent("/a/", "x"), "/a/x");
    EXPECT_EQ(appendingPathComponent("", "x"), "x");
}

TEST(PaneFileNames, EveryByteSequenceSurvivesTheWayIntoTextAndBack)
{
    std::string const samples[] = {"plain.txt", "caf\xc3\xa9 \xf0\x9f\x98\x80", "caf\xe9.txt", "\xff\xfe",
                                   "\xc0\xaf overlong", "\xed\xa0\x80 surrogate", "cut \xe2\x82", "\xf4\x90\x80\x80"};
    for (std::string const& bytes : samples) {
        EXPECT_EQ(detail::encodeFileName(detail::decodeFileName(bytes)), bytes) << bytes;
    }
}

TEST(PaneFileNames, ValidUtf8ReadsAsItselfAndStrayBytesShowAsReplacementCharacters)
{
    EXPECT_EQ(detail::decodeFileName("caf\xc3\xa9"), QString::fromUtf8("caf\xc3\xa9"));
    QString const escaped = detail::decodeFileName("caf\xe9");
    EXPECT_EQ(escaped.size(), 4);
    EXPECT_EQ(detail::displayFileName(escaped), QString("caf") + QChar(QChar::ReplacementCharacter));
    EXPECT_EQ(detail::displayFileName("caf\u00e9"), "caf\u00e9");
}

TEST(PaneSizeCell, EachUnitStartsAtItsPowerOf1024)
{
    EXPECT_EQ(sizeCellText(remoteFile("f", 0)), "0 B");
    EXPECT_EQ(sizeCellText(remoteFile("f", 1023)), "1023 B");
    EXPECT_EQ(sizeCellText(remoteFile("f", 1024)), "1.0 KB");
    EXPECT_EQ(sizeCellText(remoteFile("f", 1048575)), "1024.0 KB");
    EXPECT_EQ(sizeCellText(remoteFile("f", 1048576)), "1.0 MB");
    EXPECT_EQ(sizeCellText(remoteFile("f", 1073741823)), "1024.0 MB");
    EXPECT_EQ(sizeCellText(remoteFile("f", 1073741824)), "1.0 GB");
    EXPECT_EQ(sizeCellText(remoteFile("f", 5905580032ULL)), "5.5 GB");
}

TEST(PaneSizeCell, FoldersAndPlaceholdersShowNothingAndAMissingSizeShowsZero)
{
    EXPECT_EQ(sizeCellText(remoteFolder("d", 8192)), "");
    PaneEntry placeholder{"Not connected.", "/", false, true, {}, {}, 0, {}};
    EXPECT_EQ(sizeCellText(placeholder), "");
    PaneEntry local{"a.txt", "/home/a.txt", false, false, {}, {}, 0, {}};
    EXPECT_EQ(sizeCellText(local), "0 B");
}

TEST(PaneSizeCell, SizeTextIsReadAsALeadingSignedNumberAndShownUnsigned)
{
    EXPECT_EQ(detail::leadingInt64("  42abc"), 42);
    EXPECT_EQ(detail::leadingInt64("-7"), -7);
    EXPECT_EQ(detail::leadingInt64("garbage"), 0);
    EXPECT_EQ(detail::leadingInt64("99999999999999999999"), std::numeric_limits<qint64>::max());
    EXPECT_EQ(detail::leadingInt64("-99999999999999999999"), std::numeric_limits<qint64>::min());

    PaneEntry entry = remoteFile("f", 0);
    entry.size = QStringLiteral("2048 bytes");
    EXPECT_EQ(sizeCellText(entry), "2.0 KB");
    entry.size = QStringLiteral("18446744073709551615"); // saturates like the row builder's reader
    EXPECT_EQ(sizeCellText(entry), "8589934592.0 GB");
    entry.size = QStringLiteral("-1");
    EXPECT_EQ(sizeCellText(entry), "17179869184.0 GB");
}

QStringList namesOf(PaneEntries const& entries)
{
    QStringList names;
    for (PaneEntry const& entry : entries) {
        names.append(entry.name);
    }
    return names;
}

TEST(PaneSorting, NamesCompareWithoutCaseAndFoldersAreNotPutFirst)
{
    PaneEntries rows{remoteFile("beta", 1), remoteFolder("Alpha"), remoteFile("alpha2", 1), remoteFolder("zeta")};
    sortPaneEntries(rows, {{"name", true}});
    EXPECT_EQ(namesOf(rows), QStringList({"Alpha", "alpha2", "beta", "zeta"}));
    sortPaneEntries(rows, {{"name", false}});
    EXPECT_EQ(namesOf(rows), QStringList({"zeta", "beta", "alpha2", "Alpha"}));
}

TEST(PaneSorting, SizesCompareAsNumbersFoldersIncludedAndTiesKeepTheirOrder)
{
    PaneEntries rows{remoteFile("ten", 10), remoteFolder("dir", 5), remoteFile("two", 2), remoteFile("ten-b", 10),
                     remoteFile("big", 1ULL << 40)};
    sortPaneEntries(rows, {{"sizeValue", true}});
    EXPECT_EQ(namesOf(rows), QStringList({"two", "dir", "ten", "ten-b", "big"}));
}

TEST(PaneSorting, LaterDescriptorsBreakTiesOfEarlierOnes)
{
    PaneEntries rows{remoteFile("b", 1, "-rw"), remoteFile("a", 2, "-rw"), remoteFile("c", 3, "drw")};
    sortPaneEntries(rows, {{"permissions", false}, {"name", true}});
    EXPECT_EQ(namesOf(rows), QStringList({"c", "a", "b"}));
}

TEST(PaneSorting, HeaderClicksReverseThePrimaryColumnOrPutANewOneFirst)
{
    QList<PaneSortDescriptor> sorts = descriptorsAfterHeaderClick({}, "sizeValue");
    EXPECT_EQ(sorts, (QList<PaneSortDescriptor>{{"sizeValue", true}}));
    sorts = descriptorsAfterHeaderClick(sorts, "sizeValue");
    EXPECT_EQ(sorts, (QList<PaneSortDescriptor>{{"sizeValue", false}}));
    sorts = descriptorsAfterHeaderClick(sorts, "name");
    EXPECT_EQ(sorts, (QList<PaneSortDescriptor>{{"name", true}, {"sizeValue", false}}));
    sorts = descriptorsAfterHeaderClick(sorts, "sizeValue");
    EXPECT_EQ(sorts, (QList<PaneSortDescriptor>{{"sizeValue", true}, {"name", true}}));
}

} // namespace
} // namespace perchftp::app
