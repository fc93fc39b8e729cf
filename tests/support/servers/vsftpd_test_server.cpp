#include "support/servers/vsftpd_test_server.hpp"

#include <fstream>

namespace perchftp::test {

namespace {

constexpr char const* kVsftpd = "/usr/sbin/vsftpd";

} // namespace

std::string VsftpdTestServer::whyUnavailable()
{
    return DaemonTestServer::whyUnavailable(kVsftpd, "vsftpd");
}

VsftpdTestServer::VsftpdTestServer(Tls const* tls)
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
               << "rsa_cert_file=" << tls->certificateFile.string() << "\nrsa_private_key_file="
               << tls->keyFile.string() << "\n";
    }
    config.close();
    start({kVsftpd, (folder_ / "vsftpd.conf").string()});
}

} // namespace perchftp::test
