// The queue view's record of what it shows: the counts kept as changes come in, and which changes
// call for work at all.
#include "app/queue/queue_view_mirror.hpp"

#include <gtest/gtest.h>

namespace perchftp::app {
namespace {

using transfer::JobState;
using transfer::TransferQueueItem;

TransferQueueItem job(std::uint64_t id, JobState state, double progress = 0.0)
{
    TransferQueueItem item;
    item.id = id;
    item.state = state;
    item.progressPercent = progress;
    item.timestamp = "2026-11-23 10:00:00";
    return item;
}

TEST(QueueViewMirror, CountsFollowEachChangeAsAWholeCountWould)
{
    QueueViewMirror mirror;
    mirror.reset({job(4, JobState::Queued), job(5, JobState::Failed), job(6, JobState::Skipped)});
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{3, 0, 0, 1}));

    std::size_t row = 99;
    EXPECT_EQ(mirror.apply(job(4, JobState::Running, 10.0), row), QueueViewMirror::Change::Row);
    EXPECT_EQ(row, 0u);
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{3, 1, 0, 1}));
    EXPECT_EQ(mirror.apply(job(4, JobState::Completed, 100.0), row), QueueViewMirror::Change::Row);
    EXPECT_EQ(mirror.apply(job(5, JobState::Completed, 100.0), row), QueueViewMirror::Change::Row);
    EXPECT_EQ(row, 1u);
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{3, 0, 2, 0}));
    EXPECT_EQ(mirror.jobs()[1].state, JobState::Completed);
}

TEST(QueueViewMirror, ARecordThatLooksAsShownNeedsNoWork)
{
    QueueViewMirror mirror;
    mirror.reset({job(1, JobState::Running, 50.0)});
    std::size_t row = 0;
    TransferQueueItem same = job(1, JobState::Running, 50.0);
    same.transferredBytes = 12345; // not shown anywhere
    EXPECT_EQ(mirror.apply(same, row), QueueViewMirror::Change::None);
    TransferQueueItem restamped = same;
    restamped.timestamp = "2026-11-23 10:00:01";
    EXPECT_EQ(mirror.apply(restamped, row), QueueViewMirror::Change::Row) << "the time is shown";
}

TEST(QueueViewMirror, AJobThatIsNotShownNeedsAWholeReload)
{
    QueueViewMirror mirror;
    std::size_t row = 0;
    EXPECT_EQ(mirror.apply(job(1, JobState::Queued), row), QueueViewMirror::Change::Unknown);
    mirror.reset({job(7, JobState::Queued), job(8, JobState::Queued)});
    EXPECT_EQ(mirror.apply(job(6, JobState::Running), row), QueueViewMirror::Change::Unknown);
    EXPECT_EQ(mirror.apply(job(9, JobState::Running), row), QueueViewMirror::Change::Unknown);
    EXPECT_EQ(mirror.counts(), (QueueViewMirror::Counts{2, 0, 0, 0}));
}

} // namespace
} // namespace perchftp::app
