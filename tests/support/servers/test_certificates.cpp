#include "support/servers/test_certificates.hpp"

#include "support/temp_dir.hpp"

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace perchftp::test {

std::string trustInPrivateMountNamespace(std::filesystem::path const& authorityCertificate)
{
    constexpr char const* kSystemBundle = "/etc/ssl/certs/ca-certificates.crt";
    auto const systemError = [](std::string const& what) { return what + ": " + std::strerror(errno); };
    if (::geteuid() != 0) {
        return "needs root to give the test process a mount namespace of its own with the test CA trusted";
    }
    static std::string const originalBundle = readFile(kSystemBundle);
    static bool isolated = false;
    if (!isolated) {
        if (::unshare(CLONE_NEWNS) != 0) {
            return systemError("unshare(CLONE_NEWNS)");
        }
        if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
            return systemError("making the mounts private");
        }
        isolated = true;
    }
    // A later call mounts its bundle over the earlier one.
    TempDir folder;
    std::string const bundle = folder.file("ca-certificates.crt");
    writeFile(bundle, originalBundle + "\n" + readFile(authorityCertificate));
    return ::mount(bundle.c_str(), kSystemBundle, nullptr, MS_BIND, nullptr) == 0 ? std::string()
                                                                                : systemError("bind-mounting the bundle");
}

} // namespace perchftp::test
