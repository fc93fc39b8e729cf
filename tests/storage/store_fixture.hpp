#pragma once

#include "storage/site_profile.hpp"

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace perchftp::test {

inline storage::SiteProfile makeProfile(int id, std::string const& host, std::string const& user = "ana",
    std::string const& protocol = "sftp")
{
    storage::SiteProfile profile;
    profile.id = id;
    profile.name = "Site " + std::to_string(id);
    profile.protocol = protocol;
    profile.host = host;
    profile.port = 22;
    profile.user = user;
    profile.secretRef = "pw-" + std::to_string(id);
    profile.localRoot = "/home/ana";
    profile.remoteRoot = "/srv/www";
    return profile;
}

// The permission bits of a file or folder, or -1 when it is missing.
inline int permissionBits(std::filesystem::path const& path)
{
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return -1;
    }
    return static_cast<int>(info.st_mode & 07777);
}

} // namespace perchftp::test
