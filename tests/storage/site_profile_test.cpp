#include "storage/site_profile.hpp"
#include "storage/sqlite_store.hpp"

#include <gtest/gtest.h>

namespace perchftp::storage {
namespace {

TEST(ApplyDefaults, RepairsOnlyProtocolTimeoutLogLevelAndLayout)
{
    AppSettings settings;
    settings.defaultProtocol = "";
    settings.operationTimeoutMs = 0;
    settings.logLevel = -1;
    settings.uiLayoutJson = "";
    settings.concurrentTransfers = -7;
    settings.retryLimit = 0;
    auto const snapshot = applyDefaults(settings);
    EXPECT_EQ(snapshot.version, 3);
    EXPECT_TRUE(snapshot.profiles.empty());
    EXPECT_EQ(snapshot.settings.defaultProtocol, "sftp");
    EXPECT_EQ(snapshot.settings.operationTimeoutMs, 30000);
    EXPECT_EQ(snapshot.settings.logLevel, 0); // not the default of 2
    EXPECT_EQ(snapshot.settings.uiLayoutJson, "{}");
    EXPECT_EQ(snapshot.settings.concurrentTransfers, -7);
    EXPECT_EQ(snapshot.settings.retryLimit, 0);

    settings.defaultProtocol = "gopher";
    settings.operationTimeoutMs = 1;
    EXPECT_EQ(applyDefaults(settings).settings.defaultProtocol, "gopher");
    EXPECT_EQ(applyDefaults(settings).settings.operationTimeoutMs, 1);
}

TEST(NormalizeSiteProfile, RepairsPortTimeoutsGroupAndModeButTrimsAndRejectsNothing)
{
    for (int const port : {0, -1, 65536}) {
        SiteProfile profile;
        profile.protocol = "sftp";
        profile.port = port;
        normalizeSiteProfile(profile);
        EXPECT_EQ(profile.port, 21) << port;
    }
    SiteProfile profile;
    profile.name = "  padded  ";
    profile.protocol = " SFTP ";
    profile.port = 65535;
    profile.status = 9;
    profile.connectTimeoutMs = 0;
    profile.transferTimeoutMs = -3;
    profile.transferMode = static_cast<TransferMode>(3);
    auto expected = profile;
    expected.connectTimeoutMs = 10000;
    expected.transferTimeoutMs = 60000;
    expected.group = "General";
    expected.transferMode = TransferMode::Binary;
    normalizeSiteProfile(profile);
    EXPECT_EQ(profile, expected);

    profile.port = 1;
    profile.connectTimeoutMs = 1;
    profile.group = "   ";
    expected = profile;
    normalizeSiteProfile(profile);
    EXPECT_EQ(profile, expected);
}

TEST(NormalizeSnapshot, SetsVersionThreeAndRepairsEveryProfileInPlaceAndOrder)
{
    Snapshot snapshot;
    snapshot.version = 1;
    snapshot.settings.logLevel = -4;
    for (int port : {0, 990, 70000}) {
        SiteProfile profile;
        profile.port = port;
        snapshot.profiles.push_back(profile);
    }
    auto const normalized = normalizeSnapshot(snapshot);
    EXPECT_EQ(normalized.version, 3);
    EXPECT_EQ(normalized.settings.logLevel, 0);
    ASSERT_EQ(normalized.profiles.size(), 3U);
    EXPECT_EQ(normalized.profiles[0].port, 21);
    EXPECT_EQ(normalized.profiles[1].port, 990);
    EXPECT_EQ(normalized.profiles[2].port, 21);
}

TEST(TransferModeWords, MapBothWaysWithExactLowerCaseWordsOnly)
{
    EXPECT_EQ(transferModeToString(TransferMode::Binary), "binary");
    EXPECT_EQ(transferModeToString(TransferMode::Ascii), "ascii");
    EXPECT_EQ(transferModeToString(TransferMode::Eager), "eager");
    EXPECT_EQ(transferModeToString(static_cast<TransferMode>(17)), "binary");

    using detail::SQLiteStore;
    EXPECT_EQ(SQLiteStore::transferModeFromString("ascii"), TransferMode::Ascii);
    EXPECT_EQ(SQLiteStore::transferModeFromString("eager"), TransferMode::Eager);
    for (auto const* word : {"binary", "Ascii", "EAGER", "", " ascii"}) {
        EXPECT_EQ(SQLiteStore::transferModeFromString(word), TransferMode::Binary) << word;
    }
    EXPECT_EQ(normalizeTransferModeInt(2), TransferMode::Eager);
    EXPECT_EQ(normalizeTransferModeInt(-1), TransferMode::Binary);
}

} // namespace
} // namespace perchftp::storage
