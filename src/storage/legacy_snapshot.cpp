#include "storage/legacy_snapshot.hpp"

#include "storage/sqlite_store.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>

namespace perchftp::storage::detail {
namespace {

void discardRestOfLine(std::istream& in)
{
    in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
}

// An integer item followed by whatever else stands on its line.
bool readIntegerLine(std::istream& in, int& value)
{
    if (!readOrDefault(in, value, 0)) {
        return false;
    }
    discardRestOfLine(in);
    return true;
}

bool readLine(std::istream& in, std::string& value)
{
    return readOrDefault(in, value, std::string());
}

// A line item turned into a number; only a missing line fails.
bool readParsedLine(std::istream& in, int& value, int fallback)
{
    std::string line;
    if (!readLine(in, line)) {
        return false;
    }
    value = parseIntOrDefault(line, fallback);
    return true;
}

bool readParsedFlag(std::istream& in, bool& value, int fallback)
{
    int number = 0;
    if (!readParsedLine(in, number, fallback)) {
        return false;
    }
    value = number != 0;
    return true;
}

bool isAsciiSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

void readSettings(std::istream& in, AppSettings& settings)
{
    readOrDefault(in, settings.autoReconnect, true);
    readOrDefault(in, settings.concurrentTransfers, 2);
    readOrDefault(in, settings.retryLimit, 3);
    readOrDefault(in, settings.useDarkTheme, true);
    // The default protocol is the rest of the dark-theme line, read without skipping anything.
    readOrDefault(in, settings.defaultProtocol, std::string("sftp"));
    readOrDefault(in, settings.operationTimeoutMs, 30000);
    readOrDefault(in, settings.logLevel, 2);
    in >> std::ws;
    readOrDefault(in, settings.uiLayoutJson, std::string("{}"));
    in.clear();
}

} // namespace

bool fileLooksLikeSqliteDatabase(std::string const& path)
{
    static constexpr char kHeader[] = "SQLite format 3";
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    std::array<char, 16> buffer{};
    in.read(buffer.data(), buffer.size());
    return std::memcmp(buffer.data(), kHeader, sizeof kHeader - 1) == 0;
}

std::optional<Snapshot> loadLegacySnapshotFromPath(std::string const& path)
{
    std::ifstream in(path);
    if (!in) {
        return std::nullopt;
    }
    Snapshot snapshot;
    std::size_t profileCount = 0;
    if (!(in >> snapshot.version) || !(in >> profileCount)) {
        return std::nullopt;
    }
    readSettings(in, snapshot.settings);

    snapshot.profiles.clear();
    for (std::size_t index = 0; index < profileCount; ++index) {
        SiteProfile profile;
        if (!readSiteProfile(in, profile)) {
            break;
        }
        snapshot.profiles.push_back(std::move(profile));
    }
    return legacyToCurrent(snapshot);
}

bool readOrDefault(std::istream& in, int& value, int fallback)
{
    if (in >> value) {
        return true;
    }
    value = fallback;
    in.clear();
    return false;
}

bool readOrDefault(std::istream& in, bool& value, bool fallback)
{
    int number = 0;
    if (in >> number) {
        value = number != 0;
        return true;
    }
    value = fallback;
    in.clear();
    return false;
}

bool readOrDefault(std::istream& in, std::string& value, std::string const& fallback)
{
    if (std::getline(in, value)) {
        return true;
    }
    value = fallback;
    in.clear();
    return false;
}

bool readSiteProfile(std::istream& in, SiteProfile& profile)
{
    if (!readIntegerLine(in, profile.id) || !readLine(in, profile.name) || !readLine(in, profile.protocol)
        || !readLine(in, profile.host) || !readIntegerLine(in, profile.port) || !readLine(in, profile.user)
        || !readLine(in, profile.secretRef) || !readLine(in, profile.localRoot) || !readLine(in, profile.remoteRoot)
        || !readIntegerLine(in, profile.status)) {
        return false;
    }
    readOrDefault(in, profile.group, std::string("General"));

    std::string modeWord;
    if (!readParsedFlag(in, profile.favorite, 0) || !readParsedFlag(in, profile.quickConnect, 0)
        || !readParsedFlag(in, profile.autoConnect, 0) || !readLine(in, modeWord)
        || !readParsedLine(in, profile.connectTimeoutMs, 10000)
        || !readParsedLine(in, profile.transferTimeoutMs, 60000) || !readParsedFlag(in, profile.useEncryption, 1)) {
        return false;
    }
    profile.transferMode = SQLiteStore::transferModeFromString(modeWord);
    normalizeSiteProfile(profile);
    return true;
}

Snapshot legacyToCurrent(Snapshot const& snapshot)
{
    return normalizeSnapshot(snapshot);
}

int parseIntOrDefault(std::string const& text, int fallback)
{
    std::size_t position = 0;
    while (position < text.size() && isAsciiSpace(text[position])) {
        ++position;
    }
    bool negative = false;
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) {
        negative = text[position] == '-';
        ++position;
    }
    std::int64_t magnitude = 0;
    std::size_t digits = 0;
    for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position, ++digits) {
        magnitude = magnitude * 10 + (text[position] - '0');
        if (magnitude > std::int64_t{std::numeric_limits<int>::max()} + 1) {
            return fallback;
        }
    }
    if (digits == 0) {
        return fallback;
    }
    std::int64_t const number = negative ? -magnitude : magnitude;
    if (number > std::numeric_limits<int>::max()) {
        return fallback;
    }
    return static_cast<int>(number);
}

} // namespace perchftp::storage::detail
