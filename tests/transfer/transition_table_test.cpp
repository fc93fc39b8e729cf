#include "transfer/transfer_queue.hpp"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace perchftp::transfer {
namespace {

enum class Operation { Pause, Resume, Cancel, Skip, Retry, Progress, CompleteOk, CompleteFailed };

constexpr std::array kOperations{Operation::Pause, Operation::Resume, Operation::Cancel, Operation::Skip,
    Operation::Retry, Operation::Progress, Operation::CompleteOk, Operation::CompleteFailed};

constexpr std::array kStates{JobState::Queued, JobState::Running, JobState::Paused, JobState::Skipped,
    JobState::Completed, JobState::Failed, JobState::Canceled};

// The expected state after each operation, in the order of kOperations; nullopt means refused.
// A Failed job's retry depends on its retries left and is walked separately below.
using Row = std::array<std::optional<JobState>, kOperations.size()>;

std::optional<JobState> const kRefused = std::nullopt;
std::optional<JobState> expectState(JobState state) { return state; }

Row expectedRow(JobState from)
{
    auto const queued = expectState(JobState::Queued);
    auto const running = expectState(JobState::Running);
    auto const paused = expectState(JobState::Paused);
    auto const skipped = expectState(JobState::Skipped);
    auto const completed = expectState(JobState::Completed);
    auto const failed = expectState(JobState::Failed);
    auto const canceled = expectState(JobState::Canceled);
    switch (from) {
    case JobState::Queued: return {paused, queued, canceled, skipped, kRefused, running, completed, failed};
    case JobState::Running: return {paused, queued, canceled, skipped, kRefused, running, completed, failed};
    case JobState::Paused: return {paused, queued, canceled, skipped, kRefused, paused, completed, failed};
    case JobState::Skipped: return {kRefused, kRefused, canceled, skipped, kRefused, kRefused, completed, failed};
    case JobState::Completed: return {kRefused, kRefused, canceled, skipped, kRefused, kRefused, completed, failed};
    case JobState::Failed: return {kRefused, kRefused, canceled, skipped, queued, kRefused, completed, failed};
    case JobState::Canceled: return {kRefused, kRefused, canceled, skipped, kRefused, kRefused, completed, failed};
    }
    return {};
}

bool apply(TransferQueue& queue, std::uint64_t id, Operation operation)
{
    switch (operation) {
    case Operation::Pause: return queue.pause(id);
    case Operation::Resume: return queue.resume(id);
    case Operation::Cancel: return queue.cancel(id);
    case Operation::Skip: return queue.skip(id, "skipped on purpose");
    case Operation::Retry: return queue.retry(id);
    case Operation::Progress: return queue.simulateProgress(id, 30, 60);
    case Operation::CompleteOk: return queue.complete(id, true, "");
    case Operation::CompleteFailed: return queue.complete(id, false, "disk full");
    }
    return false;
}

void bringTo(TransferQueue& queue, std::uint64_t id, JobState state)
{
    switch (state) {
    case JobState::Queued: break;
    case JobState::Running: ASSERT_TRUE(queue.simulateProgress(id, 10, 100)); break;
    case JobState::Paused: ASSERT_TRUE(queue.pause(id)); break;
    case JobState::Skipped: ASSERT_TRUE(queue.skip(id, "exists")); break;
    case JobState::Completed: ASSERT_TRUE(queue.complete(id, true, "")); break;
    case JobState::Failed: ASSERT_TRUE(queue.complete(id, false, "lost connection")); break;
    case JobState::Canceled: ASSERT_TRUE(queue.cancel(id)); break;
    }
    ASSERT_EQ(queue.snapshot().front().state, state);
}

void expectSameRecord(TransferQueueItem const& a, TransferQueueItem const& b)
{
    EXPECT_EQ(a.id, b.id);
    EXPECT_EQ(a.state, b.state);
    EXPECT_EQ(a.retryCount, b.retryCount);
    EXPECT_EQ(a.progressPercent, b.progressPercent);
    EXPECT_EQ(a.transferredBytes, b.transferredBytes);
    EXPECT_EQ(a.totalBytes, b.totalBytes);
    EXPECT_EQ(a.error, b.error);
    EXPECT_EQ(a.timestamp, b.timestamp);
}

// One queue per cell, each holding one job in the cell's starting state, with a counting observer.
struct Cell {
    JobState from = JobState::Queued;
    Operation operation = Operation::Pause;
    std::optional<JobState> expected;
    TransferQueue queue;
    std::uint64_t id = 0;
    std::shared_ptr<std::vector<TransferQueueItem>> notified = std::make_shared<std::vector<TransferQueueItem>>();
    TransferQueueItem before;
};

void waitForTheNextSecond()
{
    auto const start = std::time(nullptr);
    while (std::time(nullptr) == start) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

TEST(TransferQueueTransitions, EveryCellOfTheTableRefusesOrMovesAsSpecifiedAndRestampsOnlyOnSuccess)
{
    std::vector<std::unique_ptr<Cell>> cells;
    for (auto const from : kStates) {
        auto const row = expectedRow(from);
        for (std::size_t column = 0; column < kOperations.size(); ++column) {
            auto cell = std::make_unique<Cell>();
            cell->from = from;
            cell->operation = kOperations[column];
            cell->expected = row[column];
            cell->id = cell->queue.enqueue(JobType::Upload, "ftp", "/local/a", "/remote/a", 1, 3);
            bringTo(cell->queue, cell->id, from);
            auto notified = cell->notified;
            cell->queue.observe(0, [notified](TransferQueueItem const& item) { notified->push_back(item); });
            cell->before = cell->queue.snapshot().front();
            cells.push_back(std::move(cell));
        }
    }

    // Stamps have a resolution of one second: past a second boundary every restamp shows.
    waitForTheNextSecond();

    for (auto& cell : cells) {
        SCOPED_TRACE(testing::Message() << "from state " << static_cast<int>(cell->from) << ", operation "
                                        << static_cast<int>(cell->operation));
        bool const accepted = apply(cell->queue, cell->id, cell->operation);
        auto const after = cell->queue.snapshot().front();
        if (!cell->expected) {
            EXPECT_FALSE(accepted);
            expectSameRecord(after, cell->before);
            EXPECT_TRUE(cell->notified->empty());
            continue;
        }
        EXPECT_TRUE(accepted);
        EXPECT_EQ(after.state, *cell->expected);
        EXPECT_NE(after.timestamp, cell->before.timestamp);
        ASSERT_EQ(cell->notified->size(), 1U);
        expectSameRecord(cell->notified->front(), after);
    }
}

TEST(TransferQueueTransitions, RetryLeavesFailedOnlyWhileRetriesRemain)
{
    TransferQueue queue;
    auto const id = queue.enqueue(JobType::Download, "sftp", "/l", "/r", 0, 3);
    for (int attempt = 1; attempt <= 3; ++attempt) {
        ASSERT_TRUE(queue.complete(id, false, "timeout"));
        ASSERT_TRUE(queue.retry(id));
        auto const job = queue.snapshot().front();
        EXPECT_EQ(job.state, JobState::Queued);
        EXPECT_EQ(job.retryCount, attempt);
        EXPECT_EQ(job.error, "");
    }
    ASSERT_TRUE(queue.complete(id, false, "timeout"));
    auto const exhausted = queue.snapshot().front();
    EXPECT_FALSE(queue.retry(id));
    expectSameRecord(queue.snapshot().front(), exhausted);
}

TEST(TransferQueueTransitions, EveryOperationRefusesIdZeroAndUnknownIds)
{
    TransferQueue queue;
    ASSERT_EQ(queue.enqueue(JobType::Upload, "ftp", "/l", "/r", 0, 3), 1U);
    int notifications = 0;
    queue.observe(0, [&notifications](TransferQueueItem const&) { ++notifications; });
    for (std::uint64_t const id : {std::uint64_t{0}, std::uint64_t{2}, ~std::uint64_t{0}}) {
        for (auto const operation : kOperations) {
            EXPECT_FALSE(apply(queue, id, operation));
        }
        EXPECT_FALSE(queue.observe(id, [](TransferQueueItem const&) {}));
    }
    EXPECT_EQ(notifications, 0);
    EXPECT_EQ(queue.snapshot().front().state, JobState::Queued);
}

} // namespace
} // namespace perchftp::transfer
