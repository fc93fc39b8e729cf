#include "platform/install_tracker.hpp"

#include "logging/logger.hpp"
#include "support/fresh_process.hpp"
#include "support/http_recorder.hpp"
#include "support/servers/child_process.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <regex>

namespace perchftp::platform {
namespace {

using test::readFile;
using test::writeFile;

constexpr char const* kEventPath = "/api/install-events.php";

// The value of the line "key=value" of a state file.
std::string stateValue(std::string const& path, std::string const& key)
{
    auto const text = "\n" + readFile(path);
    auto const start = text.find("\n" + key + "=") + key.size() + 2;
    return text.substr(start, text.find('\n', start) - start);
}

std::string lastLogMessage()
{
    auto const history = logging::Logger::global().history();
    return history.empty() ? std::string() : history.back().message;
}

long long secondsNow()
{
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

class InstallTrackerTest : public testing::Test {
protected:
    // Loopback requests go straight to the recorder, whatever proxy the environment names.
    InstallTrackerTest() { ::setenv("no_proxy", "*", 1); }
    InstallTrackerConfig config(std::string endpoint) const
    {
        return {statePath, std::move(endpoint), "1.0 \x01", "linux",
                "line one\nline two\t\"quoted\" back\\slash\r\f", std::chrono::hours(72)};
    }
    InstallTrackerConfig serverConfig() const { return config(server.url(kEventPath)); }

    test::TempDir dir;
    std::string statePath = dir.file("install-tracker.state");
    test::HttpRecorder server;
};

// One install over several starts: only an accepted event changes the state file.
TEST_F(InstallTrackerTest, AnIdIsRegisteredByOneJsonPostUntilAcceptedAndAHeartbeatFollowsWhenDue)
{
    server.setStatus(500);
    InstallTracker refused(serverConfig());
    auto const before = secondsNow();
    EXPECT_FALSE(refused.sync());
    EXPECT_EQ(refused.lastError(), "tracking endpoint returned HTTP 500");
    EXPECT_EQ(lastLogMessage(), "Install tracking register failed: tracking endpoint returned HTTP 500");
    EXPECT_EQ(stateValue(statePath, "registered") + stateValue(statePath, "last_heartbeat_at"), "00");

    server.setStatus(201);
    InstallTracker registered(serverConfig());
    ASSERT_TRUE(registered.sync()) << registered.lastError();
    EXPECT_EQ(lastLogMessage(), "Install tracking: install registered");
    auto const id = registered.installId();
    EXPECT_EQ(id, refused.installId());
    EXPECT_TRUE(std::regex_match(id, std::regex("[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}"))) << id;
    auto const firstSeen = std::stoll(stateValue(statePath, "first_seen_at"));
    auto const lastHeartbeat = std::stoll(stateValue(statePath, "last_heartbeat_at"));
    EXPECT_TRUE(firstSeen >= before && lastHeartbeat >= firstSeen);
    EXPECT_EQ(readFile(statePath), "install_id=" + id + "\nfirst_seen_at=" + std::to_string(firstSeen)
                                       + "\nlast_heartbeat_at=" + std::to_string(lastHeartbeat) + "\nregistered=1\n");
    auto const registration = server.requests().at(1);
    EXPECT_EQ(registration.method + " " + registration.path, std::string("POST ") + kEventPath);
    EXPECT_NE(registration.headers.find("Content-Type: application/json"), std::string::npos) << registration.headers;
    // Exactly five characters are escaped. The heartbeat clock starts at the registration's sent_at.
    EXPECT_EQ(registration.body, R"({"event_type":"install_registered","install_id":")" + id + R"(","app_version":"1.0 )"
                                     "\x01" R"(","platform":"linux","install_source":"line one\nline two\t\"quoted\" back\\slash\r)"
                                     "\f" R"(","first_seen_at":)" + std::to_string(firstSeen) + R"(,"sent_at":)"
                                     + std::to_string(lastHeartbeat) + "}");

    auto const state = readFile(statePath);
    EXPECT_TRUE(InstallTracker(serverConfig()).sync());
    EXPECT_EQ(lastLogMessage(), "Install tracking: install registered") << "nothing due, nothing said";
    EXPECT_EQ(readFile(statePath), state);

    auto const overdue = "install_id=abc\nfirst_seen_at=5\nlast_heartbeat_at=" + std::to_string(secondsNow() - 72 * 3600 - 10)
                         + "\nregistered=1\n";
    writeFile(statePath, overdue);
    server.setStatus(503);
    EXPECT_FALSE(InstallTracker(serverConfig()).sync());
    EXPECT_EQ(lastLogMessage(), "Install tracking heartbeat failed: tracking endpoint returned HTTP 503");
    EXPECT_EQ(readFile(statePath), overdue);

    server.setStatus(200);
    EXPECT_TRUE(InstallTracker(serverConfig()).sync());
    EXPECT_EQ(lastLogMessage(), "Install tracking: heartbeat sent");
    EXPECT_GT(std::stoll(stateValue(statePath, "last_heartbeat_at")), secondsNow() - 60);
    auto const requests = server.requests();
    ASSERT_EQ(requests.size(), 4U);
    EXPECT_EQ(requests[3].body.rfind(R"({"event_type":"install_heartbeat","install_id":"abc",)", 0), 0U);
    EXPECT_NE(requests[3].body.find(R"("first_seen_at":5,)"), std::string::npos);

    // Only 2xx is accepted, and a 3xx is not followed.
    InstallTracker tracker(serverConfig());
    for (int const status : {299, 301}) {
        server.setStatus(status);
        EXPECT_EQ(tracker.sendEvent("install_registered", 1), status < 300) << status;
        EXPECT_EQ(tracker.lastError(), status < 300 ? "" : "tracking endpoint returned HTTP " + std::to_string(status));
    }
    EXPECT_EQ(server.requests().size(), 6U) << "nothing went to the Location of a 3xx";
    auto unreachable = config("http://127.0.0.1:" + std::to_string(test::freeLoopbackPort()) + kEventPath);
    unreachable.statePath = dir.file("fresh.state");
    EXPECT_FALSE(InstallTracker(unreachable).sync());
    EXPECT_EQ(lastLogMessage(), "Install tracking register failed: Couldn't connect to server");
}

TEST_F(InstallTrackerTest, AnEmptyEndpointOrAnUnsaveableStateSendsNothingAndTheStateIsPrivateAndReadLeniently)
{
    auto nested = config("");
    nested.statePath = (dir.path() / "data" / "PerchFtp" / "install-tracker.state").string();
    InstallTracker tracker(nested);
    EXPECT_TRUE(tracker.sync());
    EXPECT_EQ(lastLogMessage(), "Install tracking: endpoint not configured, state prepared only");
    EXPECT_EQ(stateValue(nested.statePath, "registered"), "0");
    // A rewrite narrows a file that an older version left readable by others.
    std::filesystem::permissions(nested.statePath, std::filesystem::perms(0644));
    EXPECT_TRUE(tracker.saveState());
    EXPECT_EQ(std::filesystem::status(nested.statePath).permissions(), std::filesystem::perms(0600));

    writeFile(dir.path() / "blocker", "");
    auto blocked = serverConfig();
    blocked.statePath = (dir.path() / "blocker" / "install-tracker.state").string();
    InstallTracker unsaveable(std::move(blocked));
    EXPECT_FALSE(unsaveable.sync());
    EXPECT_EQ(unsaveable.lastError(), "unable to persist install tracker state");
    EXPECT_EQ(lastLogMessage(), "Install tracking: failed to save initial state");
    EXPECT_TRUE(server.requests().empty());

    // That any state file reads back as what it saves is the fuzz target's ground; these are the
    // readings themselves, and the heartbeat is due exactly when the interval has passed.
    auto const load = [&](std::string const& state) {
        writeFile(nested.statePath, state);
        ASSERT_TRUE(tracker.loadState());
    };
    load("garbage line\r\n  install_id  =  my-id \t\r\nfirst_seen_at=12abc\nlast_heartbeat_at=1000\n"
         "unknown=1\n=orphan value\nregistered=0\nregistered = true\n");
    ASSERT_TRUE(tracker.saveState());
    EXPECT_EQ(readFile(nested.statePath),
              "install_id=my-id\nfirst_seen_at=12\nlast_heartbeat_at=1000\nregistered=1\n");
    EXPECT_FALSE(tracker.shouldSendHeartbeat(1000 + 259200 - 1));
    EXPECT_TRUE(tracker.shouldSendHeartbeat(1000 + 259200));
    EXPECT_FALSE(tracker.shouldSendHeartbeat(500)); // a clock set back only delays it

    load("install_id=\nfirst_seen_at=77\n");
    ASSERT_TRUE(tracker.ensureInstallId());
    EXPECT_EQ(stateValue(nested.statePath, "first_seen_at"), "77"); // kept, not replaced by now
}

// Environment changes stay inside the fresh process.
TEST(InstallTrackerConfigFromEnvironment, TakesTheUrlAndTheSourceFromTheEnvironmentAndTheDefaultWhenUnsetOrEmpty)
{
    EXPECT_IN_FRESH_PROCESS({
        ::unsetenv("PERCHFTP_INSTALL_TRACKING_URL");
        ::unsetenv("PERCHFTP_INSTALL_SOURCE");
        auto const unset = installTrackerConfigFromEnvironment("/state", "0.1.0");
        CHILD_CHECK(unset.endpoint == "https://telemetry.perchftp.invalid/api/install-events.php" && unset.installSource.empty());
        ::setenv("PERCHFTP_INSTALL_TRACKING_URL", "", 1);
        CHILD_CHECK(installTrackerConfigFromEnvironment("/state", "0.1.0").endpoint == unset.endpoint);
        ::setenv("PERCHFTP_INSTALL_TRACKING_URL", "http://127.0.0.1:9/e", 1);
        ::setenv("PERCHFTP_INSTALL_SOURCE", "debian package", 1);
        auto const config = installTrackerConfigFromEnvironment("/state", "0.1.0");
        CHILD_CHECK(config.endpoint == "http://127.0.0.1:9/e" && config.installSource == "debian package");
        CHILD_CHECK(config.platform == "linux" && config.heartbeatInterval == std::chrono::hours(72));
    });
}

} // namespace
} // namespace perchftp::platform
