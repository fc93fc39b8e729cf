#include "support/http_recorder.hpp"

#include "support/servers/child_process.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>

namespace perchftp::test {

HttpRecorder::HttpRecorder()
    : socket_(listenOnLoopback(port_))
    , thread_([this] { serve(); })
{
}

HttpRecorder::~HttpRecorder()
{
    ::shutdown(socket_, SHUT_RDWR); // ends the accept of serve()
    thread_.join();
    ::close(socket_);
}

void HttpRecorder::serve()
{
    for (int connection; (connection = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
        answer(connection);
        ::close(connection);
    }
}

void HttpRecorder::answer(int connection)
{
    std::string received;
    char buffer[4096];
    auto const readMore = [&] {
        ssize_t const n = ::recv(connection, buffer, sizeof(buffer), 0);
        received.append(buffer, n > 0 ? static_cast<std::size_t>(n) : 0);
        return n > 0;
    };
    std::size_t headEnd = std::string::npos;
    while ((headEnd = received.find("\r\n\r\n")) == std::string::npos) {
        if (!readMore()) {
            return;
        }
    }
    Request request;
    std::string const head = received.substr(0, headEnd + 2);
    std::size_t const lineEnd = head.find("\r\n");
    std::string const requestLine = head.substr(0, lineEnd);
    request.method = requestLine.substr(0, requestLine.find(' '));
    request.path = requestLine.substr(request.method.size() + 1, requestLine.rfind(' ') - request.method.size() - 1);
    request.headers = head.substr(lineEnd + 2);
    std::size_t const lengthAt = head.find("Content-Length: ");
    std::size_t const bodyLength = lengthAt == std::string::npos ? 0 : std::stoul(head.substr(lengthAt + 16));
    while (received.size() < headEnd + 4 + bodyLength && readMore()) {
    }
    request.body = received.substr(headEnd + 4, bodyLength);

    int status = 0;
    {
        std::lock_guard const lock(mutex_);
        requests_.push_back(std::move(request));
        status = status_;
    }
    std::string const body = status < 200 ? "" : "{\"accepted\":true}";
    std::string reply = "HTTP/1.1 " + std::to_string(status) + " Status\r\nConnection: close\r\n";
    if (status >= 300 && status < 400) {
        reply += "Location: /redirected\r\n";
    }
    if (status >= 200) {
        reply += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    }
    reply += "\r\n" + body;
    (void)::send(connection, reply.data(), reply.size(), MSG_NOSIGNAL);
}

std::string HttpRecorder::url(std::string const& path) const
{
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

void HttpRecorder::setStatus(int status)
{
    std::lock_guard const lock(mutex_);
    status_ = status;
}

std::vector<HttpRecorder::Request> HttpRecorder::requests() const
{
    std::lock_guard const lock(mutex_);
    return requests_;
}

NoProxyEnvironment::NoProxyEnvironment()
{
    for (auto const* name : {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                             "no_proxy", "NO_PROXY"}) {
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
