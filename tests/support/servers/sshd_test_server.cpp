#include "support/servers/sshd_test_server.hpp"

#include <atomic>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace perchftp::test {

namespace {

constexpr char const* kSshd = "/usr/sbin/sshd";

void run(std::string const& commandLine)
{
    if (!runCommand(commandLine + " >/dev/null 2>&1")) {
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
            std::vector<std::string>{kSshd, "-D", "-e", "-f", (folder_ / "sshd_config").string()},
            folder_ / "sshd.log");
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!acceptsConnections(port_)) {
            if (!process_->running() || std::chrono::steady_clock::now() > deadline) {
                throw std::runtime_error("sshd did not start: " + readBytes(folder_ / "sshd.log"));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
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
        runCommand("userdel '" + user_ + "' >/dev/null 2>&1");
        userCreated_ = false;
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void SshdTestServer::createUser()
{
    run("useradd --no-create-home --home-dir '" + home_.string() + "' --shell /bin/sh --user-group '" + user_ + "'");
    userCreated_ = true;
    run("echo '" + user_ + ":" + password_ + "' | chpasswd");
    run("chown '" + user_ + ":" + user_ + "' '" + home_.string() + "'");
    std::string const folder = folder_.string();
    run("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/host_key'");
    run("ssh-keygen -q -t ed25519 -N '' -f '" + folder + "/client_key'");
    std::filesystem::copy_file(folder_ / "client_key.pub", folder_ / "authorized_keys");
}

void SshdTestServer::writeConfiguration()
{
    std::string const folder = folder_.string();
    std::ofstream config(folder_ / "sshd_config");
    config << "ListenAddress 127.0.0.1\n"
           << "HostKey " << folder << "/host_key\n"
           << "PidFile none\n"
           << "UsePAM no\n"
           << "PasswordAuthentication yes\n"
           << "KbdInteractiveAuthentication no\n"
           << "PubkeyAuthentication yes\n"
           << "AuthorizedKeysFile " << folder << "/authorized_keys\n"
           << "StrictModes no\n"
           << "AllowUsers " << user_ << "\n"
           << "Subsystem sftp internal-sftp\n"
           << "MaxStartups 100\n"
           << "LogLevel ERROR\n";
}

void SshdTestServer::kill()
{
    if (process_) {
        process_->kill();
    }
}

} // namespace perchftp::test
