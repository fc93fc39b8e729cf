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

// The history is only ever read in tests, but it grows with every line the program logs.
TEST(Logger, KeepsTheNewest2500Events)
{
    perchftp::logging::Logger logger;
    for (int i = 1; i <= 2501; ++i) {
        logger.info(std::to_string(i));
    }
    auto const history = logger.history();
    ASSERT_EQ(history.size(), 2500U);
    EXPECT_EQ(history.front().message + " " + history.back().message, "2 2501");
}

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
             "", "PASSWORD", "password =x", "pass:word=1", "Pass word=1", std::string("\xff\xfe\0pass", 8),
             "tok\ten=1", "the end: passwor", "xx token",
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
