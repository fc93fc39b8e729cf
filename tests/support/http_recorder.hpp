#pragma once

#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace perchftp::test {

// A real HTTP server on 127.0.0.1, on a thread of the test process, that answers every request
// with the status a test sets (200 until then) and records what it received. Every answer carries
// a Location header, so that a client that followed a 3xx would show as a second request.
// Listens from construction to destruction.
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

    std::string url(std::string const& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }
    void setStatus(int status)
    {
        std::lock_guard const lock(mutex_);
        status_ = status;
    }
    std::vector<Request> requests() const
    {
        std::lock_guard const lock(mutex_);
        return requests_;
    }

private:
    void answer(int connection);

    int port_ = 0; // set while socket_ is made
    int socket_ = -1;
    mutable std::mutex mutex_;
    int status_ = 200;
    std::vector<Request> requests_;
    std::thread thread_;
};

// Clears the proxy variables for the life of the object, so that loopback requests go straight
// to the server; restores them afterwards.
class NoProxyEnvironment {
public:
    NoProxyEnvironment()
    {
        for (char const* name : {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                                 "no_proxy", "NO_PROXY"}) {
            if (char const* value = std::getenv(name)) {
                saved_.emplace_back(name, value);
                ::unsetenv(name);
            }
        }
    }
    ~NoProxyEnvironment()
    {
        for (auto const& [name, value] : saved_) {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    }
    NoProxyEnvironment(NoProxyEnvironment const&) = delete;
    NoProxyEnvironment& operator=(NoProxyEnvironment const&) = delete;

private:
    std::vector<std::pair<std::string, std::string>> saved_;
};

} // namespace perchftp::test
