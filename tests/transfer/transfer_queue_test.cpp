#include "transfer/transfer_queue.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <regex>
#include <string>
#include <vector>

namespace perchftp::transfer {
namespace {

using Ids = std::vector<std::uint64_t>;

std::uint64_t add(TransferQueue& queue, int priority = 1, int maxRetries = 3)
{
    return queue.enqueue(JobType::Upload, "ftp", "/home/ana/report.pdf", "/srv/report.pdf", priority, maxRetries);
}

TransferQueueItem job(TransferQueue const& queue, std::uint64_t id)
{
    for (auto const& item : queue.snapshot()) {
        if (item.id == id) {
            return item;
        }
    }
    ADD_FAILURE() << "no job " << id;
    return {};
}

TEST(TransferQueueEnqueue, CopiesTheArgumentsStampsTheJobAndRaisesTheRetryLimitToAtLeastOne)
{
    TransferQueue queue;
    auto const id = queue.enqueue(JobType::Download, "sftp", "/tmp/a.txt", "/data/a.txt", -5, 7);
    ASSERT_EQ(id, 1U);
    auto const item = job(queue, id);
    EXPECT_EQ(item.type, JobType::Download);
    EXPECT_EQ(item.state, JobState::Queued);
    EXPECT_EQ(item.protocolName, "sftp");
    EXPECT_EQ(item.localPath, "/tmp/a.txt");
    EXPECT_EQ(item.remotePath, "/data/a.txt");
    EXPECT_EQ(item.priority, -5);
    EXPECT_EQ(item.maxRetries, 7);
    EXPECT_TRUE(std::regex_match(item.timestamp, std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"))) << item.timestamp;
    EXPECT_EQ(job(queue, add(queue, 1, 0)).maxRetries, 1);
    EXPECT_EQ(job(queue, add(queue, 1, -5)).maxRetries, 1);
}

TEST(TransferQueueEnqueue, ARefusalUsesUpNoIdAndClearDoesNotResetThem)
{
    TransferQueue queue;
    int notifications = 0;
    queue.observe(0, [&notifications](TransferQueueItem const&) { ++notifications; });
    EXPECT_EQ(add(queue), 1U);
    EXPECT_EQ(queue.enqueue(JobType::Upload, "ftp", "", "/r", 0, 3), 0U);
    EXPECT_EQ(queue.enqueue(JobType::Upload, "ftp", "/l", "", 0, 3), 0U);
    EXPECT_EQ(queue.enqueue(JobType::Upload, "", "/l", "/r", 0, 3), 0U);
    EXPECT_EQ(add(queue), 2U);
    EXPECT_EQ(notifications, 2);

    queue.clear();
    EXPECT_TRUE(queue.snapshot().empty());
    EXPECT_EQ(notifications, 2); // clear tells nobody
    EXPECT_EQ(add(queue), 3U);
    EXPECT_EQ(notifications, 3); // and keeps the observers
}

TEST(TransferQueueEnqueue, APausedQueueStartsJobsPausedAndProgressKeepsThemPaused)
{
    TransferQueue queue;
    EXPECT_TRUE(queue.setQueuePaused(true));
    EXPECT_TRUE(queue.isQueuePaused());
    auto const id = add(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 25, 50));
    auto const item = job(queue, id);
    EXPECT_EQ(item.state, JobState::Paused);
    EXPECT_EQ(item.progressPercent, 50.0);

    EXPECT_TRUE(queue.setQueuePaused(false));
    EXPECT_EQ(job(queue, id).state, JobState::Paused);
    EXPECT_EQ(job(queue, add(queue)).state, JobState::Queued);
}

TEST(TransferQueueProgress, ClampsToTheTotalAndRefusesATotalOfZero)
{
    TransferQueue queue;
    auto const id = add(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 500, 100));
    auto item = job(queue, id);
    EXPECT_EQ(item.transferredBytes, 100U);
    EXPECT_EQ(item.totalBytes, 100U);
    EXPECT_EQ(item.progressPercent, 100.0);

    ASSERT_TRUE(queue.simulateProgress(id, 1, 3));
    EXPECT_FALSE(queue.simulateProgress(id, 2, 0));
    item = job(queue, id);
    EXPECT_EQ(item.transferredBytes, 1U);
    EXPECT_DOUBLE_EQ(item.progressPercent, 100.0 / 3.0);

    auto const max = std::numeric_limits<std::uint64_t>::max();
    ASSERT_TRUE(queue.simulateProgress(id, max - 1, max));
    EXPECT_LE(job(queue, id).progressPercent, 100.0);
}

TEST(TransferQueueComplete, SuccessFillsTheProgressAndFailureKeepsItWithAMessage)
{
    TransferQueue queue;
    auto const fresh = add(queue);
    ASSERT_TRUE(queue.complete(fresh, true, "anything"));
    auto item = job(queue, fresh);
    EXPECT_EQ(item.progressPercent, 100.0);
    EXPECT_EQ(item.transferredBytes, 0U);
    EXPECT_EQ(item.error, "");

    auto const partial = add(queue);
    ASSERT_TRUE(queue.simulateProgress(partial, 40, 80));
    ASSERT_TRUE(queue.complete(partial, false, ""));
    item = job(queue, partial);
    EXPECT_EQ(item.error, "transfer failed");
    EXPECT_EQ(item.transferredBytes, 40U);
    EXPECT_EQ(item.progressPercent, 50.0);
    ASSERT_TRUE(queue.complete(partial, false, "550 Permission denied"));
    EXPECT_EQ(job(queue, partial).error, "550 Permission denied");

    ASSERT_TRUE(queue.complete(partial, true, ""));
    EXPECT_EQ(job(queue, partial).transferredBytes, 80U);
    EXPECT_EQ(job(queue, partial).error, "");
    ASSERT_TRUE(queue.cancel(partial)); // overrules Completed and empties nothing but the error
    EXPECT_EQ(job(queue, partial).progressPercent, 100.0);
}

TEST(TransferQueueObservers, ObserveCallsOnlyTheNewObserverAtOnceAndKeepsOneForAnUnknownId)
{
    TransferQueue queue;
    auto const id = add(queue);
    auto const stamp = job(queue, id).timestamp;
    Ids first;
    Ids second;
    ASSERT_TRUE(queue.observe(id, [&first](TransferQueueItem const& item) { first.push_back(item.id); }));
    EXPECT_FALSE(queue.observe(42, [&second](TransferQueueItem const& item) { second.push_back(item.id); }));
    EXPECT_EQ(first, Ids{id});
    EXPECT_TRUE(second.empty());
    EXPECT_EQ(job(queue, id).timestamp, stamp);

    EXPECT_FALSE(queue.observe(id, TransferQueue::Observer{}));
    auto const other = add(queue); // an empty observer kept would throw here
    EXPECT_EQ(first, (Ids{id, other}));
    EXPECT_EQ(second, Ids{other});
}

TEST(TransferQueueObservers, AnObserverThatEnqueuesObservesOrClearsLeavesTheNotificationSound)
{
    TransferQueue queue;
    Ids seenByLater;
    bool busy = false;
    queue.observe(0, [&](TransferQueueItem const&) {
        if (busy) {
            return;
        }
        busy = true;
        for (int i = 0; i < 100; ++i) {
            add(queue); // may move records around in a growing sequence
        }
        queue.observe(0, [](TransferQueueItem const&) {});
    });
    queue.observe(0, [&seenByLater](TransferQueueItem const& item) { seenByLater.push_back(item.id); });
    EXPECT_EQ(add(queue), 1U);
    ASSERT_FALSE(seenByLater.empty());
    EXPECT_EQ(seenByLater.back(), 1U);

    TransferQueue clearing;
    int laterCalls = 0;
    clearing.observe(0, [&clearing](TransferQueueItem const&) { clearing.clear(); });
    clearing.observe(0, [&laterCalls](TransferQueueItem const&) { ++laterCalls; });
    EXPECT_EQ(add(clearing), 1U);
    EXPECT_EQ(laterCalls, 0); // the record is gone, so nobody after the clearing observer sees it
}

TEST(TransferQueueLookup, FindsEveryJobAmongManyAfterAClearAndRefusals)
{
    TransferQueue queue;
    for (int i = 0; i < 10; ++i) {
        add(queue);
    }
    queue.clear();
    Ids ids;
    for (int i = 0; i < 1000; ++i) {
        ids.push_back(add(queue));
        EXPECT_EQ(queue.enqueue(JobType::Upload, "ftp", "", "/r", 0, 3), 0U);
    }
    for (auto const id : ids) {
        ASSERT_TRUE(queue.skip(id, std::to_string(id)));
    }
    for (auto const& item : queue.snapshot()) {
        EXPECT_EQ(item.error, std::to_string(item.id));
    }
    EXPECT_FALSE(queue.skip(5, "cleared"));
    EXPECT_FALSE(queue.skip(ids.back() + 1, "not yet"));
}

TEST(TransferQueueScheduleOrder, KeepsRunnableJobsByPriorityHighToLowThenByEnqueueOrder)
{
    TransferQueue queue;
    EXPECT_TRUE(queue.scheduleOrder().empty());
    queue.skip(add(queue), "");
    queue.complete(add(queue), true, "");
    queue.complete(add(queue), false, "");
    queue.cancel(add(queue));
    EXPECT_TRUE(queue.scheduleOrder().empty());

    auto const low = add(queue, 1);
    auto const high = add(queue, 5);
    auto const lowLater = add(queue, 1);
    auto const paused = add(queue, 9);
    auto const running = add(queue, 4);
    auto const negative = add(queue, -1);
    auto const lowest = add(queue, std::numeric_limits<int>::min());
    queue.pause(paused);
    queue.simulateProgress(running, 1, 2);
    Ids const expected{paused, high, running, low, lowLater, negative, lowest};
    EXPECT_EQ(queue.scheduleOrder(), expected);

    int notifications = 0;
    queue.observe(0, [&notifications](TransferQueueItem const&) { ++notifications; });
    auto const before = queue.snapshot();
    EXPECT_EQ(queue.scheduleOrder(), expected);
    EXPECT_EQ(queue.snapshot(), before);
    EXPECT_EQ(notifications, 0);
}

TEST(TransferQueueScheduleOrder, ARetriedJobComesBackAtThePlaceOfItsOldId)
{
    TransferQueue queue;
    auto const first = add(queue, 2);
    auto const second = add(queue, 2);
    queue.complete(first, false, "");
    EXPECT_EQ(queue.scheduleOrder(), Ids{second});
    queue.retry(first);
    EXPECT_EQ(queue.scheduleOrder(), (Ids{first, second}));
}

TEST(TransferQueueService, ForwardsTheInterfaceToItsQueueAndExposesTheRest)
{
    TransferQueue seeded;
    seeded.setQueuePaused(true);
    TransferQueueService service(std::move(seeded));
    ITransferQueue& api = service;

    auto const id = api.enqueue(JobType::Upload, "ftps", "/l", "/r", 1, 3);
    EXPECT_EQ(service.queue().snapshot().front().state, JobState::Paused);
    EXPECT_TRUE(api.resume(id));
    EXPECT_TRUE(api.pause(id));
    EXPECT_TRUE(service.queue().complete(id, false, "x"));
    EXPECT_TRUE(api.retry(id));
    EXPECT_TRUE(api.cancel(id));
    EXPECT_FALSE(api.pause(id));

    TransferQueueService moved;
    moved = std::move(service);
    TransferQueueService const& constant = moved;
    EXPECT_EQ(constant.queue().snapshot().front().state, JobState::Canceled);
    EXPECT_EQ(moved.enqueue(JobType::Download, "ftp", "/l", "/r", 1, 3), 2U);
}

} // namespace
} // namespace perchftp::transfer
