#pragma once

#include "transfer/transfer_queue.hpp"

#include <cstddef>
#include <vector>

namespace perchftp::app {

// The jobs as the queue view last showed them, with the counts of its summary. It lets the
// reload of one changed job touch that job's row and the counts only, and do nothing at all when
// the job looks as it did: every observer of the queue reloads the view on every change of any
// job, so most reloads see a change that an earlier observer has shown already.
class QueueViewMirror {
public:
    struct Counts {
        std::size_t total = 0;
        std::size_t running = 0;
        std::size_t completed = 0;
        std::size_t failed = 0;

        bool operator==(Counts const&) const = default;
    };

    enum class Change {
        None,    // nothing that the view shows is different
        Row,     // one row and perhaps the counts
        Unknown, // a job that the view does not show: only a whole reload can place it
    };

    // Takes a whole snapshot of the queue.
    void reset(std::vector<transfer::TransferQueueItem> jobs);

    // Takes the new record of one job; `row` receives its index when the answer is Row.
    Change apply(transfer::TransferQueueItem const& job, std::size_t& row);

    std::vector<transfer::TransferQueueItem> const& jobs() const { return jobs_; }
    Counts const& counts() const { return counts_; }

private:
    void count(transfer::JobState state, int direction);

    std::vector<transfer::TransferQueueItem> jobs_; // queue order; ids rise by one along it
    Counts counts_;
};

} // namespace perchftp::app
