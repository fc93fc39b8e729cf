#pragma once

#include "protocol/remote_tree.hpp"

#include <QString>

#include <string>

// Path rules of transfers and file operations. They work on text only and never touch the disk
// or the server.
namespace perchftp::app::detail {

using protocol::isPlainEntryName;
using protocol::joinRemotePath;

// Whether a failed mkdir reads as "the folder is already there". Deliberately wide: any message
// that holds "exist", in any case, passes, also one saying that something does not exist.
bool messageLooksLikeAlreadyExists(std::string const& message);

// The last component of a path, trailing slashes ignored: "/a/b/" gives "b", "/" gives "/" and
// "" gives "".
QString lastPathComponent(QString const& path);

// The bytes of a path for the disk or the wire, and back. Bytes that are not UTF-8 survive the
// round trip (see pane_file_names.hpp).
std::string pathBytes(QString const& path);
QString pathText(std::string const& bytes);

// A session's message as the banner shows it.
QString messageText(std::string const& message);

} // namespace perchftp::app::detail
