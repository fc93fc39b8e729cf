#include "walk_servers.hpp"

#include "support/servers/ftp_test_server.hpp"
#include "support/servers/sshd_test_server.hpp"
#include "support/servers/test_certificates.hpp"
#include "support/temp_dir.hpp"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace perchftp::test {

namespace {

constexpr char const* kVsftpd = "/usr/sbin/vsftpd";

// vsftpd with a throwaway configuration, whose user's home is the server's "/" (chrooted). With
// certificate files it speaks implicit TLS on control and data and insists that data connections
// reuse the control connection's TLS session.
class VsftpdTestServer : public DaemonTestServer {
public:
    explicit VsftpdTestServer(TestCertificates const* tls = nullptr)
        : DaemonTestServer("vsftpd", "perchftp-v")
    {
        std::filesystem::create_directories(folder_ / "empty");
        std::ofstream config(folder_ / "vsftpd.conf");
        config << "listen=YES\nlisten_address=127.0.0.1\nlisten_port=" << port_ << "\nbackground=NO\n"
               << "anonymous_enable=NO\nlocal_enable=YES\nwrite_enable=YES\nlocal_umask=022\n"
               << "chroot_local_user=YES\nallow_writeable_chroot=YES\nseccomp_sandbox=NO\n"
               << "secure_chroot_dir=" << (folder_ / "empty").string() << "\npam_service_name=vsftpd\n"
               << "pasv_enable=YES\npasv_address=127.0.0.1\ncheck_shell=NO\nuserlist_enable=NO\n"
               << "xferlog_enable=NO\nvsftpd_log_file=" << (folder_ / "transfers.log").string() << "\n";
        if (tls) {
            config << "ssl_enable=YES\nimplicit_ssl=YES\nrequire_ssl_reuse=YES\nforce_local_logins_ssl=YES\n"
                   << "force_local_data_ssl=YES\nssl_tlsv1=NO\nssl_sslv2=NO\nssl_sslv3=NO\n"
                   << "rsa_cert_file=" << tls->serverCertificate().string() << "\nrsa_private_key_file="
                   << tls->serverKey().string() << "\n";
        }
        config.close();
        start({kVsftpd, (folder_ / "vsftpd.conf").string()});
    }
};

void giveTo(std::filesystem::path const& path, uid_t owner, gid_t group)
{
    if (::lchown(path.c_str(), owner, group) != 0) {
        throw std::filesystem::filesystem_error("lchown", path, std::error_code(errno, std::generic_category()));
    }
}

// A server object with port(), user() and password(), kept running by `running`.
template <typename Server>
std::unique_ptr<WalkServer> walkServer(std::string label, std::string protocol, Server const& server,
                                       std::string base, std::filesystem::path disk, std::shared_ptr<void> running)
{
    return std::make_unique<WalkServer>(WalkServer{std::move(label), std::move(protocol), server.port(), server.user(),
                                                   server.password(), std::move(base), std::move(disk), 0, 0,
                                                   std::move(running), nullptr});
}

// "label|protocol|port|user|password|base|disk", as scripts/server-table writes it.
std::string fromEnvironment(std::unique_ptr<WalkServer>& server)
{
    char const* description = std::getenv("PERCHFTP_WALK_SERVER");
    if (!description || !*description) {
        return "runs only for a server that scripts/server-table --unpacked started";
    }
    std::vector<std::string> fields;
    std::stringstream stream(description);
    for (std::string field; std::getline(stream, field, '|');) {
        fields.push_back(field);
    }
    if (fields.size() != 7) {
        return "needs PERCHFTP_WALK_SERVER as label|protocol|port|user|password|base|disk";
    }
    server = std::make_unique<WalkServer>(WalkServer{fields[0], fields[1], std::stoi(fields[2]), fields[3], fields[4],
                                                     fields[5], fields[6], 0, 0, nullptr, nullptr});
    return {};
}

std::string start(WalkServerKind kind, std::unique_ptr<WalkServer>& server)
{
    switch (kind) {
    case WalkServerKind::Scripted: {
        auto running = std::make_shared<FtpTestServer>();
        server = walkServer("scripted test server (pyftpdlib)", "ftp", *running, "/", running->root(), running);
        server->scripted = running.get();
        return {};
    }
    case WalkServerKind::Vsftpd:
    case WalkServerKind::VsftpdTls: {
        if (std::string const reason = DaemonTestServer::whyUnavailable(kVsftpd, "vsftpd"); !reason.empty()) {
            return reason;
        }
        bool const tls = kind == WalkServerKind::VsftpdTls;
        auto const certificates = tls ? std::make_shared<TestCertificates>() : nullptr;
        if (tls) {
            if (std::string const reason = trustInPrivateMountNamespace(certificates->authorityCertificate());
                !reason.empty()) {
                return reason;
            }
        }
        auto running = std::make_shared<VsftpdTestServer>(certificates.get());
        server = walkServer(tls ? "vsftpd, implicit TLS, require_ssl_reuse" : "vsftpd", tls ? "ftps" : "ftp", *running,
                            "/", running->home(), std::make_shared<std::pair<decltype(certificates),
                                                                             decltype(running)>>(certificates, running));
        return {};
    }
    case WalkServerKind::OpenSsh: {
        if (std::string const reason = SshdTestServer::whyUnavailable(); !reason.empty()) {
            return reason;
        }
        auto running = std::make_shared<SshdTestServer>();
        server = walkServer("OpenSSH", "sftp", *running, running->home().string() + "/", running->home(), running);
        return {};
    }
    case WalkServerKind::FromEnvironment:
        return fromEnvironment(server);
    }
    return "is not a kind of server";
}

} // namespace

std::string toString(WalkServerKind kind)
{
    static char const* const names[] = {"Scripted", "Vsftpd", "VsftpdTls", "OpenSsh", "FromEnvironment"};
    return names[static_cast<int>(kind)];
}

std::string startWalkServer(WalkServerKind kind, std::unique_ptr<WalkServer>& server)
{
    std::string const reason = start(kind, server);
    if (reason.empty()) {
        struct stat status {};
        ::stat(server->disk.c_str(), &status);
        server->owner = status.st_uid;
        server->group = status.st_gid;
    }
    return reason;
}

void WalkServer::makeFolders(std::string const& relative) const
{
    std::filesystem::path folder = disk;
    for (auto const& name : std::filesystem::path(relative)) {
        folder /= name;
        if (std::filesystem::create_directory(folder)) {
            giveTo(folder, owner, group);
        }
    }
}

void WalkServer::makeFile(std::string const& relative, std::string const& bytes) const
{
    writeFile(disk / relative, bytes);
    giveTo(disk / relative, owner, group);
}

void WalkServer::makeLink(std::string const& relative, std::string const& target) const
{
    std::filesystem::create_symlink(target, disk / relative);
    giveTo(disk / relative, owner, group);
}

} // namespace perchftp::test
