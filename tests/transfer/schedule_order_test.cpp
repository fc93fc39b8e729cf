#include "transfer/transfer_queue.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace perchftp::transfer {
namespace {

using Ids = std::vector<std::uint64_t>;

std::uint64_t add(TransferQueue& queue, int priority)
{
    return queue.enqueue(JobType::Upload, "ftp", "/l", "/r", priority, 3);
}

TEST(TransferQueueScheduleOrder, IsEmptyForAnEmptyQueueAndForOneOfOnlyFinishedJobs)
{
    TransferQueue queue;
    EXPECT_TRUE(queue.scheduleOrder().empty());
    queue.skip(add(queue, 1), "");
    queue.complete(add(queue, 1), true, "");
    queue.complete(add(queue, 1), false, "");
    queue.cancel(add(queue, 1));
    EXPECT_TRUE(queue.scheduleOrder().empty());
}

TEST(TransferQueueScheduleOrder, OrdersByPriorityFromHighToLowThenByEnqueueOrder)
{
    TransferQueue queue;
    add(queue, 1);
    add(queue, 5);
    add(queue, 1);
    EXPECT_EQ(queue.scheduleOrder(), (Ids{2, 1, 3}));
}

TEST(TransferQueueScheduleOrder, KeepsPausedAndRunningJobsAtThePlaceTheirPriorityGives)
{
    TransferQueue queue;
    auto const queued = add(queue, 1);
    auto const paused = add(queue, 9);
    auto const running = add(queue, 4);
    queue.pause(paused);
    queue.simulateProgress(running, 1, 2);
    EXPECT_EQ(queue.scheduleOrder(), (Ids{paused, running, queued}));
}

TEST(TransferQueueScheduleOrder, ComparesPrioritiesAsSignedNumbers)
{
    TransferQueue queue;
    auto const negative = add(queue, -1);
    auto const zero = add(queue, 0);
    auto const lowest = add(queue, std::numeric_limits<int>::min());
    auto const highest = add(queue, std::numeric_limits<int>::max());
    EXPECT_EQ(queue.scheduleOrder(), (Ids{highest, zero, negative, lowest}));
}

TEST(TransferQueueScheduleOrder, ARetriedJobComesBackAtThePlaceOfItsOldId)
{
    TransferQueue queue;
    auto const first = add(queue, 2);
    auto const second = add(queue, 2);
    auto const third = add(queue, 2);
    queue.complete(first, false, "");
    EXPECT_EQ(queue.scheduleOrder(), (Ids{second, third}));
    queue.retry(first);
    EXPECT_EQ(queue.scheduleOrder(), (Ids{first, second, third}));
}

TEST(TransferQueueScheduleOrder, ChangesNothingAndGivesTheSameAnswerTwice)
{
    TransferQueue queue;
    int notifications = 0;
    queue.observe(0, [&notifications](TransferQueueItem const&) { ++notifications; });
    for (int priority : {3, -2, 3, 7, 0}) {
        add(queue, priority);
    }
    notifications = 0;
    auto const before = queue.snapshot();
    auto const order = queue.scheduleOrder();
    EXPECT_EQ(order, queue.scheduleOrder());
    EXPECT_EQ(order, (Ids{4, 1, 3, 5, 2}));
    EXPECT_EQ(notifications, 0);
    auto const after = queue.snapshot();
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(after[i].timestamp, before[i].timestamp);
        EXPECT_EQ(after[i].state, before[i].state);
    }
}

} // namespace
} // namespace perchftp::transfer
