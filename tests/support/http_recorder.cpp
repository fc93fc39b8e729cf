#include "support/http_recorder.hpp"

#include "support/servers/child_process.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <sstream>

namespace perchftp::test {

HttpRecorder::HttpRecorder()
    : socket_(listenOnLoopback(port_))
    , thread_([this] {
        for (int connection; (connection = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
            answer(connection);
            ::close(connection);
        }
    })
{
}

HttpRecorder::~HttpRecorder()
{
    ::shutdown(socket_, SHUT_RDWR); // ends the accept loop
    thread_.join();
    ::close(socket_);
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
    std::istringstream(head) >> request.method >> request.path;
    request.headers = head.substr(head.find("\r\n") + 2);
    std::size_t const lengthAt = head.find("Content-Length: ");
    std::size_t const bodyLength = lengthAt == std::string::npos ? 0 : std::stoul(head.substr(lengthAt + 16));
    while (received.size() < headEnd + 4 + bodyLength && readMore()) {
    }
    request.body = received.substr(headEnd + 4, bodyLength);

    std::lock_guard const lock(mutex_);
    requests_.push_back(std::move(request));
    std::string const reply = "HTTP/1.1 " + std::to_string(status_) + " Status\r\nConnection: close\r\n"
                              "Location: /redirected\r\nContent-Length: 17\r\n\r\n{\"accepted\":true}";
    (void)::send(connection, reply.data(), reply.size(), MSG_NOSIGNAL);
}

} // namespace perchftp::test
