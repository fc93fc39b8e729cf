#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace perchftp::test {

// A program run in the background for the length of a test: its output goes to a log file, it
// dies with the test process, and it is ended when this object goes.
class ChildProcess {
public:
    // Starts argv[0] (a full path) with the given arguments; throws std::runtime_error on failure.
    ChildProcess(std::vector<std::string> const& argv, std::filesystem::path const& logFile);
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    pid_t pid() const { return pid_; }
    bool running();
    // SIGTERM, then SIGKILL when it has not ended within the grace time.
    void terminate(std::chrono::milliseconds grace = std::chrono::seconds(3));
    // SIGKILL at once: the program gets no chance to close anything in order.
    void kill();

private:
    bool reap(std::chrono::milliseconds wait);

    pid_t pid_ = -1;
};

// A port on 127.0.0.1 that was free a moment ago.
int freeLoopbackPort();
// Whether something accepts TCP connections on 127.0.0.1:port.
bool acceptsConnections(int port);
// Runs a shell command line; true when it ended with status 0.
bool runCommand(std::string const& commandLine);
// A fresh folder under the system's temporary folder, private to its maker.
std::filesystem::path makeScratchFolder(std::string const& prefix);
// The bytes of a file; empty when it can't be read.
std::string readBytes(std::filesystem::path const& path);

} // namespace perchftp::test
