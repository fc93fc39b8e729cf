#pragma once

#include "storage/site_profile.hpp"

#include <memory>
#include <optional>
#include <string>

namespace perchftp::storage {

// Keeps one Snapshot in one file. No connection is held between calls: each load and each save
// opens the file, does its work and closes it. Failures carry no reason.
class IPersistentStore {
public:
    virtual ~IPersistentStore() = default;

    // Empty when there is no file, when it cannot be opened or read, or when it is neither a
    // database nor a readable file of the older text format.
    virtual std::optional<Snapshot> load() = 0;

    // Replaces the whole content at once; a failed save leaves an earlier database as it was.
    // Whatever at the path is not a database (a file of the older format, say) is deleted first.
    virtual bool save(Snapshot const& snapshot) = 0;

    virtual std::int32_t schemaVersion() const = 0;

protected:
    IPersistentStore() = default;
    IPersistentStore(IPersistentStore const&) = default;
    IPersistentStore& operator=(IPersistentStore const&) = default;
};

// A store for the SQLite database at path. Touches no file, so it cannot fail for a bad path.
std::unique_ptr<IPersistentStore> createFileStore(std::string const& path);

} // namespace perchftp::storage
