#pragma once

#include <string>

// How the curl session spells URLs and picks the paths of its requests. Nothing here escapes
// anything: names go onto the wire exactly as the caller wrote them.
namespace perchftp::protocol::curl::detail {

// "ftps://" or "sftp://" for those protocols, "ftp://" for anything else; then "user:password@"
// when there is a user (the colon even for an empty password), the host, ":" and the port.
std::string baseUrl(std::string const& host, int port, std::string const& username,
                    std::string const& password, std::string const& protocol);

// The empty path stays empty; anything not starting with "/" gets one in front.
std::string normalizePath(std::string const& path);

// True for the protocols that speak FTP commands and get the path ladders.
bool isFtpFamily(std::string const& protocol);

// The path a listing asks for on FTP: a folder URL (trailing "/"), or none for "" and ".".
std::string listContextPath(std::string const& path);

std::string trimTrailingSlashes(std::string path);
std::string stripLeadingSlash(std::string path);
bool looksLikeDirectoryPath(std::string const& path);

// The folder that holds the target ("/a" for "/a/b.txt", "/" for "/b.txt", "" for "/" and "").
std::string commandContextPath(std::string const& path);
// The target's last name ("b" for "/a/b/"); "/" and "" come back as they are.
std::string commandTargetName(std::string const& path);

// The plain absolute form of a path, as a server resolves it: empty names and "." dropped, ".."
// taking back one name (never above "/"), no trailing "/". "/a/b" for "a//./c/../b/"; "" stays "".
std::string plainAbsolutePath(std::string const& path);

// The path an FTP command's argument acts on when it is sent straight after login, before any
// change of folder: a relative argument is read in the login folder. Empty when that can't be
// known, for a relative argument while the login folder is unknown or not an absolute path.
std::string commandLandingPath(std::string const& argument, std::string const& loginFolder);

} // namespace perchftp::protocol::curl::detail
