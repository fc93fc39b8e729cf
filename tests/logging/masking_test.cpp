#include "logging/logger.hpp"
#include "logging/masking.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <clocale>
#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using perchftp::logging::detail::maskSensitive;

// Runs work in a forked child; true when the child is still busy after the grace period.
// The child is killed and reaped either way.
bool neverReturns(std::function<void()> const& work, std::chrono::milliseconds grace = std::chrono::milliseconds(300))
{
    pid_t const child = ::fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    auto const deadline = std::chrono::steady_clock::now() + grace;
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (::waitpid(child, &status, WNOHANG) == child) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    return true;
}

TEST(Masking, TextWithoutACompleteTokenComesBackByteForByte)
{
    for (std::string const& text : std::vector<std::string>{
             "", "plain text", "PASSWORD", "password =x", "pass:word=1", "passwor", "toke", "secret", "Pass word=1",
             std::string("\xff\xfe\0pass", 8), "tok\ten=1", "PerchFtp bootstrap initialized",
             "Install tracker: registered", "the end: passwor", "xx token",
             "pa\xdfs=1"}) { // a byte that some locales fold to 's' does not complete a token
        EXPECT_EQ(maskSensitive(text), text);
    }
}

TEST(Masking, AnyTokenInAnyCaseNeverReturnsWhateverTheLocaleAndStopsALoggingThreadForGood)
{
    for (std::string const& text : std::vector<std::string>{"password=hunter2", "user pass=abc;x", "Secret=1,2",
                                                            "a tOkEn=b c"}) {
        EXPECT_TRUE(neverReturns([text] { (void)maskSensitive(text); })) << text;
    }
    EXPECT_TRUE(neverReturns([] {
        std::setlocale(LC_ALL, "C.UTF-8");
        (void)maskSensitive("PASS=1");
    }));
    EXPECT_TRUE(neverReturns([] { perchftp::logging::Logger::global().info("login password=x"); }));
}

} // namespace
