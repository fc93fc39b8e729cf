#include "support/servers/sshd_test_server.hpp"

#include <fstream>

namespace perchftp::test {

namespace {

constexpr char const* kSshd = "/usr/sbin/sshd";

} // namespace

std::string SshdTestServer::whyUnavailable()
{
    return DaemonTestServer::whyUnavailable(kSshd, "SFTP");
}

SshdTestServer::SshdTestServer()
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
    start({kSshd, "-D", "-e", "-f", folder + "/sshd_config"});
}

} // namespace perchftp::test
