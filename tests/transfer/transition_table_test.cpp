#include "transfer/transfer_queue.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

namespace perchftp::transfer {
namespace {

// Columns: pause, resume, cancel, skip, retry, simulateProgress, complete(true), complete(false).
// A letter names the state after the call (Q Queued, R Running, P Paused, S Skipped, C Completed,
// F Failed, X Canceled); '-' is a refused call. The Failed job has retries left.
struct Row {
    JobState from;
    std::string_view outcomes;
};
constexpr Row kTable[] = {
    {JobState::Queued, "PQXS-RCF"},
    {JobState::Running, "PQXS-RCF"},
    {JobState::Paused, "PQXS-PCF"},
    {JobState::Skipped, "--XS--CF"},
    {JobState::Completed, "--XS--CF"},
    {JobState::Failed, "--XSQ-CF"},
    {JobState::Canceled, "--XS--CF"},
};

JobState stateFor(char letter)
{
    switch (letter) {
    case 'Q': return JobState::Queued;
    case 'R': return JobState::Running;
    case 'P': return JobState::Paused;
    case 'S': return JobState::Skipped;
    case 'C': return JobState::Completed;
    case 'F': return JobState::Failed;
    default: return JobState::Canceled;
    }
}

bool apply(TransferQueue& queue, std::uint64_t id, std::size_t column)
{
    switch (column) {
    case 0: return queue.pause(id);
    case 1: return queue.resume(id);
    case 2: return queue.cancel(id);
    case 3: return queue.skip(id, "exists");
    case 4: return queue.retry(id);
    case 5: return queue.simulateProgress(id, 30, 60);
    case 6: return queue.complete(id, true, "");
    default: return queue.complete(id, false, "disk full");
    }
}

bool bringTo(TransferQueue& queue, std::uint64_t id, JobState state)
{
    switch (state) {
    case JobState::Queued: return true;
    case JobState::Running: return queue.simulateProgress(id, 10, 100);
    case JobState::Paused: return queue.pause(id);
    case JobState::Skipped: return queue.skip(id, "exists");
    case JobState::Completed: return queue.complete(id, true, "");
    case JobState::Failed: return queue.complete(id, false, "lost connection");
    case JobState::Canceled: return queue.cancel(id);
    }
    return false;
}

// One queue per cell, holding one job in the row's state, watched by an observer that records.
struct Cell {
    Row row;
    std::size_t column = 0;
    TransferQueue queue;
    std::uint64_t id = 0;
    std::vector<TransferQueueItem> notified;
    TransferQueueItem before;
};

TEST(TransferQueueTransitions, EveryCellMovesOrRefusesAsTheTableSaysAndOnlyAMoveRestampsAndNotifies)
{
    std::vector<std::unique_ptr<Cell>> cells;
    for (auto const& row : kTable) {
        for (std::size_t column = 0; column < row.outcomes.size(); ++column) {
            auto cell = std::make_unique<Cell>();
            cell->row = row;
            cell->column = column;
            cell->id = cell->queue.enqueue(JobType::Upload, "ftp", "/local/a", "/remote/a", 1, 3);
            ASSERT_TRUE(bringTo(cell->queue, cell->id, row.from));
            cell->queue.observe(0, [raw = cell.get()](TransferQueueItem const& item) { raw->notified.push_back(item); });
            cell->before = cell->queue.snapshot().front();
            ASSERT_EQ(cell->before.state, row.from);
            cells.push_back(std::move(cell));
        }
    }

    // Stamps have a resolution of one second: past a second boundary every restamp shows.
    for (auto const start = std::time(nullptr); std::time(nullptr) == start;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }

    for (auto& cell : cells) {
        char const outcome = cell->row.outcomes[cell->column];
        SCOPED_TRACE(testing::Message() << "from " << static_cast<int>(cell->row.from) << ", column "
                                        << cell->column << ", expected " << outcome);
        bool const accepted = apply(cell->queue, cell->id, cell->column);
        auto const after = cell->queue.snapshot().front();
        if (outcome == '-') {
            EXPECT_FALSE(accepted);
            EXPECT_EQ(after, cell->before);
            EXPECT_TRUE(cell->notified.empty());
        } else {
            EXPECT_TRUE(accepted);
            EXPECT_EQ(after.state, stateFor(outcome));
            EXPECT_NE(after.timestamp, cell->before.timestamp);
            ASSERT_EQ(cell->notified.size(), 1U);
            EXPECT_EQ(cell->notified.front(), after);
        }
    }
}

TEST(TransferQueueTransitions, RetryLeavesFailedOnlyWhileRetriesRemainAndKeepsTheFigures)
{
    TransferQueue queue;
    auto const id = queue.enqueue(JobType::Download, "sftp", "/l", "/r", 0, 3);
    ASSERT_TRUE(queue.simulateProgress(id, 30, 120));
    for (int attempt = 1; attempt <= 3; ++attempt) {
        ASSERT_TRUE(queue.complete(id, false, "timeout"));
        ASSERT_TRUE(queue.retry(id));
        auto const job = queue.snapshot().front();
        EXPECT_EQ(job.state, JobState::Queued);
        EXPECT_EQ(job.retryCount, attempt);
        EXPECT_EQ(job.error, "");
        EXPECT_EQ(job.transferredBytes, 30U);
        EXPECT_EQ(job.progressPercent, 25.0);
    }
    ASSERT_TRUE(queue.complete(id, false, "timeout"));
    auto const exhausted = queue.snapshot().front();
    EXPECT_FALSE(queue.retry(id));
    EXPECT_EQ(queue.snapshot().front(), exhausted);
}

TEST(TransferQueueTransitions, EveryOperationRefusesIdZeroAndUnknownIds)
{
    TransferQueue queue;
    ASSERT_EQ(queue.enqueue(JobType::Upload, "ftp", "/l", "/r", 0, 3), 1U);
    int notifications = 0;
    queue.observe(0, [&notifications](TransferQueueItem const&) { ++notifications; });
    auto const before = queue.snapshot();
    for (std::uint64_t const id : {std::uint64_t{0}, std::uint64_t{2}, ~std::uint64_t{0}}) {
        for (std::size_t column = 0; column < 8; ++column) {
            EXPECT_FALSE(apply(queue, id, column));
        }
    }
    EXPECT_EQ(notifications, 0);
    EXPECT_EQ(queue.snapshot(), before);
}

} // namespace
} // namespace perchftp::transfer
