#include "support/http_recorder.hpp"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace perchftp::test {
namespace {

constexpr char const* kPython = "/usr/bin/python3";
constexpr char const* kProxyVariables[] = {
    "http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"};

std::string serverScript()
{
    return std::string(PERCHFTP_TEST_SERVERS_DIR) + "/http_recorder.py";
}

} // namespace

HttpRecorder::HttpRecorder()
{
    auto const script = serverScript();
    auto const folder = folder_.path().string();
    char const* argv[] = {kPython, script.c_str(), folder.c_str(), nullptr};
    if (::posix_spawn(&pid_, kPython, nullptr, nullptr, const_cast<char**>(argv), environ) != 0) {
        throw std::runtime_error("cannot start the HTTP recorder");
    }
    auto const portFile = folder_.path() / "port";
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!std::filesystem::exists(portFile)) {
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_ || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("the HTTP recorder did not start");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    port_ = std::stoi(readFile(portFile));
}

HttpRecorder::~HttpRecorder()
{
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        int status = 0;
        ::waitpid(pid_, &status, 0);
    }
}

std::string HttpRecorder::url(std::string const& path) const
{
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

void HttpRecorder::setStatus(int status)
{
    writeFile(folder_.path() / "status", std::to_string(status));
}

std::vector<HttpRecorder::Request> HttpRecorder::requests() const
{
    std::vector<std::filesystem::path> heads;
    for (auto const& entry : std::filesystem::directory_iterator(folder_.path() / "requests")) {
        if (entry.path().extension() == ".head") {
            heads.push_back(entry.path());
        }
    }
    std::sort(heads.begin(), heads.end());
    std::vector<Request> requests;
    for (auto const& head : heads) {
        auto const text = readFile(head);
        auto const lineEnd = text.find('\n');
        auto const requestLine = text.substr(0, lineEnd);
        auto const space = requestLine.find(' ');
        Request request;
        request.method = requestLine.substr(0, space);
        request.path = space == std::string::npos ? std::string() : requestLine.substr(space + 1);
        request.headers = lineEnd == std::string::npos ? std::string() : text.substr(lineEnd + 1);
        auto bodyPath = head;
        request.body = readFile(bodyPath.replace_extension(".body"));
        requests.push_back(std::move(request));
    }
    return requests;
}

NoProxyEnvironment::NoProxyEnvironment()
{
    for (auto const* name : kProxyVariables) {
        if (char const* value = std::getenv(name)) {
            saved_.emplace_back(name, value);
            ::unsetenv(name);
        }
    }
}

NoProxyEnvironment::~NoProxyEnvironment()
{
    for (auto const& [name, value] : saved_) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

} // namespace perchftp::test
