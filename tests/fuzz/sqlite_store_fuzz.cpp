#include "fuzz_support.hpp"
#include "storage/legacy_snapshot.hpp"
#include "storage/persistent_store.hpp"

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

} // namespace

// The file is a database SQLite may or may not read; whatever load() gives must save and load
// back unchanged, and a refused save must leave the database as it was.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const path = perchftp::fuzz::scratchFile("perchftp-sites.db", data, size);
    bool const database = detail::fileLooksLikeSqliteDatabase(path);
    auto const store = createFileStore(path);
    auto const loaded = store->load();
    if (!loaded || !database) {
        return 0; // a file of the older format is the other target's ground
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
