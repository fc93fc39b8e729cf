#include "support/servers/test_certificates.hpp"

#include "support/servers/child_process.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace perchftp::test {

namespace {

constexpr char const* kSystemBundle = "/etc/ssl/certs/ca-certificates.crt";

void openssl(std::string const& arguments)
{
    if (!runCommand("openssl " + arguments + " >/dev/null 2>&1")) {
        throw std::runtime_error("openssl " + arguments + " failed");
    }
}

ino_t namespaceOf(char const* process)
{
    struct stat status {};
    std::string const path = std::string("/proc/") + process + "/ns/mnt";
    return ::stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

std::string systemError(std::string const& what)
{
    return what + ": " + std::strerror(errno);
}

} // namespace

TestCertificates::TestCertificates()
    : folder_(makeScratchFolder("perchftp-certs"))
{
    std::string const dir = folder_.string();
    std::string const ecKey = "-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes";
    std::ofstream(folder_ / "server.ext") << "subjectAltName=IP:127.0.0.1,DNS:localhost\n"
                                             "basicConstraints=CA:FALSE\n"
                                             "extendedKeyUsage=serverAuth\n";
    openssl("req -x509 " + ecKey + " -keyout " + dir + "/ca.key -out " + dir
            + "/ca.pem -days 2 -subj '/CN=PerchFtp Test CA'"
              " -addext basicConstraints=critical,CA:TRUE -addext keyUsage=critical,keyCertSign,cRLSign");
    openssl("req " + ecKey + " -keyout " + dir + "/server.key -out " + dir + "/server.csr -subj /CN=127.0.0.1");
    openssl("x509 -req -in " + dir + "/server.csr -CA " + dir + "/ca.pem -CAkey " + dir + "/ca.key -CAcreateserial -out "
            + dir + "/server.pem -days 2 -extfile " + dir + "/server.ext");
}

TestCertificates::~TestCertificates()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string trustInPrivateMountNamespace(std::filesystem::path const& authorityCertificate)
{
    if (::geteuid() != 0) {
        return "needs root to give the test process a mount namespace of its own with the test CA trusted";
    }
    static std::string const originalBundle = readBytes(kSystemBundle);
    static bool isolated = false;
    if (!isolated) {
        if (::unshare(CLONE_NEWNS) != 0) {
            return systemError("unshare(CLONE_NEWNS)");
        }
        if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
            return systemError("making the mounts private");
        }
        isolated = true;
    } else {
        ::umount2(kSystemBundle, MNT_DETACH);
    }
    if (namespaceOf("self") == namespaceOf("1")) {
        return "the process is still in the machine's mount namespace";
    }
    std::filesystem::path const folder = makeScratchFolder("perchftp-trust");
    std::filesystem::path const bundle = folder / "ca-certificates.crt";
    std::ofstream(bundle, std::ios::binary) << originalBundle << "\n" << readBytes(authorityCertificate);
    int const mounted = ::mount(bundle.c_str(), kSystemBundle, nullptr, MS_BIND, nullptr);
    std::string const failure = mounted == 0 ? std::string() : systemError("bind-mounting the bundle");
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return failure;
}

} // namespace perchftp::test
