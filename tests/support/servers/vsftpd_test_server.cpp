#include "support/servers/vsftpd_test_server.hpp"

#include <fstream>
#include <unistd.h>

namespace perchftp::test {

namespace {

constexpr char const* kVsftpd = "/usr/sbin/vsftpd";

} // namespace

std::string VsftpdTestServer::whyUnavailable()
{
    if (std::string const reason = SystemTestUser::whyUnavailable(); !reason.empty()) {
        return reason + " for vsftpd";
    }
    if (::access(kVsftpd, X_OK) != 0) {
        return std::string(kVsftpd) + " is not installed";
    }
    return {};
}

VsftpdTestServer::VsftpdTestServer(Tls const* tls)
    : folder_(makeScratchFolder("perchftp-vsftpd"))
{
    try {
        std::filesystem::permissions(folder_, std::filesystem::perms(0755));
        std::filesystem::create_directories(folder_ / "empty");
        user_ = std::make_unique<SystemTestUser>("perchftp-v", folder_ / "home");
        writeConfiguration(tls);
        process_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{kVsftpd, (folder_ / "vsftpd.conf").string()}, folder_ / "vsftpd.out");
        waitUntil(*process_, folder_ / "vsftpd.out", "vsftpd", [this] { return acceptsConnections(port_); });
    } catch (...) {
        release();
        throw;
    }
}

VsftpdTestServer::~VsftpdTestServer()
{
    release();
}

void VsftpdTestServer::release()
{
    process_.reset();
    user_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void VsftpdTestServer::writeConfiguration(Tls const* tls)
{
    port_ = freeLoopbackPort();
    std::ofstream config(folder_ / "vsftpd.conf");
    config << "listen=YES\nlisten_address=127.0.0.1\nlisten_port=" << port_ << "\nbackground=NO\n"
           << "anonymous_enable=NO\nlocal_enable=YES\nwrite_enable=YES\nlocal_umask=022\n"
           << "chroot_local_user=YES\nallow_writeable_chroot=YES\nseccomp_sandbox=NO\n"
           << "secure_chroot_dir=" << (folder_ / "empty").string() << "\npam_service_name=vsftpd\n"
           << "pasv_enable=YES\npasv_address=127.0.0.1\ncheck_shell=NO\nuserlist_enable=NO\n"
           << "xferlog_enable=NO\nvsftpd_log_file=" << (folder_ / "vsftpd.log").string() << "\n";
    if (tls) {
        config << "ssl_enable=YES\nimplicit_ssl=YES\nrequire_ssl_reuse=YES\nforce_local_logins_ssl=YES\n"
               << "force_local_data_ssl=YES\nssl_tlsv1=NO\nssl_sslv2=NO\nssl_sslv3=NO\n"
               << "rsa_cert_file=" << tls->certificateFile.string() << "\nrsa_private_key_file="
               << tls->keyFile.string() << "\n";
    }
}

} // namespace perchftp::test
