#pragma once

#include <string>
#include <vector>

// FTP servers disagree on how a path in RNFR, DELE, RMD or MKD is read. Instead of guessing, the
// session tries the bare name in the parent folder, then the relative path, then the absolute one,
// and keeps the first that works. These build the attempts; the session runs them in order.
//
// The commands go out straight after login, before any change of folder, so a bare name or a
// relative path acts inside the login folder. An attempt whose command would act on another path
// than the one the caller named is left out: on a server that takes it, it would remove, rename or
// overwrite something the user never chose. With the login folder unknown ("") only the attempts
// with absolute paths remain.
namespace perchftp::protocol::curl::detail {

struct CommandAttempt {
    std::string context;               // the path the attempt's handle is made for
    std::vector<std::string> commands; // sent in order straight after login
};

using CommandLadder = std::vector<CommandAttempt>;

CommandLadder renameLadder(std::string const& from, std::string const& to, std::string const& loginFolder);
CommandLadder removeLadder(std::string const& path, std::string const& loginFolder);
CommandLadder mkdirLadder(std::string const& path, std::string const& loginFolder);

} // namespace perchftp::protocol::curl::detail
