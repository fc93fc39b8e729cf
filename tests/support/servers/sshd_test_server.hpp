#pragma once

#include "support/servers/child_process.hpp"
#include "support/servers/system_test_user.hpp"

#include <filesystem>
#include <memory>
#include <string>

namespace perchftp::test {

// OpenSSH's sshd on 127.0.0.1 with a free port and a configuration, host key and log of its own,
// serving SFTP to a throwaway system user with a password and a key. The user is created for this
// object and deleted with it; the machine's own sshd configuration is never read or touched.
class SshdTestServer {
public:
    // Empty when this process can run one; otherwise why not (it needs root to add a user).
    static std::string whyUnavailable();

    SshdTestServer(); // throws std::runtime_error when it can't start
    ~SshdTestServer();
    SshdTestServer(SshdTestServer const&) = delete;
    SshdTestServer& operator=(SshdTestServer const&) = delete;

    int port() const { return port_; }
    std::string const& user() const { return user_->name(); }
    std::string const& password() const { return user_->password(); }
    // The user's home folder, empty at start; SFTP paths are absolute, so tests use it as prefix.
    std::filesystem::path const& home() const { return user_->home(); }
    // The user's private key, for OpenSSH's own client.
    std::filesystem::path privateKey() const { return folder_ / "client_key"; }

private:
    void writeKeysAndConfiguration();
    void release();

    std::filesystem::path folder_;
    std::unique_ptr<SystemTestUser> user_;
    int port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace perchftp::test
