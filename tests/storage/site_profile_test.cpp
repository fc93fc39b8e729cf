#include "storage/site_profile.hpp"

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
}

TEST(SiteProfileDefaults, NormalizingRepairsPortTimeoutsGroupAndModeButTrimsAndRejectsNothing)
{
    SiteProfile profile;
    profile.name = "  padded  ";
    profile.protocol = " SFTP ";
    profile.status = 9;
    profile.connectTimeoutMs = 0;
    profile.transferTimeoutMs = -3;
    profile.transferMode = static_cast<TransferMode>(3);
    normalizeSiteProfile(profile);
    EXPECT_EQ(describe(profile), "0|  padded  | SFTP ||21|||||9|General|000|0|10000|60000|1");
    profile.connectTimeoutMs = 1;
    profile.group = "   ";
    normalizeSiteProfile(profile);
    EXPECT_EQ(describe(profile), "0|  padded  | SFTP ||21|||||9|   |000|0|1|60000|1");

    for (auto const& [port, kept] : std::vector<std::pair<int, int>>{{0, 21}, {-1, 21}, {1, 1}, {65535, 65535}, {65536, 21}}) {
        profile.port = port;
        normalizeSiteProfile(profile);
        EXPECT_EQ(profile.port, kept) << port;
    }
}

} // namespace
} // namespace perchftp::storage
