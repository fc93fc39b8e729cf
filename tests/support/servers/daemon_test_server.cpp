#include "support/servers/daemon_test_server.hpp"

#include <unistd.h>

namespace perchftp::test {

std::string DaemonTestServer::whyUnavailable(std::string const& binary, std::string const& purpose)
{
    if (std::string const reason = SystemTestUser::whyUnavailable(); !reason.empty()) {
        return reason + " for " + purpose;
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
{
    try {
        std::filesystem::permissions(folder_, std::filesystem::perms(0755));
        user_ = std::make_unique<SystemTestUser>(userPrefix, folder_ / "home");
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
        throw;
    }
}

DaemonTestServer::~DaemonTestServer()
{
    process_.reset();
    user_.reset();
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
