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

} // namespace perchftp::protocol::curl::detail
