#include "storage/site_profile.hpp"
#include "storage/sqlite_store.hpp"

#include <gtest/gtest.h>

namespace perchftp::storage {
namespace {

TEST(SiteProfileDefaults, ADefaultProfileHoldsTheDocumentedValues)
{
    SiteProfile const profile;
    EXPECT_EQ(profile.id, 0);
    EXPECT_EQ(profile.port, 21);
    EXPECT_EQ(profile.status, 1);
    EXPECT_EQ(profile.connectTimeoutMs, 10000);
    EXPECT_EQ(profile.transferTimeoutMs, 60000);
    EXPECT_TRUE(profile.useEncryption);
    EXPECT_EQ(profile.transferMode, TransferMode::Binary);
    EXPECT_FALSE(profile.favorite || profile.quickConnect || profile.autoConnect);
    for (auto const* text : {&profile.name, &profile.protocol, &profile.host, &profile.user, &profile.secretRef,
             &profile.localRoot, &profile.remoteRoot, &profile.group}) {
        EXPECT_TRUE(text->empty());
    }
}

TEST(SiteProfileDefaults, DefaultSettingsAndSnapshotCarryTheCurrentVersion)
{
    Snapshot const snapshot;
    EXPECT_EQ(snapshot.version, 3);
    EXPECT_TRUE(snapshot.profiles.empty());
    EXPECT_TRUE(snapshot.settings.autoReconnect);
    EXPECT_EQ(snapshot.settings.concurrentTransfers, 2);
    EXPECT_EQ(snapshot.settings.retryLimit, 3);
    EXPECT_TRUE(snapshot.settings.useDarkTheme);
    EXPECT_EQ(snapshot.settings.defaultProtocol, "sftp");
    EXPECT_EQ(snapshot.settings.operationTimeoutMs, 30000);
    EXPECT_EQ(snapshot.settings.logLevel, 2);
    EXPECT_EQ(snapshot.settings.uiLayoutJson, "{}");
}

TEST(ApplyDefaults, RepairsOnlyProtocolTimeoutLogLevelAndLayout)
{
    AppSettings settings;
    settings.defaultProtocol = "";
    settings.operationTimeoutMs = 0;
    settings.logLevel = -1;
    settings.uiLayoutJson = "";
    settings.concurrentTransfers = -7;
    settings.retryLimit = 0;
    settings.autoReconnect = false;
    auto const snapshot = applyDefaults(settings);
    EXPECT_EQ(snapshot.version, 3);
    EXPECT_TRUE(snapshot.profiles.empty());
    EXPECT_EQ(snapshot.settings.defaultProtocol, "sftp");
    EXPECT_EQ(snapshot.settings.operationTimeoutMs, 30000);
    EXPECT_EQ(snapshot.settings.logLevel, 0); // not the default of 2
    EXPECT_EQ(snapshot.settings.uiLayoutJson, "{}");
    EXPECT_EQ(snapshot.settings.concurrentTransfers, -7);
    EXPECT_EQ(snapshot.settings.retryLimit, 0);
    EXPECT_FALSE(snapshot.settings.autoReconnect);
}

TEST(ApplyDefaults, KeepsAnUnsupportedProtocolAndAnOperationTimeoutOfOne)
{
    AppSettings settings;
    settings.defaultProtocol = "gopher";
    settings.operationTimeoutMs = 1;
    auto const repaired = applyDefaults(settings).settings;
    EXPECT_EQ(repaired.defaultProtocol, "gopher");
    EXPECT_EQ(repaired.operationTimeoutMs, 1);
}

TEST(NormalizeSiteProfile, ReplacesPortsOutsideTheValidRangeWith21ForEveryProtocol)
{
    for (int const bad : {0, -1, 65536, 100000}) {
        SiteProfile profile;
        profile.protocol = "sftp";
        profile.port = bad;
        normalizeSiteProfile(profile);
        EXPECT_EQ(profile.port, 21) << bad;
    }
    for (int const good : {1, 22, 65535}) {
        SiteProfile profile;
        profile.port = good;
        normalizeSiteProfile(profile);
        EXPECT_EQ(profile.port, good);
    }
}

TEST(NormalizeSiteProfile, RepairsTimeoutsGroupAndModeButTrimsNothing)
{
    SiteProfile profile;
    profile.name = "  padded  ";
    profile.protocol = " SFTP ";
    profile.status = 9;
    profile.connectTimeoutMs = 0;
    profile.transferTimeoutMs = -3;
    profile.transferMode = static_cast<TransferMode>(3);
    normalizeSiteProfile(profile);
    EXPECT_EQ(profile.connectTimeoutMs, 10000);
    EXPECT_EQ(profile.transferTimeoutMs, 60000);
    EXPECT_EQ(profile.group, "General");
    EXPECT_EQ(profile.transferMode, TransferMode::Binary);
    EXPECT_EQ(profile.name, "  padded  ");
    EXPECT_EQ(profile.protocol, " SFTP ");
    EXPECT_EQ(profile.status, 9);

    profile.connectTimeoutMs = 1;
    profile.transferTimeoutMs = 1;
    profile.group = "   ";
    normalizeSiteProfile(profile);
    EXPECT_EQ(profile.connectTimeoutMs, 1);
    EXPECT_EQ(profile.transferTimeoutMs, 1);
    EXPECT_EQ(profile.group, "   ");
}

TEST(NormalizeSnapshot, SetsVersionThreeAndRepairsEverythingInPlaceAndOrder)
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

    EXPECT_EQ(normalizeTransferModeInt(0), TransferMode::Binary);
    EXPECT_EQ(normalizeTransferModeInt(1), TransferMode::Ascii);
    EXPECT_EQ(normalizeTransferModeInt(2), TransferMode::Eager);
    EXPECT_EQ(normalizeTransferModeInt(3), TransferMode::Binary);
    EXPECT_EQ(normalizeTransferModeInt(-1), TransferMode::Binary);
    EXPECT_EQ(normalizeGroup(""), "General");
    EXPECT_EQ(normalizeGroup("Clients"), "Clients");
}

} // namespace
} // namespace perchftp::storage
