// The time limits of every session operation, met for real: each test here waits out a limit of
// ten or sixty seconds, so these run once, under the "slow" label.
#include "session_fixture.hpp"

#include "support/servers/child_process.hpp"

#include <unistd.h>

#include <chrono>

namespace perchftp::test {
namespace {

using protocol::SessionResult;

// Runs an operation and expects it to take between `least` and `most` seconds.
template <typename Operation>
SessionResult timed(double least, double most, Operation const& operation)
{
    auto const start = std::chrono::steady_clock::now();
    SessionResult result = operation();
    double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_GT(seconds, least);
    EXPECT_LT(seconds, most);
    return result;
}

TEST(SessionLimits, GivesUpOnAServerThatNeverGreetsAfterTenSeconds)
{
    int port = 0;
    int const silent = listenOnLoopback(port, 0); // never accepts: the server never greets
    auto session = makeSession("ftp");
    SessionResult const result = timed(9.5, 15.0, [&] { return session->connect("127.0.0.1", port, "u", "p"); });
    ::close(silent);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp connect: Timeout was reached");
    EXPECT_FALSE(session->isConnected());
}

// An upload the server takes in too slowly; every operation's handle carries the same limit.
TEST(SessionLimits, EndsAnUploadAfterSixtySeconds)
{
    constexpr std::uint64_t kBytesPerSecond = 64 * 1024;
    FtpTestServer server{{.throttleBytesPerSecond = kBytesPerSecond}};
    auto session = makeSession("ftp");
    ASSERT_TRUE(session->connect("127.0.0.1", server.port(), server.user(), server.password()).ok);
    TempDir local;
    writeFile(local.file("slow.bin"), patternedBytes(100 * kBytesPerSecond));
    SessionResult const result =
        timed(59.5, 70.0, [&] { return session->upload({local.file("slow.bin"), "/slow.bin", false}, {}); });
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.message, "ftp upload: Timeout was reached");
}

} // namespace
} // namespace perchftp::test
