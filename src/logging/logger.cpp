#include "logging/logger.hpp"

#include "logging/masking.hpp"

#include <chrono>
#include <fstream>

namespace perchftp::logging {
namespace {

Logger& loggerInstance()
{
    static Logger instance;
    return instance;
}

std::uint64_t nowEpochMs()
{
    auto const sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count());
}

void truncateHistory(std::vector<LogEvent>& history, unsigned long limit)
{
    if (limit == 0) {
        history.clear();
        return;
    }
    if (history.size() <= limit) {
        return;
    }
    history.erase(history.begin(), history.end() - static_cast<std::ptrdiff_t>(limit));
}

} // namespace

Logger& Logger::global()
{
    return loggerInstance();
}

void Logger::emit(EventLevel level, std::string const& message)
{
    LogEvent const event{level, detail::maskSensitive(message), nowEpochMs()};

    std::vector<Observer> observers;
    {
        std::lock_guard lock(mutex_);
        history_.push_back(event);
        truncateHistory(history_, historyLimit_);
        observers = observers_;
    }

    for (auto const& observer : observers) {
        if (observer) {
            observer(event);
        }
    }
}

void Logger::info(std::string const& message)
{
    emit(EventLevel::Info, message);
}

void Logger::warning(std::string const& message)
{
    emit(EventLevel::Warning, message);
}

void Logger::error(std::string const& message)
{
    emit(EventLevel::Error, message);
}

std::vector<LogEvent> Logger::history() const
{
    std::lock_guard lock(mutex_);
    return history_;
}

std::vector<LogEvent> Logger::history(unsigned char minimumLevel) const
{
    std::lock_guard lock(mutex_);
    std::vector<LogEvent> selected;
    for (auto const& event : history_) {
        if (static_cast<unsigned char>(static_cast<std::uint32_t>(event.level) & 0xFFu) >= minimumLevel) {
            selected.push_back(event);
        }
    }
    return selected;
}

void Logger::addObserver(Observer observer)
{
    std::lock_guard lock(mutex_);
    observers_.push_back(std::move(observer));
}

void Logger::setHistoryLimit(unsigned long limit)
{
    std::lock_guard lock(mutex_);
    historyLimit_ = limit;
    truncateHistory(history_, historyLimit_);
}

bool Logger::exportToFile(std::string const& path) const
{
    std::lock_guard lock(mutex_);
    if (path.empty()) {
        return false;
    }
    std::ofstream out(path, std::ios::out | std::ios::trunc);
    if (!out.is_open()) {
        return false;
    }
    for (auto const& event : history_) {
        out << event.timestampMs << ',' << static_cast<std::uint32_t>(event.level) << ',' << event.message << '\n';
    }
    return true;
}

void emitInfo(char const* message)
{
    Logger::global().info(message ? message : "");
}

} // namespace perchftp::logging
