#include "storage/legacy_snapshot.hpp"

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

TEST_F(LegacySnapshotTest, ReadsTheHeaderWithTheProtocolFromTheRestOfTheDarkThemeLine)
{
    auto const snapshot = loadText(std::string(kHeader) + kOfficeRecord + kHomeRecord);
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->version, 3);
    auto const& settings = snapshot->settings;
    EXPECT_FALSE(settings.autoReconnect);
    EXPECT_EQ(settings.concurrentTransfers, 4);
    EXPECT_EQ(settings.retryLimit, 6);
    EXPECT_FALSE(settings.useDarkTheme);
    EXPECT_EQ(settings.defaultProtocol, " ftp");
    EXPECT_EQ(settings.operationTimeoutMs, 45000);
    EXPECT_EQ(settings.logLevel, 1);
    EXPECT_EQ(settings.uiLayoutJson, "{\"split\":0.4}");
}

TEST_F(LegacySnapshotTest, ReadsEveryFieldOfARecordAsItStands)
{
    auto const snapshot = loadText(std::string(kHeader) + kOfficeRecord + kHomeRecord);
    ASSERT_TRUE(snapshot.has_value());
    ASSERT_EQ(snapshot->profiles.size(), 2U);
    auto const& office = snapshot->profiles[0];
    EXPECT_EQ(office.id, 7);
    EXPECT_EQ(office.name, "  Office  ");
    EXPECT_EQ(office.protocol, "SFTP");
    EXPECT_EQ(office.host, "Files.Example.com");
    EXPECT_EQ(office.port, 2222);
    EXPECT_EQ(office.user, "ana");
    EXPECT_EQ(office.secretRef, "s3cret with spaces");
    EXPECT_EQ(office.localRoot, "/home/ana");
    EXPECT_EQ(office.remoteRoot, "/srv/www");
    EXPECT_EQ(office.status, 2);
    EXPECT_EQ(office.group, "Clients");
    EXPECT_TRUE(office.favorite);
    EXPECT_TRUE(office.quickConnect);
    EXPECT_FALSE(office.autoConnect);
    EXPECT_EQ(office.transferMode, TransferMode::Ascii);
    EXPECT_EQ(office.connectTimeoutMs, 5000);
    EXPECT_EQ(office.transferTimeoutMs, 7000);
    EXPECT_FALSE(office.useEncryption);
}

TEST_F(LegacySnapshotTest, UnparsableLinesTakeTheirDefaultsAndNormalisationRepairsTheRest)
{
    auto const snapshot = loadText(std::string(kHeader) + kOfficeRecord + kHomeRecord);
    ASSERT_EQ(snapshot->profiles.size(), 2U);
    auto const& home = snapshot->profiles[1];
    EXPECT_EQ(home.port, 21);
    EXPECT_EQ(home.user, "");
    EXPECT_EQ(home.group, "General");
    EXPECT_FALSE(home.favorite); // "yes" is no number
    EXPECT_TRUE(home.quickConnect);
    EXPECT_TRUE(home.autoConnect); // -1 is not 0
    EXPECT_EQ(home.transferMode, TransferMode::Binary); // "Ascii" is not the word
    EXPECT_EQ(home.connectTimeoutMs, 10000);
    EXPECT_EQ(home.transferTimeoutMs, 45); // letters behind the digits do no harm
    EXPECT_TRUE(home.useEncryption);
}

TEST_F(LegacySnapshotTest, AVersionAndCountLineAloneGivesDefaultSettingsAndNoProfiles)
{
    auto const snapshot = loadText("3 0");
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_TRUE(snapshot->profiles.empty());
    EXPECT_TRUE(snapshot->settings.autoReconnect);
    EXPECT_EQ(snapshot->settings.concurrentTransfers, 2);
    EXPECT_EQ(snapshot->settings.retryLimit, 3);
    EXPECT_TRUE(snapshot->settings.useDarkTheme);
    EXPECT_EQ(snapshot->settings.defaultProtocol, "sftp");
    EXPECT_EQ(snapshot->settings.operationTimeoutMs, 30000);
    EXPECT_EQ(snapshot->settings.logLevel, 2);
    EXPECT_EQ(snapshot->settings.uiLayoutJson, "{}");
}

TEST_F(LegacySnapshotTest, TextThatDoesNotBeginWithTwoIntegersIsRefused)
{
    EXPECT_FALSE(loadText("").has_value());
    EXPECT_FALSE(loadText("hello world\n").has_value());
    EXPECT_FALSE(loadText("3\nprofiles\n").has_value());
    EXPECT_FALSE(loadLegacySnapshotFromPath(dir.file("missing")).has_value());
}

TEST_F(LegacySnapshotTest, AnyVersionNumberIsAcceptedAndBecomesThree)
{
    EXPECT_EQ(loadText("-12 0\n").value().version, 3);
    EXPECT_EQ(loadText("1 0\n").value().version, 3);
}

TEST_F(LegacySnapshotTest, AnIntegerThatEndsItsLineLeavesTheProtocolEmptyAndShiftsTheNextLineToTheLayout)
{
    auto const snapshot = loadText("3 0\n"
                                   "0\n"
                                   "5\n"
                                   "7\n"
                                   "0\n"
                                   "wide layout\n");
    ASSERT_TRUE(snapshot.has_value());
    auto const& settings = snapshot->settings;
    EXPECT_FALSE(settings.autoReconnect);
    EXPECT_EQ(settings.concurrentTransfers, 5);
    EXPECT_EQ(settings.retryLimit, 7);
    EXPECT_FALSE(settings.useDarkTheme);
    EXPECT_EQ(settings.defaultProtocol, "sftp");
    EXPECT_EQ(settings.operationTimeoutMs, 30000);
    EXPECT_EQ(settings.logLevel, 2);
    EXPECT_EQ(settings.uiLayoutJson, "wide layout");
}

TEST_F(LegacySnapshotTest, HeaderIntegersMayShareALine)
{
    auto const snapshot = loadText("3 0 1 9 8 1 ftps\n100 3 []\n");
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->settings.concurrentTransfers, 9);
    EXPECT_EQ(snapshot->settings.retryLimit, 8);
    EXPECT_EQ(snapshot->settings.defaultProtocol, " ftps");
    EXPECT_EQ(snapshot->settings.operationTimeoutMs, 100);
    EXPECT_EQ(snapshot->settings.logLevel, 3);
    EXPECT_EQ(snapshot->settings.uiLayoutJson, "[]");
}

TEST_F(LegacySnapshotTest, ARecordCutOffAfterItsStatusLineIsDroppedAndTheOnesBeforeStand)
{
    std::string truncated = kHomeRecord;
    truncated.resize(truncated.find("1\n\nyes") + 2);
    auto const snapshot = loadText(std::string(kHeader) + kOfficeRecord + truncated);
    ASSERT_TRUE(snapshot.has_value());
    ASSERT_EQ(snapshot->profiles.size(), 1U);
    EXPECT_EQ(snapshot->profiles[0].id, 7);
}

TEST_F(LegacySnapshotTest, TheFirstBrokenRecordEndsTheReadingEvenWhenGoodOnesFollow)
{
    std::string text = std::string(kHeader);
    text.replace(0, 3, "3 3");
    auto const snapshot = loadText(text + "not-an-id\n" + kOfficeRecord + kHomeRecord);
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_TRUE(snapshot->profiles.empty());
}

TEST_F(LegacySnapshotTest, TheCountDecidesHowManyRecordsAreRead)
{
    std::string oneOfTwo = kHeader;
    oneOfTwo.replace(0, 3, "3 1");
    EXPECT_EQ(loadText(oneOfTwo + kOfficeRecord + kHomeRecord)->profiles.size(), 1U);

    std::string manyOfTwo = kHeader;
    manyOfTwo.replace(0, 3, "3 900000000");
    EXPECT_EQ(loadText(manyOfTwo + kOfficeRecord + kHomeRecord)->profiles.size(), 2U);
}

TEST_F(LegacySnapshotTest, ANegativeCountReadsAsAHugeOneAndStopsAtTheEndOfTheFile)
{
    std::string text = kHeader;
    text.replace(0, 3, "3 -1");
    auto const snapshot = loadText(text + kOfficeRecord);
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->profiles.size(), 1U);
}

TEST(LegacyReadOrDefault, NeverSkipsWhatItFailedToParse)
{
    std::istringstream in("abc 12\nrest");
    int number = 5;
    EXPECT_FALSE(readOrDefault(in, number, 99));
    EXPECT_EQ(number, 99);
    bool flag = false;
    EXPECT_FALSE(readOrDefault(in, flag, true));
    EXPECT_TRUE(flag);
    std::string line;
    EXPECT_TRUE(readOrDefault(in, line, std::string("fallback")));
    EXPECT_EQ(line, "abc 12");
    EXPECT_TRUE(readOrDefault(in, line, std::string("fallback")));
    EXPECT_EQ(line, "rest");
    EXPECT_FALSE(readOrDefault(in, line, std::string("fallback")));
    EXPECT_EQ(line, "fallback");
}

TEST(LegacyReadOrDefault, ReadsIntegersAcrossLineEndsAndFlagsAsNotZero)
{
    std::istringstream in("  \n\n 42 0 -3");
    int number = 0;
    bool flag = true;
    EXPECT_TRUE(readOrDefault(in, number, 1));
    EXPECT_EQ(number, 42);
    EXPECT_TRUE(readOrDefault(in, flag, true));
    EXPECT_FALSE(flag);
    EXPECT_TRUE(readOrDefault(in, flag, false));
    EXPECT_TRUE(flag);
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

TEST(LegacyToCurrent, NormalisesTheWholeSnapshot)
{
    Snapshot old;
    old.version = 1;
    old.settings.uiLayoutJson = "";
    SiteProfile profile;
    profile.port = 0;
    old.profiles.push_back(profile);
    auto const current = legacyToCurrent(old);
    EXPECT_EQ(current.version, 3);
    EXPECT_EQ(current.settings.uiLayoutJson, "{}");
    EXPECT_EQ(current.profiles.at(0).port, 21);
}

} // namespace
} // namespace perchftp::storage::detail
