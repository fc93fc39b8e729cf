// Path text, file names, size cells and row ordering: the rules the panes apply to text alone.
#include "app/pane/pane_cells.hpp"
#include "app/pane/pane_file_names.hpp"
#include "app/pane/pane_paths.hpp"
#include "app/pane/pane_sorting.hpp"
#include "pane_test_support.hpp"

#include <QDir>

#include <gtest/gtest.h>

namespace perchftp::app {
namespace {

using namespace detail;
using testing::remoteFile;
using testing::remoteFolder;

TEST(PaneText, PathRules)
{
    QString const home = QDir::homePath();
    std::pair<QString, QString> const standardized[] = {{"~", home}, {"~/docs//./a/", home + "/docs/a"},
        {"/a/b/../c/./d//", "/a/c/d"}, {"/../..", "/"}, {"a/../b/./c", "a/../b/c"}, // dots resolve in absolute paths only
        {"~no-such-user-perchftp/x", "~no-such-user-perchftp/x"}};
    for (auto const& [path, expected] : standardized) {
        EXPECT_EQ(standardizePath(path), expected) << path.toStdString();
    }
    EXPECT_TRUE(standardizePath(QString()).isNull());
    EXPECT_FALSE(standardizePath(QStringLiteral("")).isNull());

    EXPECT_EQ(QStringList({deletingLastPathComponent("/a/b/"), deletingLastPathComponent("/a"),
                  deletingLastPathComponent("/"), deletingLastPathComponent("name")}),
        QStringList({"/a", "/", "/", ""}));
    EXPECT_EQ(QStringList({appendingPathComponent("/", "x"), appendingPathComponent("/a/", "x"),
                  appendingPathComponent("", "x")}),
        QStringList({"/x", "/a/x", "x"}));
}

TEST(PaneText, FileNamesKeepTheirBytesAndShowStrayBytesAsReplacementCharacters)
{
    std::string const samples[] = {"plain.txt", "caf\xc3\xa9 \xf0\x9f\x98\x80", "caf\xe9.txt", "\xff\xfe",
                                   "\xc0\xaf overlong", "\xed\xa0\x80 surrogate", "cut \xe2\x82", "\xf4\x90\x80\x80"};
    for (std::string const& bytes : samples) {
        EXPECT_EQ(encodeFileName(decodeFileName(bytes)), bytes) << bytes;
    }
    EXPECT_EQ(decodeFileName("caf\xc3\xa9"), QString::fromUtf8("caf\xc3\xa9"));
    EXPECT_EQ(displayFileName(decodeFileName("caf\xe9")), QString("caf") + QChar(QChar::ReplacementCharacter));
}

TEST(PaneText, SizeCellsStartEachUnitAtItsPowerOf1024AndReadTheSizeTextAsALeadingNumber)
{
    std::pair<QString, QString> const sizes[] = {{"0", "0 B"}, {"1023", "1023 B"}, {"1024", "1.0 KB"},
        {"1048575", "1024.0 KB"}, {"1048576", "1.0 MB"}, {"1073741823", "1024.0 MB"}, {"1073741824", "1.0 GB"},
        {"5905580032", "5.5 GB"}, {"  2048 bytes", "2.0 KB"}, {"garbage", "0 B"},
        {"18446744073709551615", "8589934592.0 GB"}, // saturates like the row builder's reader
        {"-99999999999999999999", "8589934592.0 GB"}, {"-1", "17179869184.0 GB"}};
    for (auto const& [size, text] : sizes) {
        PaneEntry entry = remoteFile("f", 0);
        entry.size = size;
        EXPECT_EQ(sizeCellText(entry), text) << size.toStdString();
    }
    EXPECT_EQ(sizeCellText(remoteFolder("d", 8192)), "");
    EXPECT_EQ(sizeCellText(PaneEntry{"Not connected.", "/", false, true, {}, {}, 0, {}}), "");
}

TEST(PaneText, SortingIgnoresCaseComparesSizesAsNumbersKeepsTiesAndHeaderClicksReverseOrLead)
{
    auto const sortedNames = [](PaneEntries rows, QList<PaneSortDescriptor> const& sorts) {
        sortPaneEntries(rows, sorts);
        QStringList names;
        for (PaneEntry const& entry : rows) {
            names.append(entry.name);
        }
        return names;
    };
    PaneEntries const named{remoteFile("beta", 1), remoteFolder("Alpha"), remoteFile("alpha2", 1), remoteFolder("zeta")};
    EXPECT_EQ(sortedNames(named, {{"name", true}}), QStringList({"Alpha", "alpha2", "beta", "zeta"}));
    EXPECT_EQ(sortedNames(named, {{"name", false}}), QStringList({"zeta", "beta", "alpha2", "Alpha"}));
    PaneEntries const sized{remoteFile("ten", 10), remoteFolder("dir", 5), remoteFile("two", 2),
                            remoteFile("ten-b", 10), remoteFile("big", 1ULL << 40)};
    EXPECT_EQ(sortedNames(sized, {{"sizeValue", true}}), QStringList({"two", "dir", "ten", "ten-b", "big"}));
    PaneEntries const tied{remoteFile("b", 1, "-rw"), remoteFile("a", 2, "-rw"), remoteFile("c", 3, "drw")};
    EXPECT_EQ(sortedNames(tied, {{"permissions", false}, {"name", true}}), QStringList({"c", "a", "b"}));

    QList<PaneSortDescriptor> sorts = descriptorsAfterHeaderClick({}, "sizeValue");
    sorts = descriptorsAfterHeaderClick(sorts, "sizeValue");
    EXPECT_EQ(sorts, (QList<PaneSortDescriptor>{{"sizeValue", false}}));
    sorts = descriptorsAfterHeaderClick(sorts, "name");
    EXPECT_EQ(sorts, (QList<PaneSortDescriptor>{{"name", true}, {"sizeValue", false}}));
    sorts = descriptorsAfterHeaderClick(sorts, "sizeValue");
    EXPECT_EQ(sorts, (QList<PaneSortDescriptor>{{"sizeValue", true}, {"name", true}}));
}

} // namespace
} // namespace perchftp::app
