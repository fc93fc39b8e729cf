#pragma once

#include "protocol/protocol_factory.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/temp_dir.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace perchftp::test {

using protocol::TransferEventType;

struct RecordedEvent {
    TransferEventType type;
    std::string path;
    std::uint64_t transferred = 0;
    std::uint64_t total = 0;

    bool operator==(RecordedEvent const&) const = default;
};

// Collects a transfer's events through the callback it hands out.
struct EventRecorder {
    std::vector<RecordedEvent> events;

    protocol::TransferCallback callback()
    {
        return [this](TransferEventType type, protocol::TransferProgress const& progress) {
            events.push_back({type, progress.path, progress.transferred, progress.total});
        };
    }
    // The event types in order, with runs of Progress folded into one.
    std::vector<TransferEventType> shape() const
    {
        std::vector<TransferEventType> types;
        for (auto const& event : events) {
            if (types.empty() || event.type != TransferEventType::Progress || types.back() != event.type) {
                types.push_back(event.type);
            }
        }
        return types;
    }
};

inline std::unique_ptr<protocol::IRemoteSession> makeSession(char const* protocolName)
{
    return std::unique_ptr<protocol::IRemoteSession>(protocol::ProtocolFactory::create(protocolName));
}

// Bytes that differ from position to position with a period of 251, so that a shifted or
// truncated copy shows.
inline std::string patternedBytes(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i % 251);
    }
    return bytes;
}

} // namespace perchftp::test
