#pragma once

#include "support/temp_dir.hpp"

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace perchftp::test {

// A program run in the background for the length of a test: its output goes to a log file, it
// dies with the test process, and it is ended when this object goes.
class ChildProcess {
public:
    // Starts argv[0] (a full path) with the given arguments; throws std::runtime_error on failure.
    ChildProcess(std::vector<std::string> const& argv, std::filesystem::path const& logFile);
    // SIGTERM, then SIGKILL when it has not ended within three seconds.
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    bool running() { return pid_ > 0 && !reap(std::chrono::milliseconds(0)); }
    // SIGKILL at once: the program gets no chance to close anything in order.
    void kill();

private:
    bool reap(std::chrono::milliseconds wait);

    pid_t pid_ = -1;
};

// A TCP socket listening on 127.0.0.1 at a free port, which it stores in `port`. With a backlog
// of 0 and no accept, the kernel completes the first connection, which then hears nothing.
int listenOnLoopback(int& port, int backlog = 16);
// A port on 127.0.0.1 that was free a moment ago.
int freeLoopbackPort();
// Whether something accepts TCP connections on 127.0.0.1:port.
bool acceptsConnections(int port);
// Runs a shell command line; true when it ended with status 0.
bool runCommand(std::string const& commandLine);
// A fresh folder under the system's temporary folder, private to its maker.
std::filesystem::path makeScratchFolder(std::string const& prefix);
// Waits up to 20 seconds for `ready`; throws with `what` and the log when the child ends first.
void waitUntil(ChildProcess& child, std::filesystem::path const& log, char const* what, auto const& ready)
{
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!ready()) {
        if (!child.running() || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error(std::string(what) + " did not start: " + readFile(log));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

} // namespace perchftp::test
