#include "storage/legacy_snapshot.hpp"

#include "storage/store_fixture.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace perchftp::storage::detail {
namespace {

// A full header: every setting differs from its default, and the dark-theme line carries the
// default protocol behind its integer.
constexpr char const* kHeader = "3 2\n"
                                "0\n"
                                "4\n"
                                "6\n"
                                "0 ftp\n"
                                "45000\n"
                                "1\n"
                                "  {\"split\":0.4}\n";

constexpr char const* kOfficeRecord = "7 this rest is ignored\n"
                                      "  Office  \n"
                                      "SFTP\n"
                                      "Files.Example.com\n"
                                      "2222\n"
                                      "ana\n"
                                      "s3cret with spaces\n"
                                      "/home/ana\n"
                                      "/srv/www\n"
                                      "2\n"
                                      "Clients\n"
                                      "1\n"
                                      "1\n"
                                      "0\n"
                                      "ascii\n"
                                      "5000\n"
                                      "7000\n"
                                      "0\n";

constexpr char const* kHomeRecord = "3\n"
                                    "Home\n"
                                    "ftp\n"
                                    "nas.local\n"
                                    "70000\n"
                                    "\n"
                                    "\n"
                                    "\n"
                                    "\n"
                                    "1\n"
                                    "\n"
                                    "yes\n"
                                    "2\n"
                                    "-1\n"
                                    "Ascii\n"
                                    "abc\n"
                                    "45s\n"
                                    "xyz\n";

class LegacySnapshotTest : public testing::Test {
protected:
    std::optional<Snapshot> loadText(std::string const& text)
    {
        test::writeFile(path, text);
        return loadLegacySnapshotFromPath(path);
    }

    test::TempDir dir;
    std::string path = dir.file("perchftp-sites.db");
};

TEST_F(LegacySnapshotTest, ReadsTheHeaderAndEveryFieldOfEachRecordAsItStands)
{
    auto const snapshot = loadText(std::string(kHeader) + kOfficeRecord + kHomeRecord);
    ASSERT_TRUE(snapshot.has_value());
    AppSettings settings;
    settings.autoReconnect = false;
    settings.concurrentTransfers = 4;
    settings.retryLimit = 6;
    settings.useDarkTheme = false;
    settings.defaultProtocol = " ftp"; // the rest of the dark-theme line, leading blank included
    settings.operationTimeoutMs = 45000;
    settings.logLevel = 1;
    settings.uiLayoutJson = "{\"split\":0.4}";
    EXPECT_EQ(snapshot->version, 3);
    EXPECT_EQ(snapshot->settings, settings);
    ASSERT_EQ(snapshot->profiles.size(), 2U);

    SiteProfile office;
    office.id = 7;
    office.name = "  Office  ";
    office.protocol = "SFTP";
    office.host = "Files.Example.com";
    office.port = 2222;
    office.user = "ana";
    office.secretRef = "s3cret with spaces";
    office.localRoot = "/home/ana";
    office.remoteRoot = "/srv/www";
    office.status = 2;
    office.group = "Clients";
    office.favorite = office.quickConnect = true;
    office.transferMode = TransferMode::Ascii;
    office.connectTimeoutMs = 5000;
    office.transferTimeoutMs = 7000;
    office.useEncryption = false;
    EXPECT_EQ(snapshot->profiles[0], office);
}

TEST_F(LegacySnapshotTest, UnparsableLinesTakeTheirDefaultsAndNormalisationRepairsTheRest)
{
    auto const snapshot = loadText(std::string(kHeader) + kOfficeRecord + kHomeRecord);
    ASSERT_EQ(snapshot->profiles.size(), 2U);
    SiteProfile home;
    home.id = 3;
    home.name = "Home";
    home.protocol = "ftp";
    home.host = "nas.local";
    home.port = 21; // 70000 is read, then repaired
    home.group = "General";
    home.favorite = false; // "yes" is no number
    home.quickConnect = true;
    home.autoConnect = true; // -1 is not 0
    home.transferMode = TransferMode::Binary; // "Ascii" is not the word
    home.connectTimeoutMs = 10000;
    home.transferTimeoutMs = 45; // letters behind the digits do no harm
    home.useEncryption = true;
    EXPECT_EQ(snapshot->profiles[1], home);
}

TEST_F(LegacySnapshotTest, AVersionAndCountLineAloneGivesDefaultSettingsAndNoProfiles)
{
    EXPECT_EQ(loadText("3 0"), Snapshot{});
    EXPECT_EQ(loadText("-12 0\n"), Snapshot{}); // no version is refused; each becomes 3
}

TEST_F(LegacySnapshotTest, TextThatDoesNotBeginWithTwoIntegersIsRefused)
{
    EXPECT_FALSE(loadText("").has_value());
    EXPECT_FALSE(loadText("hello world\n").has_value());
    EXPECT_FALSE(loadText("3\nprofiles\n").has_value());
    EXPECT_FALSE(loadLegacySnapshotFromPath(dir.file("missing")).has_value());
}

TEST_F(LegacySnapshotTest, AnIntegerThatEndsItsLineLeavesTheProtocolEmptyAndShiftsTheNextLineToTheLayout)
{
    AppSettings expected;
    expected.autoReconnect = false;
    expected.concurrentTransfers = 5;
    expected.retryLimit = 7;
    expected.useDarkTheme = false;
    expected.uiLayoutJson = "wide layout"; // what the timeout and the log level could not parse
    EXPECT_EQ(loadText("3 0\n0\n5\n7\n0\nwide layout\n").value().settings, expected);
}

TEST_F(LegacySnapshotTest, HeaderIntegersMayShareALine)
{
    AppSettings expected;
    expected.concurrentTransfers = 9;
    expected.retryLimit = 8;
    expected.defaultProtocol = " ftps";
    expected.operationTimeoutMs = 100;
    expected.logLevel = 3;
    expected.uiLayoutJson = "[]";
    EXPECT_EQ(loadText("3 0 1 9 8 1 ftps\n100 3 []\n").value().settings, expected);
}

std::string withCount(char const* count)
{
    return std::string(kHeader).replace(2, 1, count);
}

TEST_F(LegacySnapshotTest, TheFirstBrokenRecordEndsTheReadingAndTheOnesBeforeItStand)
{
    std::string cutAfterStatus = kHomeRecord;
    cutAfterStatus.resize(cutAfterStatus.find("1\n\nyes") + 2);
    auto const cut = loadText(std::string(kHeader) + kOfficeRecord + cutAfterStatus);
    ASSERT_TRUE(cut.has_value());
    ASSERT_EQ(cut->profiles.size(), 1U);
    EXPECT_EQ(cut->profiles[0].id, 7);

    auto const brokenFirst = loadText(withCount("3") + "not-an-id\n" + kOfficeRecord + kHomeRecord);
    ASSERT_TRUE(brokenFirst.has_value());
    EXPECT_TRUE(brokenFirst->profiles.empty());
}

TEST_F(LegacySnapshotTest, TheCountDecidesHowManyRecordsAreReadAndALargeOneStopsAtTheEnd)
{
    EXPECT_EQ(loadText(withCount("1") + kOfficeRecord + kHomeRecord)->profiles.size(), 1U);
    EXPECT_EQ(loadText(withCount("900000000") + kOfficeRecord + kHomeRecord)->profiles.size(), 2U);
    EXPECT_EQ(loadText(withCount("-1") + kOfficeRecord)->profiles.size(), 1U); // read as unsigned: huge
}

TEST(LegacyReadOrDefault, ReadsAcrossLineEndsAndNeverSkipsWhatItFailedToParse)
{
    std::istringstream in("  \n 42 0 abc 12\nrest");
    int number = 0;
    bool flag = true;
    std::string line;
    EXPECT_TRUE(readOrDefault(in, number, 1));
    EXPECT_EQ(number, 42);
    EXPECT_TRUE(readOrDefault(in, flag, true));
    EXPECT_FALSE(flag);
    EXPECT_FALSE(readOrDefault(in, number, 99));
    EXPECT_EQ(number, 99);
    EXPECT_FALSE(readOrDefault(in, flag, true));
    EXPECT_TRUE(flag);
    EXPECT_TRUE(readOrDefault(in, line, std::string("fallback")));
    EXPECT_EQ(line, "abc 12"); // only the white space in front of it went
    EXPECT_TRUE(readOrDefault(in, line, std::string("fallback")));
    EXPECT_EQ(line, "rest");
    EXPECT_FALSE(readOrDefault(in, line, std::string("fallback")));
    EXPECT_EQ(line, "fallback");
}

TEST(LegacyParseIntOrDefault, ParsesALeadingDecimalNumberAndFallsBackOtherwise)
{
    EXPECT_EQ(parseIntOrDefault("", 7), 7);
    EXPECT_EQ(parseIntOrDefault("42", 7), 42);
    EXPECT_EQ(parseIntOrDefault(" \t42", 7), 42);
    EXPECT_EQ(parseIntOrDefault("42abc", 7), 42);
    EXPECT_EQ(parseIntOrDefault("-8", 7), -8);
    EXPECT_EQ(parseIntOrDefault("+8", 7), 8);
    EXPECT_EQ(parseIntOrDefault("abc", 7), 7);
    EXPECT_EQ(parseIntOrDefault("-", 7), 7);
    EXPECT_EQ(parseIntOrDefault("x42", 7), 7);
    EXPECT_EQ(parseIntOrDefault("2147483647", 7), 2147483647);
    EXPECT_EQ(parseIntOrDefault("-2147483648", 7), -2147483647 - 1);
    EXPECT_EQ(parseIntOrDefault("2147483648", 7), 7);
    EXPECT_EQ(parseIntOrDefault("-2147483649", 7), 7);
    EXPECT_EQ(parseIntOrDefault("99999999999999999999999", 7), 7);
}

TEST_F(LegacySnapshotTest, OnlyTheFifteenHeaderBytesMarkADatabase)
{
    test::writeFile(path, "SQLite format 3");
    EXPECT_TRUE(fileLooksLikeSqliteDatabase(path));
    test::writeFile(path, std::string("SQLite format 3\0anything", 24));
    EXPECT_TRUE(fileLooksLikeSqliteDatabase(path));
    test::writeFile(path, "SQLite format");
    EXPECT_FALSE(fileLooksLikeSqliteDatabase(path));
    test::writeFile(path, "sqlite format 3");
    EXPECT_FALSE(fileLooksLikeSqliteDatabase(path));
    EXPECT_FALSE(fileLooksLikeSqliteDatabase(dir.file("missing")));
}

} // namespace
} // namespace perchftp::storage::detail
