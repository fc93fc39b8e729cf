#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

// The in-memory record of every upload and download of this run. The queue performs no transfer
// and starts nothing: the caller runs the transfer and reports to the queue, which changes the
// job's state, stamps it and tells its observers. Nothing is persisted.
namespace perchftp::transfer {

enum class JobType : std::uint32_t {
    Upload = 0,
    Download = 1,
};

// Skipped, Completed, Failed and Canceled are terminal; retry can still bring a job out of Failed.
enum class JobState : std::uint32_t {
    Queued = 0,
    Running = 1,
    Paused = 2,
    Skipped = 3,
    Completed = 4,
    Failed = 5,
    Canceled = 6,
};

struct TransferQueueItem {
    std::uint64_t id = 0; // never 0 for a job, never reused within the life of the queue
    JobType type = JobType::Upload;
    JobState state = JobState::Queued;
    std::string protocolName;
    std::string localPath;
    std::string remotePath;
    std::int32_t priority = 0; // larger runs earlier; unbounded
    std::int32_t retryCount = 0;
    std::int32_t maxRetries = 3;
    double progressPercent = 0.0;
    std::uint64_t transferredBytes = 0;
    std::uint64_t totalBytes = 0;
    std::string error; // why a job Failed or was Skipped; empty otherwise
    std::string timestamp; // local time of the last change, "%Y-%m-%d %H:%M:%S", for display only
    bool reservedFlag = false; // carried with the record, read and set by nobody

    bool operator==(TransferQueueItem const&) const = default;
};

// Every operation that takes an id refuses an unknown one (0 included) with false. A refused call
// changes nothing: no field, no timestamp, no notification. A call that succeeds restamps the job
// and then notifies every observer with it, also where the state stays what it was.
class TransferQueue {
public:
    using Observer = std::function<void(TransferQueueItem const&)>;

    TransferQueue() = default;
    TransferQueue(TransferQueue&&) = default;
    TransferQueue& operator=(TransferQueue&&) = default;
    TransferQueue(TransferQueue const&) = delete;
    TransferQueue& operator=(TransferQueue const&) = delete;

    // The new job's id, or 0 (and no id used up) when a path or the protocol is empty. The job
    // starts Paused while the queue is paused, Queued otherwise; maxRetries below 1 becomes 1.
    std::uint64_t enqueue(JobType type, std::string const& protocolName, std::string const& localPath,
        std::string const& remotePath, int priority, int maxRetries);

    bool pause(std::uint64_t id); // refused for a terminal job
    bool resume(std::uint64_t id); // refused for a terminal job; a Running job goes back to Queued
    bool cancel(std::uint64_t id); // from any state; empties the error
    bool skip(std::uint64_t id, std::string const& reason); // from any state; the reason may be empty
    bool retry(std::uint64_t id); // only Failed jobs with retries left; figures stay as they were

    // Records real progress: transferred is clamped to total. Refused for a terminal job or a
    // total of 0. A Queued job becomes Running; Paused and Running jobs keep their state.
    bool simulateProgress(std::uint64_t id, std::uint64_t transferred, std::uint64_t total);

    // From any state. Success fills the progress to 100 % and ignores the message; failure keeps
    // the figures and records the message, or "transfer failed" when it is empty.
    bool complete(std::uint64_t id, bool success, std::string const& message);

    // Registers an observer of every later change of every job, for the life of the queue (clear
    // keeps it). An empty callable is refused and not stored. For a known id the new observer
    // alone is called once at once with that job; for an unknown id it is kept all the same and
    // the result is false.
    bool observe(std::uint64_t id, Observer callable);

    // Forgets every job, whatever its state, and tells nobody. Ids keep rising afterwards.
    void clear();

    std::vector<TransferQueueItem> snapshot() const;

    // Ids of the jobs that can still run (Queued, Running, Paused), by priority from high to
    // low, then by id from low to high. Changes nothing.
    std::vector<std::uint64_t> scheduleOrder() const;

    // Only decides the first state of later jobs; jobs already queued keep theirs. Always true.
    bool setQueuePaused(bool paused);
    bool isQueuePaused() const;

private:
    TransferQueueItem* find(std::uint64_t id);
    TransferQueueItem const* find(std::uint64_t id) const;
    void notifyObservers(TransferQueueItem const& item) const;
    bool stampAndNotify(TransferQueueItem& item);

    // Deques, so that an observer that enqueues or observes does not move the record it was
    // given or the observer being called.
    std::deque<TransferQueueItem> items_; // ids rise by one along the sequence
    std::deque<Observer> observers_;
    bool queuePaused_ = false;
    std::uint64_t nextId_ = 1;
    std::uint64_t clearCount_ = 0; // lets a notification stop when an observer cleared the queue
};

// The transfer operations the shell reaches through the queue service.
class ITransferQueue {
public:
    virtual ~ITransferQueue() = default;
    virtual std::uint64_t enqueue(JobType type, std::string const& protocolName, std::string const& localPath,
        std::string const& remotePath, int priority, int maxRetries) = 0;
    virtual bool pause(std::uint64_t id) = 0;
    virtual bool resume(std::uint64_t id) = 0;
    virtual bool cancel(std::uint64_t id) = 0;
    virtual bool retry(std::uint64_t id) = 0;

protected:
    ITransferQueue() = default;
    ITransferQueue(ITransferQueue const&) = default;
    ITransferQueue& operator=(ITransferQueue const&) = default;
    ITransferQueue(ITransferQueue&&) = default;
    ITransferQueue& operator=(ITransferQueue&&) = default;
};

// Implements the interface over one queue; queue() reaches everything the interface does not carry.
class TransferQueueService final : public ITransferQueue {
public:
    explicit TransferQueueService(TransferQueue queue = TransferQueue());
    TransferQueueService(TransferQueueService&&) = default;
    TransferQueueService& operator=(TransferQueueService&&) = default;

    std::uint64_t enqueue(JobType type, std::string const& protocolName, std::string const& localPath,
        std::string const& remotePath, int priority, int maxRetries) override;
    bool pause(std::uint64_t id) override;
    bool resume(std::uint64_t id) override;
    bool cancel(std::uint64_t id) override;
    bool retry(std::uint64_t id) override;

    TransferQueue& queue() { return queue_; }
    TransferQueue const& queue() const { return queue_; }

private:
    TransferQueue queue_;
};

} // namespace perchftp::transfer
