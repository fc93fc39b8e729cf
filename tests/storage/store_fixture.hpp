#pragma once

#include "storage/site_profile.hpp"

#include <sqlite3.h>

#include <filesystem>
#include <sstream>
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

// Every field of a record on one line, in declaration order, for whole-record comparisons.
inline std::string describe(storage::SiteProfile const& p)
{
    std::ostringstream out;
    out << p.id << '|' << p.name << '|' << p.protocol << '|' << p.host << '|' << p.port << '|' << p.user << '|'
        << p.secretRef << '|' << p.localRoot << '|' << p.remoteRoot << '|' << p.status << '|' << p.group << '|'
        << p.favorite << p.quickConnect << p.autoConnect << '|' << static_cast<int>(p.transferMode) << '|'
        << p.connectTimeoutMs << '|' << p.transferTimeoutMs << '|' << p.useEncryption;
    return out.str();
}

inline std::string describe(storage::AppSettings const& s)
{
    std::ostringstream out;
    out << s.autoReconnect << '|' << s.concurrentTransfers << '|' << s.retryLimit << '|' << s.useDarkTheme << '|'
        << s.defaultProtocol << '|' << s.operationTimeoutMs << '|' << s.logLevel << '|' << s.uiLayoutJson;
    return out.str();
}

// The permission bits of a file or folder; all of them when it is missing.
inline int permissionBits(std::filesystem::path const& path)
{
    return static_cast<int>(std::filesystem::status(path).permissions() & std::filesystem::perms::mask);
}

// A second, independent connection to a database file, for preparing and inspecting what the
// store reads and writes.
class RawDatabase {
public:
    // A file that cannot be opened makes every statement fail.
    explicit RawDatabase(std::string const& path) { sqlite3_open(path.c_str(), &db_); }
    ~RawDatabase() { sqlite3_close(db_); }
    RawDatabase(RawDatabase const&) = delete;
    RawDatabase& operator=(RawDatabase const&) = delete;

    bool exec(std::string const& sql) { return sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK; }

    // The first column of the first row as text; empty when there is no row or it is null.
    std::string text(std::string const& sql)
    {
        sqlite3_stmt* statement = nullptr;
        std::string value;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK
            && sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_text(statement, 0)) {
            value = reinterpret_cast<char const*>(sqlite3_column_text(statement, 0));
        }
        sqlite3_finalize(statement);
        return value;
    }

private:
    sqlite3* db_ = nullptr;
};

} // namespace perchftp::test
