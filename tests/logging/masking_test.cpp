#include "logging/logger.hpp"
#include "logging/masking.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <csignal>
#include <functional>
#include <unistd.h>
#include <vector>

namespace {

using perchftp::logging::detail::maskSensitive;

// The work runs in a child that an alarm ends after 300 ms, unless the work ended first.
void expectNeverReturns(std::function<void()> const& work)
{
    EXPECT_EXIT(
        {
            ::ualarm(300000, 0);
            work();
            _exit(0);
        },
        testing::KilledBySignal(SIGALRM), "");
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
        SCOPED_TRACE(text);
        expectNeverReturns([text] { (void)maskSensitive(text); });
    }
    expectNeverReturns([] {
        std::setlocale(LC_ALL, "C.UTF-8");
        (void)maskSensitive("PASS=1");
    });
    expectNeverReturns([] { perchftp::logging::Logger::global().info("login password=x"); });
}

} // namespace
