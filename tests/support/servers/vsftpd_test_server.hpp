#pragma once

#include "support/servers/child_process.hpp"
#include "support/servers/system_test_user.hpp"

#include <filesystem>
#include <memory>
#include <string>

namespace perchftp::test {

// Debian's vsftpd on 127.0.0.1 with a free port and a throwaway configuration and user, whose
// home is the server's "/" (chrooted). With certificate files it speaks implicit TLS on control
// and data and insists that data connections reuse the control connection's TLS session.
class VsftpdTestServer {
public:
    struct Tls {
        std::filesystem::path certificateFile;
        std::filesystem::path keyFile;
    };

    // Empty when this process can run one; otherwise why not.
    static std::string whyUnavailable();

    explicit VsftpdTestServer(Tls const* tls = nullptr); // throws std::runtime_error when it can't start
    ~VsftpdTestServer();
    VsftpdTestServer(VsftpdTestServer const&) = delete;
    VsftpdTestServer& operator=(VsftpdTestServer const&) = delete;

    int port() const { return port_; }
    std::string const& user() const { return user_->name(); }
    std::string const& password() const { return user_->password(); }
    std::filesystem::path const& home() const { return user_->home(); }

private:
    void writeConfiguration(Tls const* tls);
    void release();

    std::filesystem::path folder_;
    std::unique_ptr<SystemTestUser> user_;
    int port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace perchftp::test
