#include "transfer/transfer_queue.hpp"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace perchftp::transfer {
namespace {

std::uint64_t enqueueUpload(TransferQueue& queue, int priority = 1, int maxRetries = 3)
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

TEST(TransferQueueItemDefaults, ADefaultRecordHoldsTheDocumentedDefaults)
{
    TransferQueueItem const item;
    EXPECT_EQ(item.id, 0U);
    EXPECT_EQ(item.type, JobType::Upload);
    EXPECT_EQ(item.state, JobState::Queued);
    EXPECT_EQ(item.priority, 0);
    EXPECT_EQ(item.retryCount, 0);
    EXPECT_EQ(item.maxRetries, 3);
    EXPECT_EQ(item.progressPercent, 0.0);
    EXPECT_EQ(item.transferredBytes, 0U);
    EXPECT_EQ(item.totalBytes, 0U);
    EXPECT_TRUE(item.protocolName.empty() && item.localPath.empty() && item.remotePath.empty());
    EXPECT_TRUE(item.error.empty() && item.timestamp.empty());
    EXPECT_FALSE(item.reservedFlag);
}

TEST(TransferQueueEnqueue, CopiesTheArgumentsStampsTheJobAndStartsItQueued)
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
}

TEST(TransferQueueEnqueue, RaisesAZeroOrNegativeRetryLimitToOne)
{
    TransferQueue queue;
    EXPECT_EQ(job(queue, enqueueUpload(queue, 1, 0)).maxRetries, 1);
    EXPECT_EQ(job(queue, enqueueUpload(queue, 1, -5)).maxRetries, 1);
    EXPECT_EQ(job(queue, enqueueUpload(queue, 1, 1)).maxRetries, 1);
}

TEST(TransferQueueEnqueue, RefusesAnEmptyPathOrProtocolWithoutUsingUpAnId)
{
    TransferQueue queue;
    int notifications = 0;
    queue.observe(0, [&notifications](TransferQueueItem const&) { ++notifications; });

    EXPECT_EQ(enqueueUpload(queue), 1U);
    EXPECT_EQ(queue.enqueue(JobType::Upload, "ftp", "", "/r", 0, 3), 0U);
    EXPECT_EQ(queue.enqueue(JobType::Upload, "ftp", "/l", "", 0, 3), 0U);
    EXPECT_EQ(queue.enqueue(JobType::Upload, "", "/l", "/r", 0, 3), 0U);
    EXPECT_EQ(enqueueUpload(queue), 2U);
    EXPECT_EQ(queue.snapshot().size(), 2U);
    EXPECT_EQ(notifications, 2);
}

TEST(TransferQueueEnqueue, IdsKeepRisingAfterClear)
{
    TransferQueue queue;
    enqueueUpload(queue);
    enqueueUpload(queue);
    queue.clear();
    EXPECT_TRUE(queue.snapshot().empty());
    EXPECT_EQ(enqueueUpload(queue), 3U);
}

TEST(TransferQueueEnqueue, APausedQueueStartsJobsPausedAndProgressKeepsThemPaused)
{
    TransferQueue queue;
    EXPECT_TRUE(queue.setQueuePaused(true));
    EXPECT_TRUE(queue.isQueuePaused());
    auto const id = enqueueUpload(queue);
    EXPECT_EQ(job(queue, id).state, JobState::Paused);

    ASSERT_TRUE(queue.simulateProgress(id, 25, 50));
    auto const item = job(queue, id);
    EXPECT_EQ(item.state, JobState::Paused);
    EXPECT_EQ(item.transferredBytes, 25U);
    EXPECT_EQ(item.progressPercent, 50.0);

    // Lifting the flag leaves the job alone and only affects later jobs.
    EXPECT_TRUE(queue.setQueuePaused(false));
    EXPECT_EQ(job(queue, id).state, JobState::Paused);
    EXPECT_EQ(job(queue, enqueueUpload(queue)).state, JobState::Queued);
}

TEST(TransferQueueProgress, ClampsTransferredBytesToTheTotal)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 500, 100));
    auto const item = job(queue, id);
    EXPECT_EQ(item.transferredBytes, 100U);
    EXPECT_EQ(item.totalBytes, 100U);
    EXPECT_EQ(item.progressPercent, 100.0);
    EXPECT_EQ(item.state, JobState::Running);
}

TEST(TransferQueueProgress, ATotalOfZeroIsRefusedAndTheEarlierFiguresStay)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 1, 3));
    EXPECT_FALSE(queue.simulateProgress(id, 2, 0));
    auto const item = job(queue, id);
    EXPECT_EQ(item.transferredBytes, 1U);
    EXPECT_EQ(item.totalBytes, 3U);
    EXPECT_DOUBLE_EQ(item.progressPercent, 100.0 / 3.0);
}

TEST(TransferQueueProgress, HugeByteCountsStayWithinAHundredPercent)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    auto const max = ~std::uint64_t{0};
    ASSERT_TRUE(queue.simulateProgress(id, max, max));
    EXPECT_EQ(job(queue, id).progressPercent, 100.0);
    ASSERT_TRUE(queue.simulateProgress(id, max - 1, max));
    EXPECT_LE(job(queue, id).progressPercent, 100.0);
}

TEST(TransferQueueComplete, SuccessFillsTheProgressAndIgnoresTheMessage)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.complete(id, true, "anything"));
    auto const item = job(queue, id);
    EXPECT_EQ(item.state, JobState::Completed);
    EXPECT_EQ(item.progressPercent, 100.0);
    EXPECT_EQ(item.transferredBytes, 0U);
    EXPECT_EQ(item.totalBytes, 0U);
    EXPECT_EQ(item.error, "");
}

TEST(TransferQueueComplete, SuccessAfterProgressSetsTransferredToTheLastTotal)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 10, 80));
    ASSERT_TRUE(queue.complete(id, false, "broken pipe"));
    ASSERT_TRUE(queue.complete(id, true, ""));
    auto const item = job(queue, id);
    EXPECT_EQ(item.transferredBytes, 80U);
    EXPECT_EQ(item.error, "");
}

TEST(TransferQueueComplete, FailureKeepsTheFiguresAndRecordsTheMessageOrADefault)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 40, 80));
    ASSERT_TRUE(queue.complete(id, false, ""));
    auto item = job(queue, id);
    EXPECT_EQ(item.state, JobState::Failed);
    EXPECT_EQ(item.error, "transfer failed");
    EXPECT_EQ(item.transferredBytes, 40U);
    EXPECT_EQ(item.progressPercent, 50.0);

    ASSERT_TRUE(queue.complete(id, false, "550 Permission denied"));
    EXPECT_EQ(job(queue, id).error, "550 Permission denied");
}

TEST(TransferQueueTerminalStates, CancelOverrulesCompletedAndEmptiesOnlyTheError)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 5, 5));
    ASSERT_TRUE(queue.complete(id, true, ""));
    ASSERT_TRUE(queue.cancel(id));
    auto const item = job(queue, id);
    EXPECT_EQ(item.state, JobState::Canceled);
    EXPECT_EQ(item.progressPercent, 100.0);
    EXPECT_EQ(item.transferredBytes, 5U);

    ASSERT_TRUE(queue.skip(id, ""));
    EXPECT_EQ(job(queue, id).error, "");
    ASSERT_TRUE(queue.skip(id, "target exists"));
    EXPECT_EQ(job(queue, id).error, "target exists");
}

TEST(TransferQueueRetry, KeepsTheOldFiguresUntilTheNextProgressReport)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 30, 120));
    ASSERT_TRUE(queue.complete(id, false, "reset"));
    ASSERT_TRUE(queue.retry(id));
    auto const item = job(queue, id);
    EXPECT_EQ(item.state, JobState::Queued);
    EXPECT_EQ(item.transferredBytes, 30U);
    EXPECT_EQ(item.totalBytes, 120U);
    EXPECT_EQ(item.progressPercent, 25.0);
}

TEST(TransferQueueObservers, ObserveCallsOnlyTheNewObserverOnceForAKnownJob)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    auto const stamp = job(queue, id).timestamp;
    std::vector<std::uint64_t> first;
    std::vector<std::uint64_t> second;
    ASSERT_TRUE(queue.observe(id, [&first](TransferQueueItem const& item) { first.push_back(item.id); }));
    ASSERT_TRUE(queue.observe(id, [&second](TransferQueueItem const& item) { second.push_back(item.id); }));
    EXPECT_EQ(first, std::vector<std::uint64_t>{id});
    EXPECT_EQ(second, std::vector<std::uint64_t>{id});
    EXPECT_EQ(job(queue, id).timestamp, stamp);

    auto const other = enqueueUpload(queue);
    EXPECT_EQ(first, (std::vector<std::uint64_t>{id, other}));
    EXPECT_EQ(second, (std::vector<std::uint64_t>{id, other}));
}

TEST(TransferQueueObservers, AnUnknownIdIsReportedButTheObserverStaysRegistered)
{
    TransferQueue queue;
    int calls = 0;
    EXPECT_FALSE(queue.observe(42, [&calls](TransferQueueItem const&) { ++calls; }));
    EXPECT_EQ(calls, 0);
    enqueueUpload(queue);
    EXPECT_EQ(calls, 1);
}

TEST(TransferQueueObservers, AnEmptyCallableIsRefusedAndNeverStored)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    EXPECT_FALSE(queue.observe(id, TransferQueue::Observer{}));
    EXPECT_TRUE(queue.pause(id)); // would throw bad_function_call if the empty one had been kept
}

TEST(TransferQueueObservers, ClearKeepsObserversAndNotifiesNobody)
{
    TransferQueue queue;
    int calls = 0;
    queue.observe(0, [&calls](TransferQueueItem const&) { ++calls; });
    auto const id = enqueueUpload(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 1, 2)); // a Running job goes as well
    calls = 0;
    queue.clear();
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(queue.snapshot().empty());
    enqueueUpload(queue);
    EXPECT_EQ(calls, 1);
}

TEST(TransferQueueObservers, ObserversRunInOrderOfRegistrationAndSeeTheChangedRecord)
{
    TransferQueue queue;
    auto const id = enqueueUpload(queue);
    std::vector<std::string> seen;
    queue.observe(0, [&seen](TransferQueueItem const& item) { seen.push_back("a:" + item.error); });
    queue.observe(0, [&seen](TransferQueueItem const& item) { seen.push_back("b:" + item.error); });
    ASSERT_TRUE(queue.complete(id, false, "quota"));
    EXPECT_EQ(seen, (std::vector<std::string>{"a:quota", "b:quota"}));
}

TEST(TransferQueueObservers, AnObserverThatChangesTheQueueDoesNotPullTheRecordAwayFromTheOthers)
{
    TransferQueue queue;
    std::vector<std::uint64_t> seenByLater;
    bool reentered = false;
    queue.observe(0, [&](TransferQueueItem const&) {
        if (!reentered) {
            reentered = true;
            for (int i = 0; i < 100; ++i) {
                enqueueUpload(queue);
            }
            queue.observe(0, [](TransferQueueItem const&) {});
        }
    });
    queue.observe(0, [&seenByLater](TransferQueueItem const& item) { seenByLater.push_back(item.id); });
    EXPECT_EQ(enqueueUpload(queue), 1U);
    ASSERT_FALSE(seenByLater.empty());
    EXPECT_EQ(seenByLater.back(), 1U);
    EXPECT_EQ(queue.snapshot().size(), 101U);
}

TEST(TransferQueueObservers, AnObserverThatClearsTheQueueEndsTheNotification)
{
    TransferQueue queue;
    int laterCalls = 0;
    queue.observe(0, [&queue](TransferQueueItem const&) { queue.clear(); });
    queue.observe(0, [&laterCalls](TransferQueueItem const&) { ++laterCalls; });
    EXPECT_EQ(enqueueUpload(queue), 1U);
    EXPECT_EQ(laterCalls, 0);
    EXPECT_TRUE(queue.snapshot().empty());
}

TEST(TransferQueueLookup, FindsEveryJobAmongManyAfterAClear)
{
    TransferQueue queue;
    for (int i = 0; i < 10; ++i) {
        enqueueUpload(queue);
    }
    queue.clear();
    std::vector<std::uint64_t> ids;
    for (int i = 0; i < 1000; ++i) {
        ids.push_back(enqueueUpload(queue));
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

TEST(TransferQueueService, ForwardsTheInterfaceToItsQueueAndExposesTheRest)
{
    TransferQueue seeded;
    seeded.setQueuePaused(true);
    TransferQueueService service(std::move(seeded));
    ITransferQueue& api = service;

    auto const id = api.enqueue(JobType::Upload, "ftps", "/l", "/r", 1, 3);
    EXPECT_EQ(id, 1U);
    EXPECT_EQ(service.queue().snapshot().front().state, JobState::Paused);
    EXPECT_TRUE(api.resume(id));
    EXPECT_TRUE(api.pause(id));
    EXPECT_TRUE(service.queue().complete(id, false, "x"));
    EXPECT_TRUE(api.retry(id));
    EXPECT_TRUE(api.cancel(id));
    EXPECT_FALSE(api.pause(id));
    TransferQueueService const& constant = service;
    EXPECT_EQ(constant.queue().snapshot().front().state, JobState::Canceled);

    TransferQueueService moved;
    moved = std::move(service);
    EXPECT_EQ(moved.queue().snapshot().size(), 1U);
    EXPECT_EQ(moved.enqueue(JobType::Download, "ftp", "/l", "/r", 1, 3), 2U);
}

} // namespace
} // namespace perchftp::transfer
