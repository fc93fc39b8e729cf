#include "platform/install_tracker.hpp"

#include "logging/logger.hpp"
#include "platform/private_files.hpp"

#include <curl/curl.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string_view>
#include <utility>

namespace perchftp::platform {
namespace {

struct EasyDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct SlistDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using EasyHandle = std::unique_ptr<CURL, EasyDeleter>;
using HeaderList = std::unique_ptr<curl_slist, SlistDeleter>;

std::string randomHex(std::size_t count)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::random_device device;
    std::uniform_int_distribution<int> digit(0, 15);
    std::string text;
    text.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        text.push_back(kDigits[digit(device)]);
    }
    return text;
}

// UUID-shaped, but with no version or variant digits.
std::string generateInstallId()
{
    return randomHex(8) + "-" + randomHex(4) + "-" + randomHex(4) + "-" + randomHex(4) + "-" + randomHex(12);
}

long long unixNow()
{
    auto const sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
}

std::string jsonEscape(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (char const c : text) {
        switch (c) {
        case '\\': escaped += "\\\\"; break;
        case '"': escaped += "\\\""; break;
        case '\n': escaped += "\\n"; break;
        case '\r': escaped += "\\r"; break;
        case '\t': escaped += "\\t"; break;
        default: escaped += c; break;
        }
    }
    return escaped;
}

std::string trim(std::string text)
{
    static constexpr char kBlanks[] = " \r\n\t";
    auto const first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) {
        return {};
    }
    auto const last = text.find_last_not_of(kBlanks);
    return text.substr(first, last - first + 1);
}

std::size_t discardResponse(char* /*data*/, std::size_t size, std::size_t count, void* /*context*/)
{
    return size * count;
}

// The interval in seconds, saturated instead of overflowing for absurd settings.
long long secondsIn(std::chrono::hours interval)
{
    long long seconds = 0;
    if (__builtin_mul_overflow(static_cast<long long>(interval.count()), 3600LL, &seconds)) {
        return interval.count() < 0 ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
    }
    return seconds;
}

} // namespace

InstallTracker::InstallTracker(InstallTrackerConfig config)
    : config_(std::move(config))
{
}

bool InstallTracker::sync()
{
    auto& logger = logging::Logger::global();
    loadState();
    if (!ensureInstallId()) {
        lastError_ = "unable to persist install tracker state";
        logger.warning("Install tracking: failed to save initial state");
        return false;
    }
    long long const now = unixNow();
    if (config_.endpoint.empty()) {
        logger.info("Install tracking: endpoint not configured, state prepared only");
        return true;
    }
    if (!state_.registered) {
        if (!sendEvent("install_registered", now)) {
            logger.warning("Install tracking register failed: " + lastError_);
            return false;
        }
        state_.registered = true;
        state_.lastHeartbeatAt = now;
        saveState();
        logger.info("Install tracking: install registered");
    } else if (shouldSendHeartbeat(now)) {
        if (!sendEvent("install_heartbeat", now)) {
            logger.warning("Install tracking heartbeat failed: " + lastError_);
            return false;
        }
        state_.lastHeartbeatAt = now;
        saveState();
        logger.info("Install tracking: heartbeat sent");
    }
    return true;
}

std::string InstallTracker::installId() const
{
    return state_.installId;
}

std::string InstallTracker::lastError() const
{
    return lastError_;
}

bool InstallTracker::loadState()
{
    state_ = State{};
    std::ifstream in(config_.statePath);
    if (!in) {
        return true;
    }
    std::string line;
    while (std::getline(in, line)) {
        auto const separator = line.find('=');
        if (separator == std::string::npos) {
            continue;
        }
        auto const key = trim(line.substr(0, separator));
        auto const value = trim(line.substr(separator + 1));
        if (key == "install_id") {
            state_.installId = value;
        } else if (key == "first_seen_at") {
            state_.firstSeenAt = std::atoll(value.c_str());
        } else if (key == "last_heartbeat_at") {
            state_.lastHeartbeatAt = std::atoll(value.c_str());
        } else if (key == "registered") {
            state_.registered = value == "1" || value == "true";
        }
    }
    return true;
}

bool InstallTracker::saveState() const
{
    std::filesystem::path const path(config_.statePath);
    if (path.has_parent_path()) {
        std::error_code ignored;
        detail::createPrivateDirectories(path.parent_path(), ignored);
    }
    std::ostringstream text;
    text << "install_id=" << state_.installId << '\n'
         << "first_seen_at=" << state_.firstSeenAt << '\n'
         << "last_heartbeat_at=" << state_.lastHeartbeatAt << '\n'
         << "registered=" << (state_.registered ? "1" : "0") << '\n';
    return detail::writePrivateFile(path, text.str());
}

bool InstallTracker::ensureInstallId()
{
    if (!state_.installId.empty()) {
        return true;
    }
    state_.installId = generateInstallId();
    if (state_.firstSeenAt == 0) {
        state_.firstSeenAt = unixNow();
    }
    return saveState();
}

bool InstallTracker::shouldSendHeartbeat(long long now) const
{
    if (!state_.registered || state_.lastHeartbeatAt == 0) {
        return true;
    }
    long long const interval = secondsIn(config_.heartbeatInterval);
    long long due = 0;
    if (__builtin_add_overflow(state_.lastHeartbeatAt, interval, &due)) {
        return interval < 0; // the due time lies below every clock reading, or above every one
    }
    return now >= due;
}

bool InstallTracker::sendEvent(char const* eventType, long long sentAt)
{
    if (config_.endpoint.empty()) {
        lastError_ = "tracking endpoint not configured";
        return false;
    }
    std::ostringstream body;
    body << "{\"event_type\":\"" << jsonEscape(eventType ? eventType : "") << "\","
         << "\"install_id\":\"" << jsonEscape(state_.installId) << "\","
         << "\"app_version\":\"" << jsonEscape(config_.appVersion) << "\","
         << "\"platform\":\"" << jsonEscape(config_.platform) << "\","
         << "\"install_source\":\"" << jsonEscape(config_.installSource) << "\","
         << "\"first_seen_at\":" << state_.firstSeenAt << ","
         << "\"sent_at\":" << sentAt << "}";
    std::string const payload = body.str();

    EasyHandle const handle(curl_easy_init());
    if (!handle) {
        lastError_ = "curl initialization failed";
        return false;
    }
    HeaderList const headers(curl_slist_append(nullptr, "Content-Type: application/json"));
    CURL* const curl = handle.get();
    curl_easy_setopt(curl, CURLOPT_URL, config_.endpoint.c_str());
    curl_easy_setopt(curl, CURLOPT_POST, 1L);
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, payload.c_str());
    curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(payload.size()));
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 15L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, 5L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, discardResponse);

    CURLcode const result = curl_easy_perform(curl);
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);

    if (result != CURLE_OK) {
        lastError_ = curl_easy_strerror(result);
        return false;
    }
    if (status < 200 || status >= 300) {
        lastError_ = "tracking endpoint returned HTTP " + std::to_string(status);
        return false;
    }
    lastError_.clear();
    return true;
}

InstallTrackerConfig installTrackerConfigFromEnvironment(std::string statePath, std::string appVersion)
{
    auto const environment = [](char const* name) {
        char const* value = std::getenv(name);
        return std::string(value ? value : "");
    };
    InstallTrackerConfig config;
    config.statePath = std::move(statePath);
    config.endpoint = environment("PERCHFTP_INSTALL_TRACKING_URL");
    if (config.endpoint.empty()) {
        config.endpoint = kDefaultInstallTrackingEndpoint;
    }
    config.appVersion = std::move(appVersion);
    config.platform = "linux";
    config.installSource = environment("PERCHFTP_INSTALL_SOURCE");
    config.heartbeatInterval = std::chrono::hours(72);
    return config;
}

} // namespace perchftp::platform
