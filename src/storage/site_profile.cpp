#include "storage/site_profile.hpp"

#include <utility>

namespace perchftp::storage {

Snapshot applyDefaults(AppSettings settings)
{
    if (settings.defaultProtocol.empty()) {
        settings.defaultProtocol = "sftp";
    }
    if (settings.operationTimeoutMs < 1) {
        settings.operationTimeoutMs = 30000;
    }
    if (settings.logLevel < 0) {
        settings.logLevel = 0;
    }
    if (settings.uiLayoutJson.empty()) {
        settings.uiLayoutJson = "{}";
    }
    Snapshot snapshot;
    snapshot.version = kCurrentSchemaVersion;
    snapshot.settings = std::move(settings);
    return snapshot;
}

void normalizeSiteProfile(SiteProfile& profile)
{
    if (profile.port < 1 || profile.port >= 65536) {
        profile.port = 21;
    }
    profile.group = normalizeGroup(profile.group);
    if (profile.connectTimeoutMs < 1) {
        profile.connectTimeoutMs = 10000;
    }
    if (profile.transferTimeoutMs < 1) {
        profile.transferTimeoutMs = 60000;
    }
    profile.transferMode = normalizeTransferModeInt(static_cast<int>(profile.transferMode));
}

Snapshot normalizeSnapshot(Snapshot snapshot)
{
    snapshot.version = kCurrentSchemaVersion;
    snapshot.settings = std::move(applyDefaults(std::move(snapshot.settings)).settings);
    for (auto& profile : snapshot.profiles) {
        normalizeSiteProfile(profile);
    }
    return snapshot;
}

std::string normalizeGroup(std::string const& group)
{
    return group.empty() ? std::string("General") : group;
}

TransferMode normalizeTransferModeInt(int value)
{
    switch (value) {
    case static_cast<int>(TransferMode::Ascii):
        return TransferMode::Ascii;
    case static_cast<int>(TransferMode::Eager):
        return TransferMode::Eager;
    default:
        return TransferMode::Binary;
    }
}

std::string transferModeToString(TransferMode mode)
{
    switch (mode) {
    case TransferMode::Ascii:
        return "ascii";
    case TransferMode::Eager:
        return "eager";
    case TransferMode::Binary:
        break;
    }
    return "binary";
}

} // namespace perchftp::storage
