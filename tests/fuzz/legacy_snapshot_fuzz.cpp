#include "fuzz_support.hpp"
#include "storage/legacy_snapshot.hpp"
#include "storage/persistent_store.hpp"

using namespace perchftp::storage;
using perchftp::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const path = perchftp::fuzz::scratchFile("perchftp-sites.db", data, size);
    if (detail::fileLooksLikeSqliteDatabase(path)) {
        return 0; // the store never hands such a file to this reader
    }
    auto const snapshot = detail::loadLegacySnapshotFromPath(path);
    if (!snapshot) {
        return 0;
    }
    // Every value read is repaired: ports in range, known transfer modes, version 3.
    require(snapshot->version == kCurrentSchemaVersion && normalizeSnapshot(*snapshot) == *snapshot);

    // The first save migrates the file to a database that gives the same connections back, in
    // the order of their ids. Two profiles that share an id make the save fail as a whole.
    auto const store = createFileStore(path);
    if (store->save(*snapshot)) {
        require(detail::fileLooksLikeSqliteDatabase(path));
        require(store->load() == perchftp::fuzz::orderedById(*snapshot));
    }
    return 0;
}
