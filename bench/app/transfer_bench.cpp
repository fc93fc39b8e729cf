// A large upload over loopback FTP through the shell's controller, as the user's action runs it:
// in a fresh controller, in one that has 500 earlier jobs in its queue (each with the observer
// that the controller registers per job), and `curl -T` of the same file, in one run. Prints the
// medians, the two ratios and the peak memory of the process.
// Usage: transfer_bench [megabytes] [earlier jobs]   (defaults 1024 and 500)
#include "app/shell_controller.hpp"
#include "app/shell_startup.hpp"
#include "app/support/ftp_connection_form.hpp"
#include "bench_figures.hpp"
#include "support/servers/child_process.hpp"
#include "support/servers/ftp_test_server.hpp"

#include <QApplication>
#include <QLineEdit>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <time.h>

namespace {

using perchftp::bench::median;

using namespace perchftp;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kRuns = 5;

// Accepts the licence; every other question is declined.
class AcceptingDialogs final : public app::ShellDialogs {
public:
    QString chooseExistingFolder(QWidget*, QString const&, QString const&) override { return {}; }
    bool acceptLicence(QString const&, QIcon const&) override { return true; }
};

double seconds(std::function<void()> const& work)
{
    auto const start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

long peakMemoryKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void isolateUserFolders(fs::path const& root)
{
    for (auto const& [variable, folder] : {std::pair{"HOME", "home"}, std::pair{"XDG_DATA_HOME", "data"},
             std::pair{"XDG_CONFIG_HOME", "config"}, std::pair{"XDG_CACHE_HOME", "cache"}}) {
        fs::create_directories(root / folder);
        setenv(variable, (root / folder).c_str(), 1);
    }
    setenv("PERCHFTP_INSTALL_TRACKING_URL", "http://127.0.0.1:9/api/install-events.php", 1);
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
}

void makeFile(fs::path const& path, std::size_t megabytes)
{
    std::string block(1 << 20, '\0');
    for (std::size_t index = 0; index < block.size(); ++index) {
        block[index] = static_cast<char>(index * 7 + 3);
    }
    std::ofstream out(path, std::ios::binary);
    for (std::size_t index = 0; index < megabytes; ++index) {
        out.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
}

void startConnected(QApplication& application, test::FtpTestServer const& server, app::RunningShell& shell)
{
    auto started = app::startDesktopShell(application, std::make_unique<AcceptingDialogs>());
    if (!started) {
        std::fprintf(stderr, "the shell did not start\n");
        std::exit(1);
    }
    shell = std::move(*started);
    app::PerchFtpShellController& controller = *shell.controller;
    test::fillFtpConnectionForm(controller, server);
    controller.connectSession();
    if (!controller.isConnected()) {
        std::fprintf(stderr, "could not connect\n");
        std::exit(1);
    }
}

// The user's upload of one file with the hidden transfer fields, as the Upload button runs it.
// `cpu` receives the main thread's processor time for the action and its posted popup texts.
double timedUpload(app::PerchFtpShellController& controller, fs::path const& source, std::string const& target,
    double* cpu = nullptr)
{
    controller.localTransferField()->setText(QString::fromStdString(source.string()));
    controller.remoteTransferField()->setText(QString::fromStdString(target));
    double const cpuStart = threadCpuSeconds();
    double const elapsed = seconds([&] { controller.enqueueUpload(); });
    QCoreApplication::sendPostedEvents();
    if (cpu != nullptr) {
        *cpu = threadCpuSeconds() - cpuStart;
    }
    auto const jobs = controller.transferQueue().queue().snapshot();
    if (jobs.empty() || jobs.back().state != transfer::JobState::Completed) {
        std::fprintf(stderr, "the upload did not complete\n");
        std::exit(1);
    }
    return elapsed;
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t const megabytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1024;
    int const earlierJobs = argc > 2 ? std::atoi(argv[2]) : 500;
    fs::path const scratch = test::makeScratchFolder("perchftp-transfer-bench");
    isolateUserFolders(scratch / "user");
    QApplication application(argc, argv);

    test::FtpTestServer server;
    fs::path const source = scratch / "big.bin";
    fs::path const small = scratch / "small.bin";
    makeFile(source, megabytes);
    std::ofstream(small) << "x";

    app::RunningShell fresh;
    app::RunningShell loaded;
    startConnected(application, server, fresh);
    startConnected(application, server, loaded);
    // The earlier files go to a folder of their own, so that the listings that every upload
    // makes (its conflict check, the remote pane's refresh) are the same size for both controllers.
    fs::create_directories(server.root() / "earlier");
    for (int index = 0; index < earlierJobs; ++index) {
        timedUpload(*loaded.controller, small, "/earlier/small-" + std::to_string(index) + ".bin");
    }

    long const memoryBefore = peakMemoryKiB();
    std::vector<double> freshRuns;
    std::vector<double> loadedRuns;
    std::vector<double> curlRuns;
    std::vector<double> freshCpu;
    std::vector<double> loadedCpu;
    std::string const url = "ftp://" + server.user() + ":" + server.password() + "@127.0.0.1:"
        + std::to_string(server.port()) + "/curl.bin";
    for (int run = 0; run < kRuns; ++run) {
        double cpu = 0.0;
        freshRuns.push_back(timedUpload(*fresh.controller, source, "/fresh.bin", &cpu));
        freshCpu.push_back(cpu);
        loadedRuns.push_back(timedUpload(*loaded.controller, source, "/loaded.bin", &cpu));
        loadedCpu.push_back(cpu);
        curlRuns.push_back(seconds([&] {
            if (!test::runCommand("curl -s -T '" + source.string() + "' '" + url + "'")) {
                std::fprintf(stderr, "curl -T failed\n");
                std::exit(1);
            }
        }));
        for (char const* name : {"fresh.bin", "loaded.bin", "curl.bin"}) {
            fs::remove(server.root() / name);
        }
    }

    double const mb = static_cast<double>(megabytes);
    std::printf("%zu MiB upload over loopback FTP through the controller (median of %d):\n", megabytes, kRuns);
    std::printf("  fresh controller:          %.2f s (%.0f MiB/s)\n", median(freshRuns), mb / median(freshRuns));
    std::printf("  after %d earlier jobs:    %.2f s (%.0f MiB/s)\n", earlierJobs, median(loadedRuns),
        mb / median(loadedRuns));
    std::printf("  curl -T:                   %.2f s (%.0f MiB/s)\n", median(curlRuns), mb / median(curlRuns));
    std::printf("  ratio loaded / fresh:      %.3f (target <= 1.10)\n", median(loadedRuns) / median(freshRuns));
    std::printf("  ratio loaded / curl -T:    %.3f (target <= 1.15)\n", median(loadedRuns) / median(curlRuns));
    std::printf("  main thread CPU:           %.3f s fresh, %.3f s after the earlier jobs\n", median(freshCpu),
        median(loadedCpu));
    std::printf("  peak memory: %ld KiB before the large uploads, %ld KiB after\n", memoryBefore, peakMemoryKiB());

    fresh = {};
    loaded = {};
    std::error_code ignored;
    fs::remove_all(scratch, ignored);
    return 0;
}
