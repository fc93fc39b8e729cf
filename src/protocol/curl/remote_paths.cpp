#include "protocol/curl/remote_paths.hpp"

#include <algorithm>
#include <filesystem>
#include <vector>

namespace perchftp::protocol::curl::detail {

std::string baseUrl(std::string const& host, int port, std::string const& username,
                    std::string const& password, std::string const& protocol)
{
    std::string url;
    if (protocol == "ftps") {
        url = "ftps://";
    } else if (protocol == "sftp") {
        url = "sftp://";
    } else {
        url = "ftp://";
    }
    if (!username.empty()) {
        url += username;
        url += ':';
        url += password;
        url += '@';
    }
    url += host;
    url += ':';
    url += std::to_string(port);
    return url;
}

std::string normalizePath(std::string const& path)
{
    if (path.empty() || path.front() == '/') {
        return path;
    }
    return "/" + path;
}

bool isFtpFamily(std::string const& protocol)
{
    return protocol == "ftp" || protocol == "ftps";
}

std::string listContextPath(std::string const& path)
{
    if (path.empty() || path == ".") {
        return {};
    }
    std::string result = normalizePath(path);
    if (result != "/" && !result.empty() && result.back() != '/') {
        result += '/';
    }
    return result;
}

std::string trimTrailingSlashes(std::string path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string stripLeadingSlash(std::string path)
{
    if (!path.empty() && path.front() == '/') {
        path.erase(0, 1);
    }
    return path;
}

bool looksLikeDirectoryPath(std::string const& path)
{
    return !path.empty() && path.back() == '/';
}

std::string commandContextPath(std::string const& path)
{
    std::string const normalized = trimTrailingSlashes(normalizePath(path));
    if (normalized.empty() || normalized == "/") {
        return {};
    }
    std::string const parent = std::filesystem::path(normalized).parent_path().string();
    if (parent.empty() || parent == ".") {
        return "/";
    }
    return normalizePath(parent);
}

std::string commandTargetName(std::string const& path)
{
    std::string const normalized = trimTrailingSlashes(normalizePath(path));
    if (normalized.empty() || normalized == "/") {
        return normalized;
    }
    std::string const name = std::filesystem::path(normalized).filename().string();
    if (name.empty() || name == ".") {
        return normalized;
    }
    return name;
}

std::string plainAbsolutePath(std::string const& path)
{
    if (path.empty()) {
        return {};
    }
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t const end = std::min(path.find('/', start), path.size());
        std::string const name = path.substr(start, end - start);
        if (name == "..") {
            if (!names.empty()) {
                names.pop_back();
            }
        } else if (!name.empty() && name != ".") {
            names.push_back(name);
        }
        start = end + 1;
    }
    std::string plain;
    for (std::string const& name : names) {
        plain += '/' + name;
    }
    return plain.empty() ? "/" : plain;
}

std::string commandLandingPath(std::string const& argument, std::string const& loginFolder)
{
    if (argument.empty()) {
        return {};
    }
    if (argument.front() == '/') {
        return plainAbsolutePath(argument);
    }
    if (loginFolder.empty() || loginFolder.front() != '/') {
        return {};
    }
    return plainAbsolutePath(loginFolder + '/' + argument);
}

} // namespace perchftp::protocol::curl::detail
