#include "protocol/curl/orderly_close.hpp"

#include <chrono>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace perchftp::protocol::curl::detail {

int closeSocketInOrder(void*, curl_socket_t socket)
{
    using Clock = std::chrono::steady_clock;
    auto const deadline = Clock::now() + std::chrono::seconds(1);
    if (::shutdown(socket, SHUT_WR) == 0) {
        char discarded[4096];
        for (;;) {
            auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            pollfd readable{socket, POLLIN, 0};
            if (left <= 0 || ::poll(&readable, 1, static_cast<int>(left)) <= 0
                || ::recv(socket, discarded, sizeof(discarded), 0) <= 0) {
                break;
            }
        }
    }
    return ::close(socket);
}

} // namespace perchftp::protocol::curl::detail
