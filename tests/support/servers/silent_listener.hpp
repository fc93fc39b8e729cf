#pragma once

namespace perchftp::test {

// A TCP port on 127.0.0.1 that listens but never accepts: the kernel completes the handshake of
// the first connection, which then hears nothing at all, and leaves later ones unanswered.
class SilentListener {
public:
    SilentListener();
    ~SilentListener();
    SilentListener(SilentListener const&) = delete;
    SilentListener& operator=(SilentListener const&) = delete;

    int port() const { return port_; }

private:
    int socket_ = -1;
    int port_ = 0;
};

} // namespace perchftp::test
