#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <sys/types.h>

namespace perchftp::test {

class FtpTestServer;

enum class WalkServerKind {
    Scripted,        // the project's scriptable FTP server
    Vsftpd,          // Debian's vsftpd, plain FTP
    VsftpdTls,       // vsftpd with implicit TLS and require_ssl_reuse
    OpenSsh,         // OpenSSH's sshd, SFTP
    FromEnvironment, // a server started by scripts/server-table, described in PERCHFTP_WALK_SERVER
};

std::string toString(WalkServerKind kind);

// A running server as the walk sees it: how to log in, where the user's folder is on the wire
// and on this machine's disk, and how to put things there as the server's user would own them.
struct WalkServer {
    std::string label; // the server's name in the table of servers
    std::string protocol;
    int port = 0;
    std::string user;
    std::string password;
    std::string base; // the user's folder as a remote path, ending in "/"
    std::filesystem::path disk;
    uid_t owner = 0;
    gid_t group = 0;
    std::shared_ptr<void> running; // the server and whatever it needs, stopped when this goes
    FtpTestServer* scripted = nullptr; // set for the scripted server, whose record the walk reads too

    void makeFolders(std::string const& relative) const;
    void makeFile(std::string const& relative, std::string const& bytes = "walk") const;
    void makeLink(std::string const& relative, std::string const& target) const;
};

// Starts a server of that kind into `server`; empty on success, otherwise why it can't run here.
std::string startWalkServer(WalkServerKind kind, std::unique_ptr<WalkServer>& server);

} // namespace perchftp::test
