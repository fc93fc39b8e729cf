#include "session_test_support.hpp"


namespace perchftp::test {

using protocol::TransferEventType;

protocol::TransferCallback EventRecorder::callback()
{
    return [this](TransferEventType type, protocol::TransferProgress const& progress) {
        events_.push_back({type, progress.path, progress.transferred, progress.total});
    };
}

std::vector<TransferEventType> EventRecorder::shape() const
{
    std::vector<TransferEventType> types;
    for (RecordedEvent const& event : events_) {
        if (event.type == TransferEventType::Progress && !types.empty() && types.back() == TransferEventType::Progress) {
            continue;
        }
        types.push_back(event.type);
    }
    return types;
}

std::vector<RecordedEvent> EventRecorder::progress() const
{
    std::vector<RecordedEvent> reports;
    for (RecordedEvent const& event : events_) {
        if (event.type == TransferEventType::Progress) {
            reports.push_back(event);
        }
    }
    return reports;
}

std::unique_ptr<protocol::IRemoteSession> makeSession(char const* protocolName)
{
    return std::unique_ptr<protocol::IRemoteSession>(protocol::ProtocolFactory::create(protocolName));
}

std::string patternedBytes(std::size_t size)
{
    std::string bytes(size, '\0');
    std::uint32_t state = 2463534242u;
    for (char& byte : bytes) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        byte = static_cast<char>(state & 0xff);
    }
    return bytes;
}

} // namespace perchftp::test
