#include "support/servers/test_certificates.hpp"

#include "support/servers/child_process.hpp"

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace perchftp::test {

namespace {

constexpr char const* kSystemBundle = "/etc/ssl/certs/ca-certificates.crt";

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
{
    writeFile(folder_.file("server.ext"),
              "subjectAltName=IP:127.0.0.1,DNS:localhost\nbasicConstraints=CA:FALSE\nextendedKeyUsage=serverAuth\n");
    std::string const ecKey = " -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes";
    std::string const commands = "cd '" + folder_.path().string() + "'"
        + " && openssl req -x509" + ecKey + " -keyout ca.key -out ca.pem -days 2 -subj '/CN=PerchFtp Test CA'"
        + " -addext basicConstraints=critical,CA:TRUE -addext keyUsage=critical,keyCertSign,cRLSign"
        + " && openssl req" + ecKey + " -keyout server.key -out server.csr -subj /CN=127.0.0.1"
        + " && openssl x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -out server.pem -days 2"
        + " -extfile server.ext";
    if (!runCommand("(" + commands + ") >/dev/null 2>&1")) {
        throw std::runtime_error("openssl could not make the test certificates");
    }
}

std::string trustInPrivateMountNamespace(std::filesystem::path const& authorityCertificate)
{
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
    } else {
        ::umount2(kSystemBundle, MNT_DETACH);
    }
    if (namespaceOf("self") == namespaceOf("1")) {
        return "the process is still in the machine's mount namespace";
    }
    TempDir folder;
    std::string const bundle = folder.file("ca-certificates.crt");
    writeFile(bundle, originalBundle + "\n" + readFile(authorityCertificate));
    return ::mount(bundle.c_str(), kSystemBundle, nullptr, MS_BIND, nullptr) == 0 ? std::string()
                                                                                : systemError("bind-mounting the bundle");
}

} // namespace perchftp::test
