#include "transfer/transfer_queue.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <deque>
#include <limits>
#include <regex>
#include <sstream>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

namespace perchftp::transfer {
namespace {

using Ids = std::vector<std::uint64_t>;

std::uint64_t add(TransferQueue& queue)
{
    return queue.enqueue(JobType::Upload, "ftp", "/home/ana/report.pdf", "/srv/report.pdf", 1, 3);
}

// Jobs stand in the order of their ids, and the tests here look one up only before any clear().
TransferQueueItem job(TransferQueue const& queue, std::uint64_t id)
{
    return queue.snapshot().at(id - 1);
}

// "transferred/total percent% error" of a job.
std::string figures(TransferQueue const& queue, std::uint64_t id)
{
    auto const item = job(queue, id);
    std::ostringstream out;
    out << item.transferredBytes << '/' << item.totalBytes << ' ' << item.progressPercent << "% " << item.error;
    return out.str();
}

// Columns: pause, resume, cancel, skip, retry, simulateProgress, complete(true), complete(false).
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

// The state after each column's call, one row per state in JobState order: a letter of
// "QRPSCFX" (Queued, Running, Paused, Skipped, Completed, Failed, Canceled) or '-' for a refused
// call. The Failed job has retries left.
constexpr std::string_view kLetters = "QRPSCFX";
constexpr std::string_view kTable[] = {"PQXS-RCF", "PQXS-RCF", "PQXS-PCF", "--XS--CF", "--XS--CF", "--XSQ-CF", "--XS--CF"};
constexpr std::size_t kSetUpColumn[] = {8, 5, 0, 3, 6, 7, 2}; // the call that brings a new job to each state

struct Cell {
    TransferQueue queue;
    std::uint64_t id = 0;
    std::vector<TransferQueueItem> notified;
    TransferQueueItem before;
};

TEST(TransferQueueTransitions, EveryCellMovesOrRefusesAsTheTableSaysAndOnlyAMoveRestampsAndNotifies)
{
    std::deque<Cell> cells;
    for (std::size_t row = 0; row < 7; ++row) {
        for (std::size_t column = 0; column < 8; ++column) {
            auto& cell = cells.emplace_back();
            cell.id = add(cell.queue);
            ASSERT_TRUE(row == 0 || apply(cell.queue, cell.id, kSetUpColumn[row]));
            cell.queue.observe(0, [&cell](TransferQueueItem const& item) { cell.notified.push_back(item); });
            cell.before = cell.queue.snapshot().front();
            ASSERT_EQ(cell.before.state, static_cast<JobState>(row));
        }
    }
    // Stamps have a resolution of one second: past a second boundary every restamp shows.
    for (auto const start = std::time(nullptr); std::time(nullptr) == start;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        Cell& cell = cells[i];
        char const outcome = kTable[i / 8][i % 8];
        SCOPED_TRACE(testing::Message() << "from " << kLetters[i / 8] << ", column " << i % 8 << ", expected " << outcome);
        EXPECT_EQ(apply(cell.queue, cell.id, i % 8), outcome != '-');
        // No call knows id 0 or an id never handed out.
        EXPECT_FALSE(apply(cell.queue, 0, i % 8) || apply(cell.queue, 2, i % 8));
        auto const after = cell.queue.snapshot().front();
        if (outcome == '-') {
            EXPECT_EQ(after, cell.before);
            EXPECT_TRUE(cell.notified.empty());
        } else {
            EXPECT_EQ(after.state, static_cast<JobState>(kLetters.find(outcome)));
            EXPECT_NE(after.timestamp, cell.before.timestamp);
            ASSERT_EQ(cell.notified.size(), 1U);
            EXPECT_EQ(cell.notified.front(), after);
        }
    }
}

TEST(TransferQueueJobs, EnqueueCopiesTheArgumentsObserversHearOfEveryJobAndARefusalOrAClearUsesUpNoId)
{
    TransferQueue queue;
    auto const id = queue.enqueue(JobType::Download, "sftp", "/tmp/a.txt", "/data/a.txt", -5, 7);
    ASSERT_EQ(id, 1U);
    auto const item = job(queue, id);
    EXPECT_TRUE(item.type == JobType::Download && item.state == JobState::Queued);
    EXPECT_EQ(item.protocolName + item.localPath + item.remotePath, "sftp/tmp/a.txt/data/a.txt");
    EXPECT_EQ(item.priority + item.maxRetries, 2);
    EXPECT_TRUE(std::regex_match(item.timestamp, std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"))) << item.timestamp;
    for (auto const& [protocol, local, remote] : {std::tuple{"ftp", "", "/r"}, {"ftp", "/l", ""}, {"", "/l", "/r"}}) {
        EXPECT_EQ(queue.enqueue(JobType::Upload, protocol, local, remote, 0, 3), 0U);
    }

    Ids seen;
    ASSERT_TRUE(queue.observe(id, [&seen](TransferQueueItem const& changed) { seen.push_back(changed.id); }));
    EXPECT_EQ(job(queue, id), item) << "observing restamps nothing";
    EXPECT_FALSE(queue.observe(id, TransferQueue::Observer{}));
    auto const other = add(queue); // an empty observer kept would throw here
    EXPECT_EQ(seen, (Ids{id, other})) << "told at once, then of a change of any job";
    queue.clear();
    EXPECT_TRUE(queue.snapshot().empty());
    EXPECT_EQ(add(queue), 3U);
}

TEST(TransferQueueJobs, ProgressIsClampedAndCompleteFillsOrKeepsTheFigures)
{
    TransferQueue queue;
    auto const id = add(queue);
    ASSERT_TRUE(queue.simulateProgress(id, 500, 100));
    EXPECT_EQ(figures(queue, id), "100/100 100% ");
    ASSERT_TRUE(queue.simulateProgress(id, 1, 3));
    EXPECT_FALSE(queue.simulateProgress(id, 2, 0));
    EXPECT_EQ(figures(queue, id), "1/3 33.3333% ");
    auto const max = std::numeric_limits<std::uint64_t>::max();
    ASSERT_TRUE(queue.simulateProgress(id, max - 1, max));
    EXPECT_LE(job(queue, id).progressPercent, 100.0);

    ASSERT_TRUE(queue.simulateProgress(id, 40, 80));
    ASSERT_TRUE(queue.complete(id, false, ""));
    EXPECT_EQ(figures(queue, id), "40/80 50% transfer failed");
    ASSERT_TRUE(queue.complete(id, true, "anything"));
    EXPECT_EQ(figures(queue, id), "80/80 100% ");
    auto const untouched = add(queue);
    ASSERT_TRUE(queue.complete(untouched, true, ""));
    EXPECT_EQ(figures(queue, untouched), "0/0 100% ");
}

} // namespace
} // namespace perchftp::transfer
