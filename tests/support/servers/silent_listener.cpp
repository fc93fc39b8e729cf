#include "support/servers/silent_listener.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace perchftp::test {

SilentListener::SilentListener()
{
    socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    if (socket_ < 0 || ::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(socket_, 0) != 0 || ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        if (socket_ >= 0) {
            ::close(socket_);
        }
        throw std::runtime_error("cannot listen on 127.0.0.1");
    }
    port_ = ntohs(address.sin_port);
}

SilentListener::~SilentListener()
{
    ::close(socket_);
}

} // namespace perchftp::test
