#pragma once

#include <sqlite3.h>

#include <stdexcept>
#include <string>

namespace perchftp::test {

// A second, independent connection to a database file, for preparing and inspecting what the
// store reads and writes.
class RawDatabase {
public:
    explicit RawDatabase(std::string const& path)
    {
        if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) {
            sqlite3_close(db_);
            throw std::runtime_error("cannot open " + path);
        }
    }
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

    int integer(std::string const& sql)
    {
        auto const value = text(sql);
        return value.empty() ? 0 : std::stoi(value);
    }

private:
    sqlite3* db_ = nullptr;
};

} // namespace perchftp::test
