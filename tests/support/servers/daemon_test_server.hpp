#pragma once

#include "support/servers/child_process.hpp"
#include "support/servers/system_test_user.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace perchftp::test {

// A system daemon run for a test on 127.0.0.1: a scratch folder for its configuration and log,
// a throwaway user whose home it serves, a free port and the process, all gone with this object.
class DaemonTestServer {
public:
    // Empty when this process can run `binary`; otherwise why not.
    static std::string whyUnavailable(std::string const& binary, std::string const& purpose);

    virtual ~DaemonTestServer();
    DaemonTestServer(DaemonTestServer const&) = delete;
    DaemonTestServer& operator=(DaemonTestServer const&) = delete;

    int port() const { return port_; }
    std::string const& user() const { return user_->name(); }
    std::string const& password() const { return user_->password(); }
    // The user's home folder, empty at start.
    std::filesystem::path const& home() const { return user_->home(); }

protected:
    DaemonTestServer(std::string const& name, std::string const& userPrefix);
    // Starts the daemon, its output going to the folder's log, and waits until the port answers.
    void start(std::vector<std::string> const& argv);

    std::string const name_;
    std::filesystem::path const folder_;
    std::unique_ptr<SystemTestUser> user_;
    int const port_;

private:
    std::unique_ptr<ChildProcess> process_;
};

} // namespace perchftp::test
