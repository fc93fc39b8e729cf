#pragma once

#include "support/servers/daemon_test_server.hpp"

namespace perchftp::test {

// OpenSSH's sshd serving SFTP to a throwaway user with a password and a key, with a host key and
// configuration of its own; the machine's own sshd configuration is never read or touched. SFTP
// paths are absolute, so tests use home() as their prefix.
class SshdTestServer : public DaemonTestServer {
public:
    static std::string whyUnavailable();

    SshdTestServer(); // throws std::runtime_error when it can't start

    // The user's private key, for OpenSSH's own client.
    std::filesystem::path privateKey() const { return folder_ / "client_key"; }
};

} // namespace perchftp::test
