#pragma once

#include <string>
#include <vector>

// FTP servers disagree on how a path in RNFR, DELE, RMD or MKD is read. Instead of guessing, the
// session tries the bare name in the parent folder, then the relative path, then the absolute one,
// and keeps the first that works. These build the attempts; the session runs them in order.
namespace perchftp::protocol::curl::detail {

struct CommandAttempt {
    std::string context;               // the path the attempt's handle is made for
    std::vector<std::string> commands; // sent in order straight after login
};

using CommandLadder = std::vector<CommandAttempt>;

CommandLadder renameLadder(std::string const& from, std::string const& to);
CommandLadder removeLadder(std::string const& path);
CommandLadder mkdirLadder(std::string const& path);

} // namespace perchftp::protocol::curl::detail
