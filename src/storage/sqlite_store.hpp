#pragma once

#include "storage/persistent_store.hpp"

#include <string>

struct sqlite3;
struct sqlite3_stmt;

// The store behind createFileStore. Internal to storage.
namespace perchftp::storage::detail {

class SQLiteStore final : public IPersistentStore {
public:
    explicit SQLiteStore(std::string path);

    std::optional<Snapshot> load() override;
    bool save(Snapshot const& snapshot) override;
    std::int32_t schemaVersion() const override;

    // Exact words only: "ascii" and "eager"; everything else, other cases included, is Binary.
    static TransferMode transferModeFromString(std::string const& word);

private:
    static bool executeSql(sqlite3* db, char const* sql);
    static bool ensureSchema(sqlite3* db);
    static std::string textColumn(sqlite3_stmt* statement, int column);
    static SiteProfile readProfile(sqlite3_stmt* row); // one row of the profile query, normalised

    std::string path_;
};

} // namespace perchftp::storage::detail
