#include "support/servers/system_test_user.hpp"

#include "support/servers/child_process.hpp"

#include <atomic>
#include <unistd.h>

namespace perchftp::test {

bool runQuietly(std::string const& commandLine, int attempts)
{
    for (int attempt = 1; !runCommand(commandLine + " >/dev/null 2>&1"); ++attempt) {
        if (attempt >= attempts) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return true;
}

void requireQuietly(std::string const& commandLine, int attempts)
{
    if (!runQuietly(commandLine, attempts)) {
        throw std::runtime_error("failed: " + commandLine);
    }
}

std::string SystemTestUser::whyUnavailable()
{
    if (::geteuid() != 0) {
        return "needs root to create and delete a throwaway system user";
    }
    return {};
}

SystemTestUser::SystemTestUser(std::string const& prefix, std::filesystem::path home)
    : home_(std::move(home))
{
    static std::atomic<int> counter{0};
    name_ = prefix + std::to_string(::getpid()) + "-" + std::to_string(counter++);
    std::filesystem::create_directories(home_);
    requireQuietly("useradd --no-create-home --home-dir '" + home_.string() + "' --shell /bin/sh --user-group '"
                       + name_ + "'",
                   50);
    try {
        // A hash that is quick to check: every operation of a session logs in anew.
        requireQuietly("echo '" + name_ + ":" + password_ + "' | chpasswd --crypt-method SHA512 --sha-rounds 1000", 50);
        requireQuietly("chown '" + name_ + ":" + name_ + "' '" + home_.string() + "'");
    } catch (...) {
        runQuietly("userdel '" + name_ + "'", 50);
        throw;
    }
}

SystemTestUser::~SystemTestUser()
{
    runQuietly("userdel '" + name_ + "'", 50);
}

} // namespace perchftp::test
