#pragma once

#include "storage/site_profile.hpp"

#include <sys/stat.h>

#include <filesystem>
#include <ostream>
#include <string>

namespace perchftp::storage {

// Readable failure messages for the records.
inline void PrintTo(SiteProfile const& p, std::ostream* out)
{
    *out << "{id " << p.id << ", name '" << p.name << "', " << p.protocol << "://" << p.user << "@" << p.host << ":"
         << p.port << ", secret '" << p.secretRef << "', roots '" << p.localRoot << "' '" << p.remoteRoot
         << "', status " << p.status << ", group '" << p.group << "', flags " << p.favorite << p.quickConnect
         << p.autoConnect << p.useEncryption << ", mode " << static_cast<int>(p.transferMode) << ", timeouts "
         << p.connectTimeoutMs << "/" << p.transferTimeoutMs << "}";
}

inline void PrintTo(Snapshot const& s, std::ostream* out)
{
    auto const& settings = s.settings;
    *out << "{version " << s.version << ", settings {" << settings.autoReconnect << " "
         << settings.concurrentTransfers << " " << settings.retryLimit << " " << settings.useDarkTheme << " '"
         << settings.defaultProtocol << "' " << settings.operationTimeoutMs << " " << settings.logLevel << " '"
         << settings.uiLayoutJson << "'}, " << s.profiles.size() << " profiles";
    for (auto const& profile : s.profiles) {
        *out << " ";
        PrintTo(profile, out);
    }
    *out << "}";
}

} // namespace perchftp::storage

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
