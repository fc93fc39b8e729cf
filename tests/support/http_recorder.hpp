#pragma once

#include "support/temp_dir.hpp"

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace perchftp::test {

// A real HTTP server on 127.0.0.1 (tests/servers/http_recorder.py) that answers every request
// with the status a test sets and records what it received. Started by the constructor, which
// waits until it listens, and stopped by the destructor.
class HttpRecorder {
public:
    struct Request {
        std::string method;
        std::string path;
        std::string headers; // as received, one per line
        std::string body;
    };

    HttpRecorder();
    ~HttpRecorder();
    HttpRecorder(HttpRecorder const&) = delete;
    HttpRecorder& operator=(HttpRecorder const&) = delete;

    std::string url(std::string const& path) const;
    void setStatus(int status);
    std::vector<Request> requests() const;

private:
    TempDir folder_;
    pid_t pid_ = -1;
    int port_ = 0;
};

// Clears the proxy variables for the life of the object, so that loopback requests go straight
// to the server; restores them afterwards.
class NoProxyEnvironment {
public:
    NoProxyEnvironment();
    ~NoProxyEnvironment();
    NoProxyEnvironment(NoProxyEnvironment const&) = delete;
    NoProxyEnvironment& operator=(NoProxyEnvironment const&) = delete;

private:
    std::vector<std::pair<std::string, std::string>> saved_;
};

} // namespace perchftp::test
