#include "transfer/transfer_queue.hpp"

#include <algorithm>
#include <ctime>
#include <utility>

namespace perchftp::transfer {
namespace {

bool isTerminalState(JobState state)
{
    switch (state) {
    case JobState::Skipped:
    case JobState::Completed:
    case JobState::Failed:
    case JobState::Canceled:
        return true;
    case JobState::Queued:
    case JobState::Running:
    case JobState::Paused:
        return false;
    }
    return false;
}

// One second is the resolution, so the text is formatted once per second and reused.
std::string const& currentTimestamp()
{
    thread_local std::time_t formattedSecond = -1;
    thread_local std::string formatted;

    std::time_t const now = std::time(nullptr);
    if (now == formattedSecond) {
        return formatted;
    }
    std::tm local{};
    char buffer[32];
    std::size_t const length =
        ::localtime_r(&now, &local) ? std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S", &local) : 0;
    formatted.assign(buffer, length);
    formattedSecond = now;
    return formatted;
}

} // namespace

std::uint64_t TransferQueue::enqueue(JobType type, std::string const& protocolName, std::string const& localPath,
    std::string const& remotePath, int priority, int maxRetries)
{
    if (localPath.empty() || remotePath.empty() || protocolName.empty()) {
        return 0;
    }
    TransferQueueItem item;
    item.id = nextId_++;
    item.type = type;
    item.protocolName = protocolName;
    item.localPath = localPath;
    item.remotePath = remotePath;
    item.priority = priority;
    item.maxRetries = std::max(1, maxRetries);
    item.state = queuePaused_ ? JobState::Paused : JobState::Queued;
    item.timestamp = currentTimestamp();
    items_.push_back(std::move(item));

    auto const id = items_.back().id;
    notifyObservers(items_.back());
    return id;
}

bool TransferQueue::pause(std::uint64_t id)
{
    auto* item = find(id);
    if (!item || isTerminalState(item->state)) {
        return false;
    }
    item->state = JobState::Paused;
    return stampAndNotify(*item);
}

bool TransferQueue::resume(std::uint64_t id)
{
    auto* item = find(id);
    if (!item || isTerminalState(item->state)) {
        return false;
    }
    item->state = JobState::Queued;
    return stampAndNotify(*item);
}

bool TransferQueue::cancel(std::uint64_t id)
{
    auto* item = find(id);
    if (!item) {
        return false;
    }
    item->state = JobState::Canceled;
    item->error.clear();
    return stampAndNotify(*item);
}

bool TransferQueue::skip(std::uint64_t id, std::string const& reason)
{
    auto* item = find(id);
    if (!item) {
        return false;
    }
    item->state = JobState::Skipped;
    item->error = reason;
    return stampAndNotify(*item);
}

bool TransferQueue::retry(std::uint64_t id)
{
    auto* item = find(id);
    if (!item || item->state != JobState::Failed || item->retryCount >= item->maxRetries) {
        return false;
    }
    ++item->retryCount;
    item->state = JobState::Queued;
    item->error.clear();
    return stampAndNotify(*item);
}

bool TransferQueue::simulateProgress(std::uint64_t id, std::uint64_t transferred, std::uint64_t total)
{
    auto* item = find(id);
    if (!item || isTerminalState(item->state) || total == 0) {
        return false;
    }
    item->totalBytes = total;
    item->transferredBytes = std::min(transferred, total);
    item->progressPercent = std::min(100.0,
        static_cast<double>(item->transferredBytes) * 100.0 / static_cast<double>(item->totalBytes));
    if (item->state == JobState::Queued) {
        item->state = JobState::Running;
    }
    return stampAndNotify(*item);
}

bool TransferQueue::complete(std::uint64_t id, bool success, std::string const& message)
{
    auto* item = find(id);
    if (!item) {
        return false;
    }
    if (success) {
        item->state = JobState::Completed;
        item->progressPercent = 100.0;
        item->transferredBytes = item->totalBytes;
        item->error.clear();
    } else {
        item->state = JobState::Failed;
        item->error = message.empty() ? "transfer failed" : message;
    }
    return stampAndNotify(*item);
}

bool TransferQueue::observe(std::uint64_t id, Observer callable)
{
    if (!callable) {
        return false;
    }
    observers_.push_back(std::move(callable));
    auto const* item = find(id);
    if (!item) {
        return false;
    }
    observers_.back()(*item);
    return true;
}

void TransferQueue::clear()
{
    items_.clear();
    ++clearCount_;
}

std::vector<TransferQueueItem> TransferQueue::snapshot() const
{
    return {items_.begin(), items_.end()};
}

std::vector<std::uint64_t> TransferQueue::scheduleOrder() const
{
    std::vector<std::uint64_t> order;
    order.reserve(items_.size());
    for (auto const& item : items_) {
        if (!isTerminalState(item.state)) {
            order.push_back(item.id);
        }
    }
    std::stable_sort(order.begin(), order.end(), [this](std::uint64_t a, std::uint64_t b) {
        auto const* first = find(a);
        auto const* second = find(b);
        if (!first || !second) {
            return a < b;
        }
        if (first->priority != second->priority) {
            return first->priority > second->priority;
        }
        return first->id < second->id;
    });
    return order;
}

bool TransferQueue::setQueuePaused(bool paused)
{
    queuePaused_ = paused;
    return true;
}

bool TransferQueue::isQueuePaused() const
{
    return queuePaused_;
}

TransferQueueItem* TransferQueue::find(std::uint64_t id)
{
    return const_cast<TransferQueueItem*>(std::as_const(*this).find(id));
}

// Jobs leave only all at once, by clear, and each enqueue appends the next id: the ids held form
// one unbroken run, so a job's place follows from its id.
TransferQueueItem const* TransferQueue::find(std::uint64_t id) const
{
    if (items_.empty() || id < items_.front().id || id - items_.front().id >= items_.size()) {
        return nullptr;
    }
    auto const& item = items_[id - items_.front().id];
    return item.id == id ? &item : nullptr;
}

void TransferQueue::notifyObservers(TransferQueueItem const& item) const
{
    // Observers registered during this notification wait for the next change; a clear made by an
    // observer destroys the record, so nobody after it may see that record.
    auto const count = observers_.size();
    auto const clearsBefore = clearCount_;
    for (std::size_t index = 0; index < count && clearCount_ == clearsBefore; ++index) {
        if (observers_[index]) {
            observers_[index](item);
        }
    }
}

bool TransferQueue::stampAndNotify(TransferQueueItem& item)
{
    item.timestamp = currentTimestamp();
    notifyObservers(item);
    return true;
}

TransferQueueService::TransferQueueService(TransferQueue queue)
    : queue_(std::move(queue))
{
}

std::uint64_t TransferQueueService::enqueue(JobType type, std::string const& protocolName,
    std::string const& localPath, std::string const& remotePath, int priority, int maxRetries)
{
    return queue_.enqueue(type, protocolName, localPath, remotePath, priority, maxRetries);
}

bool TransferQueueService::pause(std::uint64_t id)
{
    return queue_.pause(id);
}

bool TransferQueueService::resume(std::uint64_t id)
{
    return queue_.resume(id);
}

bool TransferQueueService::cancel(std::uint64_t id)
{
    return queue_.cancel(id);
}

bool TransferQueueService::retry(std::uint64_t id)
{
    return queue_.retry(id);
}

} // namespace perchftp::transfer
