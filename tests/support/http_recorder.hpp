#pragma once

#include <mutex>
#include <string>
#include <thread>
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

} // namespace perchftp::test
