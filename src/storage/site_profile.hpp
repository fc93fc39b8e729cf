#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The values that storage exchanges, and the functions that bring any of them, whatever its
// source, to a form that is safe to keep. A normalising function repairs a bad value silently
// with its field's default and never rejects anything.
namespace perchftp::storage {

// Stored as a lower-case word.
enum class TransferMode : std::uint32_t {
    Binary = 0,
    Ascii = 1,
    Eager = 2,
};

// One saved connection. The database column of each field is its name in snake case, except
// secretRef (secret_ref) and group (profile_group).
struct SiteProfile {
    std::int32_t id = 0; // assigned by the site manager; 0 means not yet assigned
    std::string name;
    std::string protocol; // "ftp", "ftps" or "sftp"
    std::string host;
    std::int32_t port = 21;
    std::string user;
    std::string secretRef; // the secret itself, kept in clear: there is no indirection behind it
    std::string localRoot;
    std::string remoteRoot;
    std::int32_t status = 1; // 1 active, 2 inactive
    std::string group; // empty is stored as "General"
    bool favorite = false;
    bool quickConnect = false; // marks the connection used last
    bool autoConnect = false;
    TransferMode transferMode = TransferMode::Binary;
    std::int32_t connectTimeoutMs = 10000;
    std::int32_t transferTimeoutMs = 60000;
    bool useEncryption = true;

    bool operator==(SiteProfile const&) const = default;
};

struct AppSettings {
    bool autoReconnect = true;
    std::int32_t concurrentTransfers = 2;
    std::int32_t retryLimit = 3;
    bool useDarkTheme = true;
    std::string defaultProtocol = "sftp";
    std::int32_t operationTimeoutMs = 30000;
    std::int32_t logLevel = 2;
    std::string uiLayoutJson = "{}";

    bool operator==(AppSettings const&) const = default;
};

inline constexpr std::int32_t kCurrentSchemaVersion = 3;

// All settings and all profiles, the unit of persistence.
struct Snapshot {
    std::int32_t version = kCurrentSchemaVersion;
    std::vector<SiteProfile> profiles;
    AppSettings settings;

    bool operator==(Snapshot const&) const = default;
};

// A snapshot of version 3 with no profiles and the repaired settings: an empty default protocol
// becomes "sftp", an operation timeout below 1 becomes 30000, a negative log level 0 and an empty
// layout "{}". Concurrent transfers and the retry limit pass as they are.
Snapshot applyDefaults(AppSettings settings);

// Repairs the port (outside 1..65535 becomes 21), the group, both timeouts (below 1 become their
// defaults) and the transfer mode. Trims nothing and rejects nothing.
void normalizeSiteProfile(SiteProfile& profile);

// Version 3, repaired settings and every profile repaired, in the same order and number.
Snapshot normalizeSnapshot(Snapshot snapshot);

// "General" for the empty string, the argument otherwise (blanks included).
std::string normalizeGroup(std::string const& group);

// 0, 1 and 2 name a mode; every other value is Binary.
TransferMode normalizeTransferModeInt(int value);

// "binary", "ascii" or "eager"; anything out of range is "binary".
std::string transferModeToString(TransferMode mode);

} // namespace perchftp::storage
