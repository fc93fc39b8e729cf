#pragma once

#include "support/servers/child_process.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace perchftp::test {

// A system daemon run for a test on 127.0.0.1: a scratch folder for its configuration and log,
// a throwaway system user with a password and a fresh home that it serves, a free port and the
// process, all gone with this object. Needs root for the user.
class DaemonTestServer {
public:
    // Empty when this process can run `binary`; otherwise why not.
    static std::string whyUnavailable(std::string const& binary, std::string const& purpose);

    virtual ~DaemonTestServer() { stop(); }
    DaemonTestServer(DaemonTestServer const&) = delete;
    DaemonTestServer& operator=(DaemonTestServer const&) = delete;

    int port() const { return port_; }
    std::string const& user() const { return user_; }
    std::string const& password() const { return password_; }
    // The user's home folder, empty at start.
    std::filesystem::path const& home() const { return home_; }

protected:
    // Makes the folder and the user, whose name begins with `userPrefix`; throws when it can't.
    DaemonTestServer(std::string const& name, std::string const& userPrefix);
    // Starts the daemon, its output going to the folder's log, and waits until the port answers.
    void start(std::vector<std::string> const& argv);

    std::string const name_;
    std::filesystem::path const folder_;
    int const port_;

private:
    void stop(); // ends the process, deletes the user and the folder

    std::string user_;
    std::string const password_ = "perch-Secret-42";
    std::filesystem::path const home_;
    std::unique_ptr<ChildProcess> process_;
};

// Runs a shell command line with its output dropped, retrying while it fails (the user database
// is locked while another test adds or deletes its own user); throws std::runtime_error when it
// still fails.
void requireQuietly(std::string const& commandLine, int attempts = 1);

} // namespace perchftp::test
