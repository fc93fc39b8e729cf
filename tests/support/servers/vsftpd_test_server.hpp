#pragma once

#include "support/servers/daemon_test_server.hpp"

namespace perchftp::test {

// Debian's vsftpd with a throwaway configuration, whose user's home is the server's "/"
// (chrooted). With certificate files it speaks implicit TLS on control and data and insists that
// data connections reuse the control connection's TLS session.
class VsftpdTestServer : public DaemonTestServer {
public:
    struct Tls {
        std::filesystem::path certificateFile;
        std::filesystem::path keyFile;
    };

    static std::string whyUnavailable();

    explicit VsftpdTestServer(Tls const* tls = nullptr); // throws std::runtime_error when it can't start
};

} // namespace perchftp::test
