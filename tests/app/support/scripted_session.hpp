#pragma once

#include "protocol/remote_session.hpp"

#include <string>
#include <vector>

namespace perchftp::test {

// A session that only says whether it is connected and counts its disconnects; every other call
// is refused. For the shell's own logic only; the protocol layer has its own tests against real
// servers.
class ScriptedSession final : public protocol::IRemoteSession {
public:
    bool connected = true;
    int* disconnectCount = nullptr;

    protocol::SessionResult connect(std::string const&, int, std::string const&, std::string const&) override
    {
        connected = true;
        return {true, 0, "ftp: connected"};
    }
    protocol::SessionResult disconnect() override
    {
        connected = false;
        if (disconnectCount) {
            ++*disconnectCount;
        }
        return {true, 0, "ftp: disconnected"};
    }
    protocol::SessionResult list(std::string const&, std::vector<protocol::RemoteEntry>&) override { return refused(); }
    protocol::SessionResult upload(protocol::TransferParams const&, protocol::TransferCallback) override { return refused(); }
    protocol::SessionResult download(protocol::TransferParams const&, protocol::TransferCallback) override { return refused(); }
    protocol::SessionResult rename(std::string const&, std::string const&) override { return refused(); }
    protocol::SessionResult remove(std::string const&) override { return refused(); }
    protocol::SessionResult mkdir(std::string const&) override { return refused(); }
    protocol::SessionResult chmod(std::string const&, int) override { return refused(); }
    bool isConnected() const override { return connected; }

private:
    static protocol::SessionResult refused() { return {false, 1, "ftp: not supported here"}; }
};

} // namespace perchftp::test
