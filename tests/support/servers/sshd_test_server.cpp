#include "support/servers/sshd_test_server.hpp"

#include <atomic>
#include <fstream>
#include <unistd.h>

namespace perchftp::test {

namespace {

constexpr char const* kSshd = "/usr/sbin/sshd";

// The user database is locked while another test adds or deletes its own user: try again.
bool run(std::string const& commandLine, int attempts = 1)
{
    for (int attempt = 1; !runCommand(commandLine + " >/dev/null 2>&1"); ++attempt) {
        if (attempt >= attempts) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return true;
}

void require(std::string const& commandLine, int attempts = 1)
{
    if (!run(commandLine, attempts)) {
        throw std::runtime_error("failed: " + commandLine);
    }
}

} // namespace

std::string SshdTestServer::whyUnavailable()
{
    if (::geteuid() != 0) {
        return "needs root to create and delete a throwaway system user for SFTP";
    }
    if (::access(kSshd, X_OK) != 0) {
        return std::string(kSshd) + " is not installed";
    }
    return {};
}

SshdTestServer::SshdTestServer()
    : folder_(makeScratchFolder("perchftp-sshd"))
    , home_(folder_ / "home")
{
    static std::atomic<int> counter{0};
    user_ = "perchftp-t" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
    try {
        std::filesystem::permissions(folder_, std::filesystem::perms(0755));
        std::filesystem::create_directories(home_);
        std::filesystem::create_directories("/run/sshd"); // sshd's privilege-separation folder
        createUser();
        writeConfiguration();
        port_ = freeLoopbackPort();
        std::ofstream(folder_ / "sshd_config", std::ios::app) << "Port " << port_ << "\n";
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
    if (userCreated_) {
        userCreated_ = false;
        run("userdel '" + user_ + "'", 50);
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void SshdTestServer::createUser()
{
    require("useradd --no-create-home --home-dir '" + home_.string() + "' --shell /bin/sh --user-group '" + user_ + "'", 50);
    userCreated_ = true;
    require("echo '" + user_ + ":" + password_ + "' | chpasswd", 50);
    require("chown '" + user_ + ":" + user_ + "' '" + home_.string() + "'");
    std::string const folder = folder_.string();
    require("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/host_key'");
    require("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/client_key'");
    std::filesystem::copy_file(folder_ / "client_key.pub", folder_ / "authorized_keys");
}

void SshdTestServer::writeConfiguration()
{
    std::string const folder = folder_.string();
    std::ofstream config(folder_ / "sshd_config");
    config << "ListenAddress 127.0.0.1\nHostKey " << folder << "/host_key\nPidFile none\nUsePAM no\n"
           << "PasswordAuthentication yes\nKbdInteractiveAuthentication no\nPubkeyAuthentication yes\n"
           << "AuthorizedKeysFile " << folder << "/authorized_keys\nStrictModes no\nAllowUsers " << user_
           << "\nSubsystem sftp internal-sftp\nMaxStartups 100\nLogLevel ERROR\n";
}

} // namespace perchftp::test
