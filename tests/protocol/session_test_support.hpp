#pragma once

#include "protocol/protocol_factory.hpp"
#include "protocol/remote_session.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace perchftp::test {

struct RecordedEvent {
    protocol::TransferEventType type;
    std::string path;
    std::uint64_t transferred = 0;
    std::uint64_t total = 0;
};

// Collects a transfer's events; callback() hands out a callback that appends to it.
class EventRecorder {
public:
    protocol::TransferCallback callback();
    std::vector<RecordedEvent> const& events() const { return events_; }
    // The event types in order, with runs of Progress folded into one.
    std::vector<protocol::TransferEventType> shape() const;
    std::vector<RecordedEvent> progress() const;

private:
    std::vector<RecordedEvent> events_;
};

std::unique_ptr<protocol::IRemoteSession> makeSession(char const* protocolName);

// Bytes that differ from position to position, so that a shifted or truncated copy shows.
std::string patternedBytes(std::size_t size);

} // namespace perchftp::test
