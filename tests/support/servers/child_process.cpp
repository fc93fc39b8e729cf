#include "support/servers/child_process.hpp"

#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace perchftp::test {

ChildProcess::ChildProcess(std::vector<std::string> const& argv, std::filesystem::path const& logFile)
{
    std::vector<char*> arguments;
    for (std::string const& argument : argv) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    std::string const logPath = logFile.string();
    pid_t const parent = ::getpid();
    pid_ = ::fork();
    if (pid_ < 0) {
        throw std::runtime_error("fork failed");
    }
    if (pid_ == 0) {
        // Only async-signal-safe calls from here to exec.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) {
            ::_exit(127);
        }
        int const log = ::open(logPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        int const nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::dup2(log, STDOUT_FILENO);
        ::dup2(log, STDERR_FILENO);
        ::dup2(nothing, STDIN_FILENO);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
}

bool ChildProcess::reap(std::chrono::milliseconds wait)
{
    auto const deadline = std::chrono::steady_clock::now() + wait;
    do {
        int status = 0;
        pid_t const ended = ::waitpid(pid_, &status, WNOHANG);
        if (ended == pid_ || ended < 0) {
            pid_ = -1;
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    } while (std::chrono::steady_clock::now() < deadline);
    return false;
}

ChildProcess::~ChildProcess()
{
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        if (!reap(std::chrono::seconds(3))) {
            kill();
        }
    }
}

void ChildProcess::kill()
{
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        reap(std::chrono::seconds(10));
    }
}

namespace {

sockaddr_in loopbackAddress(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

int listenOnLoopback(int& port, int backlog)
{
    int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopbackAddress(0);
    socklen_t length = sizeof(address);
    if (socket < 0 || ::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(socket, backlog) != 0 || ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        ::close(socket);
        throw std::runtime_error("cannot listen on 127.0.0.1");
    }
    port = ntohs(address.sin_port);
    return socket;
}

int freeLoopbackPort()
{
    int port = 0;
    ::close(listenOnLoopback(port));
    return port;
}

bool acceptsConnections(int port)
{
    int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in const address = loopbackAddress(port);
    bool const connected = ::connect(socket, reinterpret_cast<sockaddr const*>(&address), sizeof(address)) == 0;
    ::close(socket);
    return connected;
}

bool runCommand(std::string const& commandLine)
{
    int const status = std::system(commandLine.c_str());
    return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::filesystem::path makeScratchFolder(std::string const& prefix)
{
    std::string pattern = (std::filesystem::temp_directory_path() / (prefix + "-XXXXXX")).string();
    if (!::mkdtemp(pattern.data())) {
        throw std::runtime_error("mkdtemp failed");
    }
    return pattern;
}

} // namespace perchftp::test
