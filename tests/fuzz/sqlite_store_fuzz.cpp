#include "fuzz_support.hpp"
#include "storage/legacy_snapshot.hpp"
#include "storage/persistent_store.hpp"

#include <cstring>
#include <memory>
#include <sqlite3.h>

using namespace perchftp::storage;
using perchftp::fuzz::require;

namespace {

// A profile whose fields do not survive the trip: the save must either refuse it or keep it.
Snapshot withHostileProfile(Snapshot snapshot, std::uint8_t const* data, std::size_t size)
{
    SiteProfile profile;
    profile.id = snapshot.profiles.empty() ? 1 : snapshot.profiles.front().id;
    profile.name.assign(reinterpret_cast<char const*>(data), std::min<std::size_t>(size, 64));
    profile.port = static_cast<int>(size) - 1;
    snapshot.profiles.push_back(profile);
    return snapshot;
}

// Whether SQLite finds the file's structure sound. From a damaged file two loads in a row may read
// different rows (they changed with the memory allocator), so no property can hold there.
bool soundDatabase(std::string const& path)
{
    sqlite3* rawDb = nullptr;
    sqlite3_open_v2(path.c_str(), &rawDb, SQLITE_OPEN_READONLY, nullptr);
    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> const db(rawDb, &sqlite3_close);
    sqlite3_stmt* rawCheck = nullptr;
    sqlite3_prepare_v2(db.get(), "PRAGMA quick_check", -1, &rawCheck, nullptr);
    std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> const check(rawCheck, &sqlite3_finalize);
    if (!check || sqlite3_step(check.get()) != SQLITE_ROW) {
        return false;
    }
    auto const* verdict = reinterpret_cast<char const*>(sqlite3_column_text(check.get(), 0));
    return verdict && std::strcmp(verdict, "ok") == 0;
}

} // namespace

// The file is a database SQLite may or may not read; whatever load() gives must save and load
// back unchanged, and a refused save must leave the database as it was.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const path = perchftp::fuzz::scratchFile("perchftp-sites.db", data, size);
    bool const database = detail::fileLooksLikeSqliteDatabase(path) && soundDatabase(path);
    auto const store = createFileStore(path);
    auto const loaded = store->load();
    if (!loaded || !database) {
        return 0; // a file of the older format is the other target's ground; a damaged one has no rules
    }
    require(loaded->version == kCurrentSchemaVersion && normalizeSnapshot(*loaded) == *loaded);

    for (Snapshot const& attempt : {*loaded, withHostileProfile(*loaded, data, size)}) {
        auto const before = store->load();
        if (store->save(attempt)) {
            require(store->load() == perchftp::fuzz::orderedById(normalizeSnapshot(attempt)));
        } else {
            require(store->load() == before);
        }
    }
    return 0;
}
