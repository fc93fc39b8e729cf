#include "platform/install_tracker.hpp"

#include "support/http_recorder.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

namespace perchftp::platform {
namespace {

// The default endpoint is under .invalid, which never resolves: every start records a failed
// registration and keeps its id for the next try. Depending on the resolver this takes up to the
// five-second connect limit, hence the label "slow".
TEST(InstallTrackerDefaultEndpoint, NeverReachesAnyoneAndLeavesTheInstallUnregistered)
{
    test::NoProxyEnvironment const noProxy;
    test::TempDir const dir;
    InstallTracker tracker({dir.file("install-tracker.state"), kDefaultInstallTrackingEndpoint, "0.1.0", "linux", ""});
    EXPECT_FALSE(tracker.sync());
    EXPECT_FALSE(tracker.lastError().empty());
    EXPECT_EQ(tracker.installId().size(), 36U);
    EXPECT_NE(test::readFile(dir.file("install-tracker.state")).find("registered=0\n"), std::string::npos);
}

} // namespace
} // namespace perchftp::platform
