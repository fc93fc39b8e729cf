#pragma once

#include "support/servers/daemon_test_server.hpp"

#include <fstream>

namespace perchftp::test {

// OpenSSH's sshd serving SFTP to a throwaway user with a password and a key, with a host key and
// configuration of its own; the machine's own sshd configuration is never read or touched. SFTP
// paths are absolute, so tests use home() as their prefix.
class SshdTestServer : public DaemonTestServer {
public:
    static std::string whyUnavailable() { return DaemonTestServer::whyUnavailable("/usr/sbin/sshd", "SFTP"); }

    // Throws std::runtime_error when it can't start.
    SshdTestServer()
        : DaemonTestServer("sshd", "perchftp-t")
    {
        std::string const folder = folder_.string();
        std::filesystem::create_directories("/run/sshd"); // sshd's privilege-separation folder
        requireQuietly("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/host_key'");
        requireQuietly("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/client_key'");
        std::filesystem::copy_file(folder_ / "client_key.pub", folder_ / "authorized_keys");
        std::ofstream(folder_ / "sshd_config")
            << "ListenAddress 127.0.0.1\nPort " << port_ << "\nHostKey " << folder << "/host_key\nPidFile none\n"
            << "UsePAM no\nPasswordAuthentication yes\nKbdInteractiveAuthentication no\nPubkeyAuthentication yes\n"
            << "AuthorizedKeysFile " << folder << "/authorized_keys\nStrictModes no\nAllowUsers " << user()
            << "\nSubsystem sftp internal-sftp\nMaxStartups 100\nLogLevel ERROR\n";
        start({"/usr/sbin/sshd", "-D", "-e", "-f", folder + "/sshd_config"});
    }

    // The user's private key, for OpenSSH's own client.
    std::filesystem::path privateKey() const { return folder_ / "client_key"; }
};

} // namespace perchftp::test
