#include "storage/legacy_snapshot.hpp"

#include "storage/store_fixture.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

namespace perchftp::storage::detail {
namespace {

using test::describe;

// A full header: every setting differs from its default, and the dark-theme line carries the
// default protocol behind its integer.
constexpr char const* kHeader = "3 2\n0\n4\n6\n0 ftp\n45000\n1\n  {\"split\":0.4}\n";
constexpr char const* kOfficeRecord = "7 this rest is ignored\n  Office  \nSFTP\nFiles.Example.com\n65535\nana\n"
                                      "s3cret with spaces\n/home/ana\n/srv/www\n2\nClients\n1\n1\n0\nascii\n5000\n7000\n0\n";
// Unparsable lines take their defaults, then normalisation repairs the rest.
constexpr char const* kHomeRecord = "3\nHome\nftp\nnas.local\n65536\n\n\n\n\n1\n\n2147483648\n2\n-2147483648\n"
                                    "Ascii\nabc\n \t+2147483647s\nxyz\n";

TEST(LegacySnapshot, ReadsEveryFieldAndHeaderShapeRefusesTextWithoutTwoIntegersAndStopsAtTheCount)
{
    test::TempDir dir;
    auto const path = dir.file("perchftp-sites.db");
    auto const loadText = [&path](std::string const& text) {
        test::writeFile(path, text);
        return loadLegacySnapshotFromPath(path);
    };
    auto const snapshot = loadText(std::string(kHeader) + kOfficeRecord + kHomeRecord);
    ASSERT_TRUE(snapshot.has_value());
    // The protocol is the rest of the dark-theme line, leading blank included.
    EXPECT_EQ(describe(snapshot->settings), "0|4|6|0| ftp|45000|1|{\"split\":0.4}");
    ASSERT_EQ(snapshot->profiles.size(), 2U);
    EXPECT_EQ(describe(snapshot->profiles[0]), "7|  Office  |SFTP|Files.Example.com|65535|ana|s3cret with spaces|"
                                               "/home/ana|/srv/www|2|Clients|110|1|5000|7000|0");
    // 65536 is read, then repaired; one past the largest int falls back, the smallest is read; 2 is
    // not 0; "Ascii" is not the word; "abc" and "xyz" are no numbers; blanks, a sign and letters
    // around the largest int do no harm.
    EXPECT_EQ(describe(snapshot->profiles[1]),
              "3|Home|ftp|nas.local|21|||||1|General|011|0|10000|2147483647|1");

    EXPECT_EQ(loadText("3 0"), Snapshot{});
    // An integer that ends its line leaves the protocol empty (repaired to the default) and shifts
    // the next line to the layout, past the two integers that cannot parse it.
    EXPECT_EQ(describe(loadText("3 0\n0\n5\n7\n0\nwide layout\n").value().settings), "0|5|7|0|sftp|30000|2|wide layout");
    EXPECT_EQ(describe(loadText("3 0 1 9 8 1 ftps\n100 3 []\n").value().settings), "1|9|8|1| ftps|100|3|[]");

    EXPECT_FALSE(loadText("3\nprofiles\n").has_value());

    // The count and the first broken record end the reading; the records before it stand.
    auto const withCount = [](char const* count) { return std::string(kHeader).replace(2, 1, count); };
    std::string cutAfterStatus = kHomeRecord;
    cutAfterStatus.resize(cutAfterStatus.find("1\n\n2147483648") + 2);
    auto const cut = loadText(std::string(kHeader) + kOfficeRecord + cutAfterStatus);
    ASSERT_EQ(cut.value().profiles.size(), 1U);
    EXPECT_EQ(cut->profiles[0].id, 7);
    EXPECT_TRUE(loadText(withCount("3") + "not-an-id\n" + kOfficeRecord + kHomeRecord).value().profiles.empty());
    EXPECT_EQ(loadText(withCount("1") + kOfficeRecord + kHomeRecord)->profiles.size(), 1U);
    EXPECT_EQ(loadText(withCount("-1") + kOfficeRecord)->profiles.size(), 1U); // read as unsigned: huge
}

} // namespace
} // namespace perchftp::storage::detail
