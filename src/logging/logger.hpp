#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace perchftp::logging {

enum class EventLevel : std::uint32_t {
    Info = 0,
    Warning = 1,
    Error = 2,
};

struct LogEvent {
    EventLevel level = EventLevel::Info;
    std::string message; // already masked
    std::uint64_t timestampMs = 0;
};

// The process-wide event log: a bounded in-memory history, observers and an export.
// Every message is masked before anything else sees it. Thread-safe.
class Logger {
public:
    using Observer = std::function<void(LogEvent const&)>;

    static Logger& global();

    // Observers run outside the lock, on the emitting thread; one may call back into the logger.
    // An observer's exception leaves emit, and the observers behind it miss that event.
    void emit(EventLevel level, std::string const& message);
    void info(std::string const& message);
    void warning(std::string const& message);
    void error(std::string const& message);

    std::vector<LogEvent> history() const;
    // Events whose level, taken as its low byte, is at least minimumLevel.
    std::vector<LogEvent> history(unsigned char minimumLevel) const;

    void addObserver(Observer observer);
    // A limit of 0 keeps no history at all; observers are still told.
    void setHistoryLimit(unsigned long limit);

    // One line per event, "timestampMs,level,message", nothing escaped. False for an empty path
    // or a file that can't be opened; the file is truncated first.
    bool exportToFile(std::string const& path) const;

private:
    mutable std::mutex mutex_;
    std::vector<LogEvent> history_;
    std::vector<Observer> observers_;
    unsigned long historyLimit_ = 2500;
};

// Logs at level Info on the process-wide logger; a null pointer is the empty text.
void emitInfo(char const* message);

} // namespace perchftp::logging
