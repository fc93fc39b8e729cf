#include "support/servers/sshd_test_server.hpp"

#include <fstream>
#include <unistd.h>

namespace perchftp::test {

namespace {

constexpr char const* kSshd = "/usr/sbin/sshd";

} // namespace

std::string SshdTestServer::whyUnavailable()
{
    if (std::string const reason = SystemTestUser::whyUnavailable(); !reason.empty()) {
        return reason + " for SFTP";
    }
    if (::access(kSshd, X_OK) != 0) {
        return std::string(kSshd) + " is not installed";
    }
    return {};
}

SshdTestServer::SshdTestServer()
    : folder_(makeScratchFolder("perchftp-sshd"))
{
    try {
        std::filesystem::permissions(folder_, std::filesystem::perms(0755));
        std::filesystem::create_directories("/run/sshd"); // sshd's privilege-separation folder
        user_ = std::make_unique<SystemTestUser>("perchftp-t", folder_ / "home");
        writeKeysAndConfiguration();
        process_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{kSshd, "-D", "-e", "-f", (folder_ / "sshd_config").string()}, folder_ / "sshd.log");
        waitUntil(*process_, folder_ / "sshd.log", "sshd", [this] { return acceptsConnections(port_); });
    } catch (...) {
        release();
        throw;
    }
}

SshdTestServer::~SshdTestServer()
{
    release();
}

void SshdTestServer::release()
{
    process_.reset();
    user_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void SshdTestServer::writeKeysAndConfiguration()
{
    std::string const folder = folder_.string();
    requireQuietly("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/host_key'");
    requireQuietly("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/client_key'");
    std::filesystem::copy_file(folder_ / "client_key.pub", folder_ / "authorized_keys");
    port_ = freeLoopbackPort();
    std::ofstream config(folder_ / "sshd_config");
    config << "ListenAddress 127.0.0.1\nPort " << port_ << "\nHostKey " << folder << "/host_key\nPidFile none\n"
           << "UsePAM no\nPasswordAuthentication yes\nKbdInteractiveAuthentication no\nPubkeyAuthentication yes\n"
           << "AuthorizedKeysFile " << folder << "/authorized_keys\nStrictModes no\nAllowUsers " << user()
           << "\nSubsystem sftp internal-sftp\nMaxStartups 100\nLogLevel ERROR\n";
}

} // namespace perchftp::test
