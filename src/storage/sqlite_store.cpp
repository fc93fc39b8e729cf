#include "storage/sqlite_store.hpp"

#include "platform/private_files.hpp"
#include "storage/legacy_snapshot.hpp"

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace perchftp::storage {
namespace detail {
namespace {

constexpr char const* kCreateSettingsTable =
    "CREATE TABLE IF NOT EXISTS app_settings (id INTEGER PRIMARY KEY CHECK (id = 1),version INTEGER NOT NULL,"
    "auto_reconnect INTEGER NOT NULL,concurrent_transfers INTEGER NOT NULL,retry_limit INTEGER NOT NULL,"
    "use_dark_theme INTEGER NOT NULL,default_protocol TEXT NOT NULL,operation_timeout_ms INTEGER NOT NULL,"
    "log_level INTEGER NOT NULL,ui_layout_json TEXT NOT NULL)";

constexpr char const* kCreateProfilesTable =
    "CREATE TABLE IF NOT EXISTS site_profiles (id INTEGER PRIMARY KEY,name TEXT NOT NULL,protocol TEXT NOT NULL,"
    "host TEXT NOT NULL,port INTEGER NOT NULL,user TEXT NOT NULL,secret_ref TEXT NOT NULL,"
    "local_root TEXT NOT NULL,remote_root TEXT NOT NULL,status INTEGER NOT NULL,profile_group TEXT NOT NULL,"
    "favorite INTEGER NOT NULL,quick_connect INTEGER NOT NULL,auto_connect INTEGER NOT NULL,"
    "transfer_mode TEXT NOT NULL,connect_timeout_ms INTEGER NOT NULL,transfer_timeout_ms INTEGER NOT NULL,"
    "use_encryption INTEGER NOT NULL)";

constexpr char const* kSelectSettings =
    "SELECT version, auto_reconnect, concurrent_transfers, retry_limit, use_dark_theme, default_protocol, "
    "operation_timeout_ms, log_level, ui_layout_json FROM app_settings WHERE id = 1";

constexpr char const* kSelectProfiles =
    "SELECT id, name, protocol, host, port, user, secret_ref, local_root, remote_root, status, profile_group, "
    "favorite, quick_connect, auto_connect, transfer_mode, connect_timeout_ms, transfer_timeout_ms, "
    "use_encryption FROM site_profiles ORDER BY id ASC";

constexpr char const* kInsertSettings =
    "INSERT INTO app_settings (id, version, auto_reconnect, concurrent_transfers, retry_limit, use_dark_theme, "
    "default_protocol, operation_timeout_ms, log_level, ui_layout_json) VALUES (1, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

constexpr char const* kInsertProfile =
    "INSERT INTO site_profiles (id, name, protocol, host, port, user, secret_ref, local_root, remote_root, "
    "status, profile_group, favorite, quick_connect, auto_connect, transfer_mode, connect_timeout_ms, "
    "transfer_timeout_ms, use_encryption) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

struct DatabaseCloser {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
};
struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, DatabaseCloser>;
using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

Database openDatabase(std::string const& path)
{
    sqlite3* raw = nullptr;
    int const result = sqlite3_open(path.c_str(), &raw);
    Database db(raw);
    if (result != SQLITE_OK) {
        db.reset();
    }
    return db;
}

Statement prepare(sqlite3* db, char const* sql)
{
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &raw, nullptr) != SQLITE_OK) {
        sqlite3_finalize(raw);
        return nullptr;
    }
    return Statement(raw);
}

// Binds parameters in order, from 1.
class Binder {
public:
    explicit Binder(sqlite3_stmt* statement)
        : statement_(statement)
    {
    }
    Binder& integer(int value)
    {
        ok_ = sqlite3_bind_int(statement_, next_++, value) == SQLITE_OK && ok_;
        return *this;
    }
    Binder& flag(bool value) { return integer(value ? 1 : 0); }
    Binder& text(std::string const& value)
    {
        // With its length, so that a NUL byte inside the text is kept rather than ending it.
        ok_ = sqlite3_bind_text64(statement_, next_++, value.data(), value.size(), SQLITE_TRANSIENT, SQLITE_UTF8)
                == SQLITE_OK
            && ok_;
        return *this;
    }
    bool ok() const { return ok_; }

private:
    sqlite3_stmt* statement_;
    int next_ = 1;
    bool ok_ = true;
};

// The column's bytes, all of them, or nothing where the column is null.
std::optional<std::string> columnBytes(sqlite3_stmt* row, int column)
{
    auto const* text = reinterpret_cast<char const*>(sqlite3_column_text(row, column));
    if (!text) {
        return std::nullopt;
    }
    return std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
}

void readSettings(sqlite3* db, Snapshot& snapshot)
{
    auto const statement = prepare(db, kSelectSettings);
    if (!statement || sqlite3_step(statement.get()) != SQLITE_ROW) {
        return;
    }
    auto* const row = statement.get();
    auto& settings = snapshot.settings;
    snapshot.version = sqlite3_column_int(row, 0);
    settings.autoReconnect = sqlite3_column_int(row, 1) != 0;
    settings.concurrentTransfers = sqlite3_column_int(row, 2);
    settings.retryLimit = sqlite3_column_int(row, 3);
    settings.useDarkTheme = sqlite3_column_int(row, 4) != 0;
    if (auto text = columnBytes(row, 5)) {
        settings.defaultProtocol = std::move(*text);
    }
    settings.operationTimeoutMs = sqlite3_column_int(row, 6);
    settings.logLevel = sqlite3_column_int(row, 7);
    if (auto text = columnBytes(row, 8)) {
        settings.uiLayoutJson = std::move(*text);
    }
}

bool writeSettings(sqlite3* db, AppSettings const& settings, int version)
{
    auto const statement = prepare(db, kInsertSettings);
    if (!statement) {
        return false;
    }
    bool const bound = Binder(statement.get())
                           .integer(version)
                           .flag(settings.autoReconnect)
                           .integer(settings.concurrentTransfers)
                           .integer(settings.retryLimit)
                           .flag(settings.useDarkTheme)
                           .text(settings.defaultProtocol)
                           .integer(settings.operationTimeoutMs)
                           .integer(settings.logLevel)
                           .text(settings.uiLayoutJson)
                           .ok();
    return bound && sqlite3_step(statement.get()) == SQLITE_DONE;
}

bool bindProfile(sqlite3_stmt* statement, SiteProfile const& profile)
{
    return Binder(statement)
        .integer(profile.id)
        .text(profile.name)
        .text(profile.protocol)
        .text(profile.host)
        .integer(profile.port)
        .text(profile.user)
        .text(profile.secretRef)
        .text(profile.localRoot)
        .text(profile.remoteRoot)
        .integer(profile.status)
        .text(profile.group)
        .flag(profile.favorite)
        .flag(profile.quickConnect)
        .flag(profile.autoConnect)
        .text(transferModeToString(profile.transferMode))
        .integer(profile.connectTimeoutMs)
        .integer(profile.transferTimeoutMs)
        .flag(profile.useEncryption)
        .ok();
}

bool writeProfiles(sqlite3* db, std::vector<SiteProfile> const& profiles)
{
    auto const statement = prepare(db, kInsertProfile);
    if (!statement) {
        return false;
    }
    for (auto const& profile : profiles) {
        sqlite3_reset(statement.get());
        sqlite3_clear_bindings(statement.get());
        if (!bindProfile(statement.get(), profile) || sqlite3_step(statement.get()) != SQLITE_DONE) {
            return false;
        }
    }
    return true;
}

// The database and the companions SQLite keeps beside it hold secrets in clear. SQLite gives new
// companions the mode of the database, so narrowing the database first covers those too.
void keepDatabaseFilesPrivate(std::string const& path)
{
    platform::detail::createPrivateFile(path);
    platform::detail::restrictToOwner(path + "-wal");
    platform::detail::restrictToOwner(path + "-shm");
}

} // namespace

SQLiteStore::SQLiteStore(std::string path)
    : path_(std::move(path))
{
}

std::int32_t SQLiteStore::schemaVersion() const
{
    return kCurrentSchemaVersion;
}

std::optional<Snapshot> SQLiteStore::load()
{
    std::error_code error;
    if (path_.empty() || !std::filesystem::exists(path_, error)) {
        return std::nullopt;
    }
    if (!fileLooksLikeSqliteDatabase(path_)) {
        return loadLegacySnapshotFromPath(path_);
    }
    auto const db = openDatabase(path_);
    if (!db) {
        return std::nullopt;
    }
    Snapshot snapshot = applyDefaults(AppSettings{});
    if (!ensureSchema(db.get())) {
        return std::nullopt;
    }
    readSettings(db.get(), snapshot);

    if (auto const statement = prepare(db.get(), kSelectProfiles)) {
        auto* const row = statement.get();
        while (sqlite3_step(row) == SQLITE_ROW) {
            snapshot.profiles.push_back(readProfile(row));
        }
    }
    return normalizeSnapshot(std::move(snapshot));
}

bool SQLiteStore::save(Snapshot const& snapshot)
{
    if (path_.empty()) {
        return false;
    }
    std::filesystem::path const file(path_);
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) {
        return false;
    }
    // Whatever is not a database is taken for a file of the older format: the snapshot in hand
    // replaces it.
    if (std::filesystem::exists(file, error) && !fileLooksLikeSqliteDatabase(path_)) {
        if (!std::filesystem::remove(file, error)) {
            return false;
        }
    }
    if (file.has_parent_path() && !platform::detail::createPrivateDirectories(file.parent_path(), error)) {
        return false;
    }
    keepDatabaseFilesPrivate(path_);
    auto const db = openDatabase(path_);
    if (!db) {
        return false;
    }
    Snapshot const normalized = normalizeSnapshot(snapshot);
    if (!ensureSchema(db.get()) || !executeSql(db.get(), "BEGIN IMMEDIATE TRANSACTION")) {
        return false;
    }
    bool const written = executeSql(db.get(), "DELETE FROM app_settings")
        && executeSql(db.get(), "DELETE FROM site_profiles")
        && writeSettings(db.get(), normalized.settings, normalized.version)
        && writeProfiles(db.get(), normalized.profiles);
    if (written) {
        return executeSql(db.get(), "COMMIT");
    }
    executeSql(db.get(), "ROLLBACK");
    return false;
}

TransferMode SQLiteStore::transferModeFromString(std::string const& word)
{
    if (word == "ascii") {
        return TransferMode::Ascii;
    }
    if (word == "eager") {
        return TransferMode::Eager;
    }
    return TransferMode::Binary;
}

bool SQLiteStore::executeSql(sqlite3* db, char const* sql)
{
    return sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool SQLiteStore::ensureSchema(sqlite3* db)
{
    return executeSql(db, "PRAGMA journal_mode=WAL") && executeSql(db, "PRAGMA synchronous=NORMAL")
        && executeSql(db, kCreateSettingsTable) && executeSql(db, kCreateProfilesTable);
}

SiteProfile SQLiteStore::readProfile(sqlite3_stmt* row)
{
    SiteProfile profile;
    profile.id = sqlite3_column_int(row, 0);
    profile.name = textColumn(row, 1);
    profile.protocol = textColumn(row, 2);
    profile.host = textColumn(row, 3);
    profile.port = sqlite3_column_int(row, 4);
    profile.user = textColumn(row, 5);
    profile.secretRef = textColumn(row, 6);
    profile.localRoot = textColumn(row, 7);
    profile.remoteRoot = textColumn(row, 8);
    profile.status = sqlite3_column_int(row, 9);
    profile.group = textColumn(row, 10);
    profile.favorite = sqlite3_column_int(row, 11) != 0;
    profile.quickConnect = sqlite3_column_int(row, 12) != 0;
    profile.autoConnect = sqlite3_column_int(row, 13) != 0;
    profile.transferMode = transferModeFromString(textColumn(row, 14));
    profile.connectTimeoutMs = sqlite3_column_int(row, 15);
    profile.transferTimeoutMs = sqlite3_column_int(row, 16);
    profile.useEncryption = sqlite3_column_int(row, 17) != 0;
    normalizeSiteProfile(profile);
    return profile;
}

std::string SQLiteStore::textColumn(sqlite3_stmt* statement, int column)
{
    return columnBytes(statement, column).value_or(std::string());
}

} // namespace detail

std::unique_ptr<IPersistentStore> createFileStore(std::string const& path)
{
    return std::make_unique<detail::SQLiteStore>(path);
}

} // namespace perchftp::storage
