#pragma once

#include "support/servers/child_process.hpp"
#include "support/temp_dir.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace perchftp::test {

struct FtpTestServerOptions {
    std::string user = "perch";
    std::string password = "perch-secret";
    // Limits every data connection to this many bytes per second in each direction; 0 = no limit.
    std::uint64_t throttleBytesPerSecond = 0;
};

// A real FTP server (pyftpdlib) on 127.0.0.1 with a free port, serving a fresh temporary folder
// as "/" to one user. Tests script it: exact LIST bodies per folder, chosen replies to chosen
// commands, and the record of every command line it received. Stopped and removed on destruction.
class FtpTestServer {
public:
    explicit FtpTestServer(FtpTestServerOptions options = {});
    FtpTestServer(FtpTestServer const&) = delete;
    FtpTestServer& operator=(FtpTestServer const&) = delete;

    int port() const { return port_; }
    std::string const& user() const { return options_.user; }
    std::string const& password() const { return options_.password; }
    // The local folder that the server shows as "/".
    std::filesystem::path const& root() const { return root_; }
    // The local place of a remote path, e.g. local("/a/b.txt").
    std::filesystem::path local(std::string const& remotePath) const
    {
        return root_ / std::filesystem::path(remotePath).relative_path();
    }

    // A LIST in `folder` ("/", "/a/b") answers with exactly these bytes.
    void setListing(std::string const& folder, std::string const& body);
    // A command whose whole line equals `command`, or whose verb does ("RNFR", "SITE CHMOD"),
    // is answered with `reply` (e.g. "550 Refused.") instead of being carried out, the first
    // `times` times, or always when times is negative. Whole-line rules win over verb rules.
    // The replies "CLOSE" (drop the control connection) and "STALL" (never answer) act.
    void setReply(std::string const& command, std::string const& reply, int times = -1);
    void clearReplies() { std::filesystem::remove(folder_.file("replies.tsv")); }

    // Every command line received since the start or the last clear, in order, as sent.
    std::vector<std::string> receivedCommands() const;
    // The same, only the lines that begin with one of the given verbs.
    std::vector<std::string> receivedCommands(std::vector<std::string> const& verbs) const;
    void clearReceivedCommands() { std::filesystem::remove(folder_.file("record.log")); }

    // Ends the server at once, dropping every connection.
    void kill() { process_->kill(); }

private:
    FtpTestServerOptions options_;
    TempDir folder_; // the server's control files, and its root
    std::filesystem::path root_;
    std::unique_ptr<ChildProcess> process_;
    int port_ = 0;
};

} // namespace perchftp::test
