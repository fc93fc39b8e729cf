#include "fuzz_support.hpp"
#include "storage/legacy_snapshot.hpp"
#include "storage/persistent_store.hpp"

#include <algorithm>

using namespace perchftp::storage;
using perchftp::fuzz::require;

namespace {

void requireRepaired(Snapshot const& snapshot)
{
    require(snapshot.version == kCurrentSchemaVersion);
    require(normalizeSnapshot(snapshot) == snapshot);
    for (auto const& profile : snapshot.profiles) {
        require(profile.port >= 1 && profile.port <= 65535);
        require(static_cast<int>(profile.transferMode) <= 2);
    }
}

// The first save migrates the file to a database that gives the same connections back, in the
// order of their ids.
void requireMigratesIntact(std::string const& path, Snapshot const& snapshot)
{
    auto const store = createFileStore(path);
    if (!store->save(snapshot)) {
        return; // two profiles share an id: the primary key refuses the save as a whole
    }
    require(detail::fileLooksLikeSqliteDatabase(path));
    Snapshot expected = snapshot;
    std::stable_sort(expected.profiles.begin(), expected.profiles.end(),
        [](SiteProfile const& left, SiteProfile const& right) { return left.id < right.id; });
    require(store->load() == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static std::string const path = perchftp::fuzz::scratch().file("perchftp-sites.db");
    for (char const* suffix : {"", "-wal", "-shm"}) {
        std::filesystem::remove(path + suffix);
    }
    perchftp::fuzz::writeBytes(path, data, size);
    if (detail::fileLooksLikeSqliteDatabase(path)) {
        return 0; // the store never hands such a file to this reader
    }
    auto const snapshot = detail::loadLegacySnapshotFromPath(path);
    if (snapshot) {
        requireRepaired(*snapshot);
        requireMigratesIntact(path, *snapshot);
    }
    return 0;
}
