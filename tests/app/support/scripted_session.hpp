#pragma once

#include "protocol/remote_session.hpp"

#include <map>
#include <string>
#include <vector>

namespace perchftp::test {

// A session with a server that lives in memory: it says whether it is connected, answers list()
// from a table of paths, and records every path it was asked to list. For the shell's own logic
// only; the protocol layer has its own tests against real servers.
class ScriptedSession final : public protocol::IRemoteSession {
public:
    bool connected = true;
    std::map<std::string, std::vector<protocol::RemoteEntry>> listings; // a missing path fails
    std::vector<std::string> listedPaths;
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
    protocol::SessionResult list(std::string const& path, std::vector<protocol::RemoteEntry>& entries) override
    {
        listedPaths.push_back(path);
        auto const found = listings.find(path);
        if (found == listings.end()) {
            return {false, 1, "ftp: list failed for '" + path + "'"};
        }
        entries = found->second;
        return {true, 0, "ftp: listed"};
    }
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
