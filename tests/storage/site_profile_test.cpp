#include "storage/site_profile.hpp"
#include "storage/sqlite_store.hpp"

#include "storage/store_fixture.hpp"

#include <gtest/gtest.h>

namespace perchftp::storage {
namespace {

using test::describe;

TEST(SiteProfileDefaults, ApplyDefaultsRepairsOnlyProtocolTimeoutLogLevelAndLayout)
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
    EXPECT_EQ(describe(snapshot.settings), "1|-7|0|1|sftp|30000|0|{}"); // log level 0, not the default 2

    settings.defaultProtocol = "gopher";
    settings.operationTimeoutMs = 1;
    EXPECT_EQ(describe(applyDefaults(settings).settings), "1|-7|0|1|gopher|1|0|{}");
}

TEST(SiteProfileDefaults, NormalizingRepairsPortTimeoutsGroupAndModeButTrimsAndRejectsNothing)
{
    SiteProfile profile;
    profile.name = "  padded  ";
    profile.protocol = " SFTP ";
    profile.port = 65535;
    profile.status = 9;
    profile.connectTimeoutMs = 0;
    profile.transferTimeoutMs = -3;
    profile.transferMode = static_cast<TransferMode>(3);
    normalizeSiteProfile(profile);
    EXPECT_EQ(describe(profile), "0|  padded  | SFTP ||65535|||||9|General|000|0|10000|60000|1");
    profile.port = 1;
    profile.connectTimeoutMs = 1;
    profile.group = "   ";
    normalizeSiteProfile(profile);
    EXPECT_EQ(describe(profile), "0|  padded  | SFTP ||1|||||9|   |000|0|1|60000|1");

    Snapshot snapshot;
    snapshot.version = 1;
    snapshot.settings.logLevel = -4;
    for (int port : {0, -1, 990, 65536, 70000}) {
        snapshot.profiles.push_back(SiteProfile{});
        snapshot.profiles.back().port = port;
    }
    auto const normalized = normalizeSnapshot(snapshot);
    EXPECT_EQ(normalized.version, 3);
    EXPECT_EQ(normalized.settings.logLevel, 0);
    ASSERT_EQ(normalized.profiles.size(), 5U);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(normalized.profiles[i].port, i == 2 ? 990 : 21) << i;
    }
}

TEST(SiteProfileDefaults, TransferModeWordsMapBothWaysWithExactLowerCaseWordsOnly)
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
