#include "platform/install_tracker.hpp"

#include "logging/logger.hpp"
#include "support/fresh_process.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace perchftp::platform {
namespace {

// Environment changes stay inside the fresh process of each check.
TEST(InstallTrackerConfigFromEnvironment, AnUnsetOrEmptyUrlGivesTheDefaultEndpoint)
{
    EXPECT_IN_FRESH_PROCESS({
        ::unsetenv("PERCHFTP_INSTALL_TRACKING_URL");
        ::unsetenv("PERCHFTP_INSTALL_SOURCE");
        auto const unset = installTrackerConfigFromEnvironment("/state", "0.1.0");
        CHILD_CHECK(unset.endpoint == "https://telemetry.perchftp.invalid/api/install-events.php");
        CHILD_CHECK(unset.installSource.empty());
        ::setenv("PERCHFTP_INSTALL_TRACKING_URL", "", 1);
        CHILD_CHECK(installTrackerConfigFromEnvironment("/state", "0.1.0").endpoint == kDefaultInstallTrackingEndpoint);
    });
}

TEST(InstallTrackerConfigFromEnvironment, TakesTheUrlAndTheSourceFromTheEnvironment)
{
    EXPECT_IN_FRESH_PROCESS({
        ::setenv("PERCHFTP_INSTALL_TRACKING_URL", "http://127.0.0.1:9/api/install-events.php", 1);
        ::setenv("PERCHFTP_INSTALL_SOURCE", "debian package", 1);
        auto const config = installTrackerConfigFromEnvironment("/data/PerchFtp/install-tracker.state", "0.1.0");
        CHILD_CHECK(config.endpoint == "http://127.0.0.1:9/api/install-events.php");
        CHILD_CHECK(config.installSource == "debian package");
        CHILD_CHECK(config.statePath == "/data/PerchFtp/install-tracker.state");
        CHILD_CHECK(config.appVersion == "0.1.0");
        CHILD_CHECK(config.platform == "linux");
        CHILD_CHECK(config.heartbeatInterval == std::chrono::hours(72));
    });
}

} // namespace
} // namespace perchftp::platform
