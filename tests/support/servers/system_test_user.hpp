#pragma once

#include <filesystem>
#include <string>

namespace perchftp::test {

// A throwaway system user with a password and a fresh, empty home folder that it owns, for
// servers that log in real accounts. Created by this object and deleted with it. Needs root.
class SystemTestUser {
public:
    // Empty when this process can make one; otherwise why not.
    static std::string whyUnavailable();

    // `prefix` begins the user's name; `home` is created. Throws std::runtime_error on failure.
    SystemTestUser(std::string const& prefix, std::filesystem::path home);
    ~SystemTestUser();
    SystemTestUser(SystemTestUser const&) = delete;
    SystemTestUser& operator=(SystemTestUser const&) = delete;

    std::string const& name() const { return name_; }
    std::string const& password() const { return password_; }
    std::filesystem::path const& home() const { return home_; }

private:
    std::string name_;
    std::string password_ = "perch-Secret-42";
    std::filesystem::path home_;
};

// Runs a shell command line with its output dropped, retrying while it fails; the user database
// is locked while another test adds or deletes its own user.
bool runQuietly(std::string const& commandLine, int attempts = 1);
// The same, throwing std::runtime_error when it still fails.
void requireQuietly(std::string const& commandLine, int attempts = 1);

} // namespace perchftp::test
