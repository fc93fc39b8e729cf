#include "app/queue/queue_view_mirror.hpp"

namespace perchftp::app {

namespace {

// The fields that a queue row and the summary are made of; the others never change or are not shown.
bool showsTheSame(transfer::TransferQueueItem const& shown, transfer::TransferQueueItem const& job)
{
    return shown.state == job.state && shown.progressPercent == job.progressPercent
        && shown.timestamp == job.timestamp;
}

} // namespace

void QueueViewMirror::reset(std::vector<transfer::TransferQueueItem> jobs)
{
    jobs_ = std::move(jobs);
    counts_ = Counts{};
    counts_.total = jobs_.size();
    for (auto const& job : jobs_) {
        count(job.state, +1);
    }
}

QueueViewMirror::Change QueueViewMirror::apply(transfer::TransferQueueItem const& job, std::size_t& row)
{
    if (jobs_.empty() || job.id < jobs_.front().id) {
        return Change::Unknown;
    }
    std::size_t const index = static_cast<std::size_t>(job.id - jobs_.front().id);
    if (index >= jobs_.size() || jobs_[index].id != job.id) {
        return Change::Unknown;
    }
    transfer::TransferQueueItem& shown = jobs_[index];
    if (showsTheSame(shown, job)) {
        return Change::None;
    }
    count(shown.state, -1);
    count(job.state, +1);
    shown = job;
    row = index;
    return Change::Row;
}

void QueueViewMirror::count(transfer::JobState state, int direction)
{
    auto const step = [direction](std::size_t& counter) { counter = direction > 0 ? counter + 1 : counter - 1; };
    switch (state) {
    case transfer::JobState::Running:
        step(counts_.running);
        break;
    case transfer::JobState::Completed:
        step(counts_.completed);
        break;
    case transfer::JobState::Failed:
        step(counts_.failed);
        break;
    default:
        break;
    }
}

} // namespace perchftp::app
