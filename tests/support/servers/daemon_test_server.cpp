#include "support/servers/daemon_test_server.hpp"

#include <atomic>
#include <unistd.h>

namespace perchftp::test {

void requireQuietly(std::string const& commandLine, int attempts)
{
    for (int attempt = 1; !runCommand(commandLine + " >/dev/null 2>&1"); ++attempt) {
        if (attempt >= attempts) {
            throw std::runtime_error("failed: " + commandLine);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

std::string DaemonTestServer::whyUnavailable(std::string const& binary, std::string const& purpose)
{
    if (::geteuid() != 0) {
        return "needs root to create and delete a throwaway system user for " + purpose;
    }
    if (::access(binary.c_str(), X_OK) != 0) {
        return binary + " is not installed";
    }
    return {};
}

DaemonTestServer::DaemonTestServer(std::string const& name, std::string const& userPrefix)
    : name_(name)
    , folder_(makeScratchFolder("perchftp-" + name))
    , port_(freeLoopbackPort())
    , home_(folder_ / "home")
{
    static std::atomic<int> counter{0};
    std::string const user = userPrefix + std::to_string(::getpid()) + "-" + std::to_string(counter++);
    try {
        std::filesystem::permissions(folder_, std::filesystem::perms(0755));
        std::filesystem::create_directories(home_);
        requireQuietly("useradd --no-create-home --home-dir '" + home_.string()
                           + "' --shell /bin/sh --user-group '" + user + "'",
                       50);
        user_ = user;
        // A hash that is quick to check: every operation of a session logs in anew.
        requireQuietly("echo '" + user_ + ":" + password_ + "' | chpasswd --crypt-method SHA512 --sha-rounds 1000", 50);
        requireQuietly("chown '" + user_ + ":" + user_ + "' '" + home_.string() + "'");
    } catch (...) {
        stop();
        throw;
    }
}

void DaemonTestServer::stop()
{
    process_.reset();
    if (!user_.empty()) {
        try {
            requireQuietly("userdel '" + user_ + "'", 50);
        } catch (std::runtime_error const&) {
            // Left behind; the next server's user has a name of its own.
        }
        user_.clear();
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void DaemonTestServer::start(std::vector<std::string> const& argv)
{
    std::filesystem::path const log = folder_ / (name_ + ".log");
    process_ = std::make_unique<ChildProcess>(argv, log);
    waitUntil(*process_, log, name_.c_str(), [this] { return acceptsConnections(port_); });
}

} // namespace perchftp::test
