#pragma once

#include <chrono>
#include <string>

// Install telemetry: once per start, make sure this installation has a random id kept in a small
// state file, and post one JSON event, "install_registered" until one is accepted and then
// "install_heartbeat" at most once per interval. Nothing depends on the outcome.
namespace perchftp::platform {

// Reserved under .invalid, so it never resolves: no install data leaves the machine unless the
// user names an endpoint in PERCHFTP_INSTALL_TRACKING_URL.
inline constexpr char const* kDefaultInstallTrackingEndpoint = "https://telemetry.perchftp.invalid/api/install-events.php";

struct InstallTrackerConfig {
    std::string statePath;
    std::string endpoint; // empty: prepare the state and send nothing
    std::string appVersion;
    std::string platform;
    std::string installSource;
    std::chrono::hours heartbeatInterval{72};
};

// What the program gives the tracker at start-up: the endpoint from PERCHFTP_INSTALL_TRACKING_URL
// (the default endpoint when that is unset or empty), the source from PERCHFTP_INSTALL_SOURCE,
// platform "linux" and a heartbeat every 72 hours.
InstallTrackerConfig installTrackerConfigFromEnvironment(std::string statePath, std::string appVersion);

class InstallTracker {
public:
    struct State {
        std::string installId;
        long long firstSeenAt = 0; // Unix seconds
        long long lastHeartbeatAt = 0; // Unix seconds of the last event that was accepted
        bool registered = false;
    };

    explicit InstallTracker(InstallTrackerConfig config);

    // Loads the state, makes and saves an id if there is none, and sends the event that is due.
    // False when the state cannot be saved or the event fails; lastError() then says why, and
    // the state file is left as it was before the event. Logs one line through the global logger.
    bool sync();

    std::string installId() const;
    std::string lastError() const;

    // Reads the state file; a missing or unreadable one is a first start. Always true.
    bool loadState();
    // Rewrites the four lines of the state file, making its folders first. False if it cannot be opened.
    bool saveState() const;
    // Makes and saves an id when there is none; true when there already was one.
    bool ensureInstallId();
    // True when not yet registered, when no heartbeat was ever sent, or when the interval has passed.
    bool shouldSendHeartbeat(long long now) const;
    // Posts one event; only a 2xx answer is success. Redirects are not followed.
    bool sendEvent(char const* eventType, long long sentAt);

private:
    InstallTrackerConfig config_;
    State state_;
    std::string lastError_;
};

} // namespace perchftp::platform
