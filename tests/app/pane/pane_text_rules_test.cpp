// Path text, file names, size cells and row ordering: the rules the panes apply to text alone.
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

using namespace detail;
using testing::remoteFile;
using testing::remoteFolder;

TEST(PaneText, PathRules)
{
    QString const home = QDir::homePath();
    EXPECT_EQ(standardizePath("~"), home);
    EXPECT_EQ(standardizePath("~/docs//./a/"), home + "/docs/a");
    EXPECT_EQ(standardizePath("/a/b/../c/./d//"), "/a/c/d");
    EXPECT_EQ(standardizePath("/../.."), "/");
    EXPECT_EQ(standardizePath("a/../b/./c"), "a/../b/c") << "dots are resolved in absolute paths only";
    EXPECT_EQ(standardizePath("~no-such-user-perchftp/x"), "~no-such-user-perchftp/x");
    EXPECT_TRUE(standardizePath(QString()).isNull());
    EXPECT_FALSE(standardizePath(QStringLiteral("")).isNull());
    EXPECT_TRUE(standardizePath(QStringLiteral("")).isEmpty());

    EXPECT_EQ(deletingLastPathComponent("/a/b/"), "/a");
    EXPECT_EQ(deletingLastPathComponent("/a"), "/");
    EXPECT_EQ(deletingLastPathComponent("/"), "/");
    EXPECT_EQ(deletingLastPathComponent("name"), "");

    EXPECT_EQ(appendingPathComponent("/", "x"), "/x");
    EXPECT_EQ(appendingPathComponent("/a/", "x"), "/a/x");
    EXPECT_EQ(appendingPathComponent("", "x"), "x");
}

TEST(PaneText, FileNamesKeepTheirBytesAndShowStrayBytesAsReplacementCharacters)
{
    std::string const samples[] = {"plain.txt", "caf\xc3\xa9 \xf0\x9f\x98\x80", "caf\xe9.txt", "\xff\xfe",
                                   "\xc0\xaf overlong", "\xed\xa0\x80 surrogate", "cut \xe2\x82", "\xf4\x90\x80\x80"};
    for (std::string const& bytes : samples) {
        EXPECT_EQ(encodeFileName(decodeFileName(bytes)), bytes) << bytes;
    }
    EXPECT_EQ(decodeFileName("caf\xc3\xa9"), QString::fromUtf8("caf\xc3\xa9"));
    QString const escaped = decodeFileName("caf\xe9");
    EXPECT_EQ(escaped.size(), 4);
    EXPECT_EQ(displayFileName(escaped), QString("caf") + QChar(QChar::ReplacementCharacter));
    EXPECT_EQ(displayFileName("caf\u00e9"), "caf\u00e9");
}

TEST(PaneText, SizeCellsStartEachUnitAtItsPowerOf1024AndReadTheSizeTextAsALeadingNumber)
{
    std::pair<quint64, QString> const units[] = {{0, "0 B"}, {1023, "1023 B"}, {1024, "1.0 KB"},
        {1048575, "1024.0 KB"}, {1048576, "1.0 MB"}, {1073741823, "1024.0 MB"}, {1073741824, "1.0 GB"},
        {5905580032ULL, "5.5 GB"}};
    for (auto const& [size, text] : units) {
        EXPECT_EQ(sizeCellText(remoteFile("f", size)), text) << size;
    }
    EXPECT_EQ(sizeCellText(remoteFolder("d", 8192)), "");
    EXPECT_EQ(sizeCellText(PaneEntry{"Not connected.", "/", false, true, {}, {}, 0, {}}), "");
    EXPECT_EQ(sizeCellText(PaneEntry{"a.txt", "/home/a.txt", false, false, {}, {}, 0, {}}), "0 B");

    EXPECT_EQ(leadingInt64("-99999999999999999999"), std::numeric_limits<qint64>::min());
    std::pair<QString, QString> const sizeTexts[] = {{"  2048 bytes", "2.0 KB"}, {"garbage", "0 B"},
        {"18446744073709551615", "8589934592.0 GB"}, // saturates like the row builder's reader
        {"-1", "17179869184.0 GB"}};
    for (auto const& [size, text] : sizeTexts) {
        PaneEntry entry = remoteFile("f", 0);
        entry.size = size;
        EXPECT_EQ(sizeCellText(entry), text) << size.toStdString();
    }
}

QStringList namesOf(PaneEntries const& entries)
{
    QStringList names;
    for (PaneEntry const& entry : entries) {
        names.append(entry.name);
    }
    return names;
}

TEST(PaneText, SortingIgnoresCaseComparesSizesAsNumbersAndKeepsTies)
{
    PaneEntries rows{remoteFile("beta", 1), remoteFolder("Alpha"), remoteFile("alpha2", 1), remoteFolder("zeta")};
    sortPaneEntries(rows, {{"name", true}});
    EXPECT_EQ(namesOf(rows), QStringList({"Alpha", "alpha2", "beta", "zeta"})) << "folders are not put first";
    sortPaneEntries(rows, {{"name", false}});
    EXPECT_EQ(namesOf(rows), QStringList({"zeta", "beta", "alpha2", "Alpha"}));

    rows = {remoteFile("ten", 10), remoteFolder("dir", 5), remoteFile("two", 2), remoteFile("ten-b", 10),
            remoteFile("big", 1ULL << 40)};
    sortPaneEntries(rows, {{"sizeValue", true}});
    EXPECT_EQ(namesOf(rows), QStringList({"two", "dir", "ten", "ten-b", "big"}));

    rows = {remoteFile("b", 1, "-rw"), remoteFile("a", 2, "-rw"), remoteFile("c", 3, "drw")};
    sortPaneEntries(rows, {{"permissions", false}, {"name", true}});
    EXPECT_EQ(namesOf(rows), QStringList({"c", "a", "b"})) << "later descriptors break ties";
}

TEST(PaneText, HeaderClicksReverseThePrimaryColumnOrPutANewOneFirst)
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
