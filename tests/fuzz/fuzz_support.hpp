#pragma once

#include "storage/site_profile.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

// What the fuzz targets share: a property check that stops the run, a scratch file of this
// process under $TMPDIR, and the order in which the store gives profiles back.
namespace perchftp::fuzz {

// A broken property aborts, so libFuzzer keeps the input that broke it.
inline void require(bool property)
{
    if (!property) {
        __builtin_trap();
    }
}

// The file holds exactly the input; a database's companion files of the last run are gone. The
// folder is removed when the run ends.
inline std::string scratchFile(std::string const& name, std::uint8_t const* data, std::size_t size)
{
    static struct Folder {
        std::string path = (std::filesystem::temp_directory_path() / "perchftp-fuzz-XXXXXX").string();
        Folder() { require(mkdtemp(path.data()) != nullptr); }
        ~Folder()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    } const folder;
    std::string const path = folder.path + "/" + name;
    std::filesystem::remove(path + "-wal");
    std::filesystem::remove(path + "-shm");
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
    return path;
}

inline storage::Snapshot orderedById(storage::Snapshot snapshot)
{
    std::stable_sort(snapshot.profiles.begin(), snapshot.profiles.end(),
        [](storage::SiteProfile const& left, storage::SiteProfile const& right) { return left.id < right.id; });
    return snapshot;
}

} // namespace perchftp::fuzz
