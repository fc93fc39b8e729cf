// The rules the panes and transfers apply to text alone (how file names that are not UTF-8 read is
// pinned by the local pane on such a folder): paths, size cells, row order,
// the modes that permission texts give (the properties that hold for every text are the permission
// fuzz target's) and the "already exists" reading of a failure.
#include "app/pane/pane_cells.hpp"
#include "app/pane/pane_paths.hpp"
#include "app/pane/pane_sorting.hpp"
#include "app/transfers/permission_modes.hpp"
#include "app/transfers/transfer_paths.hpp"
#include "pane_test_support.hpp"

#include <QDir>

#include <gtest/gtest.h>


namespace perchftp::app {
namespace {

using namespace detail;
using testing::remoteFile;
using testing::remoteFolder;

// Climbing is pinned through the panes' navigation, remote joins through the transfers' targets.
TEST(TextRules, PathsAreStandardisedWithDotsResolvedInAbsolutePathsOnly)
{
    QString const home = QDir::homePath();
    std::pair<QString, QString> const standardized[] = {{"~", home}, {"~/docs//./a/", home + "/docs/a"},
        {"/a/b/../c/./d//", "/a/c/d"}, {"/../..", "/"}, {"a/../b/./c", "a/../b/c"},
        {"~no-such-user-perchftp/x", "~no-such-user-perchftp/x"}};
    for (auto const& [path, expected] : standardized) {
        EXPECT_EQ(standardizePath(path), expected) << path.toStdString();
    }
    EXPECT_TRUE(standardizePath(QString()).isNull());
    EXPECT_FALSE(standardizePath(QStringLiteral("")).isNull());
}

TEST(TextRules, SizeCellsStartEachUnitAtItsPowerOf1024AndReadTheSizeTextAsALeadingNumber)
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

// Sizes and the header's turns are pinned through the remote pane's header clicks.
TEST(TextRules, SortingIgnoresCaseKeepsTiesAndAHeaderClickPutsItsColumnFirst)
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
    EXPECT_EQ(sortedNames(named, {{"name", false}}), QStringList({"zeta", "beta", "alpha2", "Alpha"}));
    PaneEntries const tied{remoteFile("b", 1, "-rw"), remoteFile("a", 2, "-rw"), remoteFile("c", 3, "drw")};
    EXPECT_EQ(sortedNames(tied, {{"permissions", false}, {"name", true}}), QStringList({"c", "a", "b"}));

    QList<PaneSortDescriptor> const sorts{{"sizeValue", false}};
    EXPECT_EQ(descriptorsAfterHeaderClick(sorts, "name"),
              (QList<PaneSortDescriptor>{{"name", true}, {"sizeValue", false}}));
    EXPECT_EQ(descriptorsAfterHeaderClick({{"name", true}, {"sizeValue", false}}, "sizeValue"),
              (QList<PaneSortDescriptor>{{"sizeValue", true}, {"name", true}}));
}

TEST(TextRules, PermissionTextsGiveTheirModesOrAreRefused)
{
    std::pair<QString, int> const accepted[] = {{"644", 0644}, {"7777", 07777}, {" 7 5\t5 \n", 0755},
        {"drwxr-xr-x", 0755}, {"-rw-r--r--", 0644}, {"lrwxrwxrwx", 0777}, {"rwsr-xr-x", 04755}, {"rwSr--r--", 04644},
        {"rwxrwsr-x", 02775}, {"rwxrwxrwt", 01777}, {"rwxrwxrwT", 01776}, {"xwrxwrxwr", 0222},
        {"rtxr-xr-x", 0755 & ~0200},
        {"xrwxrwxrw", 0}}; // letters in the wrong place are taken without effect
    for (auto const& [text, mode] : accepted) {
        EXPECT_EQ(parsePermissionMode(text), mode) << text.toStdString();
    }
    QString const refused[] = {"", "64", "06444", "888", "rwxr-xr-", "xrwxr-xr-x", "rwsr-xr-s", "Twxr-xr-x",
        "rwxTwxr-x", "rwxr-xr-q", "drwxr-xr-xx", "r\u00e9xr-xr-x"};
    for (QString const& text : refused) {
        EXPECT_EQ(parsePermissionMode(text), -1) << '"' << text.toStdString() << '"';
    }

    EXPECT_TRUE(messageLooksLikeAlreadyExists("550 Directory already EXISTS"));
    EXPECT_TRUE(messageLooksLikeAlreadyExists("No such file: it does not exist")) << "deliberately this wide";
    EXPECT_FALSE(messageLooksLikeAlreadyExists("ftp operation failed: Quote command returned error"));
}

} // namespace
} // namespace perchftp::app
