// The time limits of every session operation, met for real: each test here waits out a limit of
// ten or sixty seconds, so these run once, under the "slow" label.
#include "session_fixture.hpp"

#include "support/servers/child_process.hpp"
#include "support/servers/sshd_test_server.hpp"

#include <unistd.h>

#include <chrono>

namespace perchftp::test {
namespace {

using protocol::SessionResult;
using testing::StartsWith;
using Clock = std::chrono::steady_clock;

// Runs an operation and says how long it took.
template <typename Operation>
std::pair<SessionResult, double> timed(Operation const& operation)
{
    auto const start = Clock::now();
    SessionResult result = operation();
    return {result, std::chrono::duration<double>(Clock::now() - start).count()};
}

TEST(SessionLimits, GivesUpOnAServerThatNeverGreetsAfterTenSeconds)
{
    int port = 0;
    int const silent = listenOnLoopback(port, 0); // never accepts: the server never greets
    auto session = makeSession("ftp");
    auto const [result, seconds] = timed([&] { return session->connect("127.0.0.1", port, "u", "p"); });
    ::close(silent);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp connect: Timeout was reached");
    EXPECT_FALSE(session->isConnected());
    EXPECT_GT(seconds, 9.5);
    EXPECT_LT(seconds, 15.0);
}

TEST(SessionLimits, EndsAListingThatGetsNoAnswerAfterSixtySeconds)
{
    FtpTestServer server;
    server.setReply("LIST", "STALL");
    auto session = makeSession("ftp");
    ASSERT_TRUE(session->connect("127.0.0.1", server.port(), server.user(), server.password()).ok);
    std::vector<protocol::RemoteEntry> entries;
    auto const [result, seconds] = timed([&] { return session->list("/", entries); });
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp list: Timeout was reached");
    EXPECT_TRUE(session->isConnected());
    EXPECT_GT(seconds, 59.5);
    EXPECT_LT(seconds, 70.0);
}

TEST(SessionLimits, FailsAnUploadThatNeedsLongerThanSixtySeconds)
{
    constexpr std::uint64_t kBytesPerSecond = 64 * 1024;
    FtpTestServerOptions options;
    options.throttleBytesPerSecond = kBytesPerSecond;
    FtpTestServer server(options);
    TempDir local;
    writeFile(local.file("slow.bin"), patternedBytes(100 * kBytesPerSecond));
    auto session = makeSession("ftp");
    ASSERT_TRUE(session->connect("127.0.0.1", server.port(), server.user(), server.password()).ok);
    EventRecorder recorder;
    auto const [result, seconds] =
        timed([&] { return session->upload({local.file("slow.bin"), "/slow.bin", false}, recorder.callback()); });
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.message, "ftp upload: Timeout was reached");
    EXPECT_GT(seconds, 59.5);
    EXPECT_LT(seconds, 70.0);
    ASSERT_FALSE(recorder.events.empty());
    EXPECT_EQ(recorder.events.back().type, TransferEventType::Failed);
    EXPECT_EQ(recorder.events.back().total, 100 * kBytesPerSecond);
    EXPECT_GT(recorder.events.back().transferred, 0u);
}

// A client of one protocol meeting a server of another waits for a greeting that never comes in
// its own language, and gives up by the connect limit.
TEST(SessionLimits, RefusesAServerOfAnotherProtocol)
{
    ASSERT_EQ(SshdTestServer::whyUnavailable(), "");
    TestCertificates certificates;
    FtpTestServer ftp;
    FtpTestServer ftps(implicitTls(certificates));
    SshdTestServer sshd;
    for (auto const& [protocolName, port] : std::vector<std::pair<char const*, int>>{
             {"sftp", ftp.port()}, {"ftp", ftps.port()}, {"ftp", sshd.port()}}) {
        SCOPED_TRACE(protocolName);
        auto session = makeSession(protocolName);
        auto const [result, seconds] = timed([&] { return session->connect("127.0.0.1", port, "perch", "perch-secret"); });
        EXPECT_EQ(result.code, 1);
        EXPECT_THAT(result.message, StartsWith(std::string(protocolName) + " connect: "));
        EXPECT_FALSE(session->isConnected());
        EXPECT_LT(seconds, 15.0);
    }
}

} // namespace
} // namespace perchftp::test
