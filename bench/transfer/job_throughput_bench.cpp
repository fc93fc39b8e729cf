// Pushes 100,000 jobs through enqueue, ten progress steps and complete, with one observer, and
// prints the time against the 0.5 s target.
#include "transfer/transfer_queue.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

using perchftp::transfer::JobType;
using perchftp::transfer::TransferQueue;
using perchftp::transfer::TransferQueueItem;

constexpr int kJobs = 100000;
constexpr int kProgressSteps = 10;
constexpr double kTargetSeconds = 0.5;

double runOnce(std::uint64_t& observed)
{
    TransferQueue queue;
    queue.observe(0, [&observed](TransferQueueItem const& item) { observed += item.transferredBytes + 1; });
    auto const started = std::chrono::steady_clock::now();
    for (int job = 0; job < kJobs; ++job) {
        auto const id = queue.enqueue(JobType::Upload, "sftp", "/home/user/projects/site/assets/image-file.png",
            "/var/www/html/assets/image-file.png", 1, 3);
        constexpr std::uint64_t total = 1 << 20;
        for (int step = 1; step <= kProgressSteps; ++step) {
            queue.simulateProgress(id, total * static_cast<std::uint64_t>(step) / kProgressSteps, total);
        }
        queue.complete(id, true, "");
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
}

} // namespace

int main()
{
    std::uint64_t observed = 0;
    std::vector<double> runs;
    for (int run = 0; run < 5; ++run) {
        runs.push_back(runOnce(observed));
    }
    std::sort(runs.begin(), runs.end());
    double const median = runs[runs.size() / 2];
    std::printf("transfer queue: %d jobs x (enqueue + %d progress + complete), one observer\n", kJobs, kProgressSteps);
    std::printf("  best %.3f s, median %.3f s over %zu runs; target %.1f s; median/target = %.2f\n", runs.front(),
        median, runs.size(), kTargetSeconds, median / kTargetSeconds);
    std::printf("  (observer checksum %llu)\n", static_cast<unsigned long long>(observed));
    return 0;
}
