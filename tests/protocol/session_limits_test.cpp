// The time limits of every session operation, met for real: each test here waits out a limit of
// ten or sixty seconds, so these run once, under the "slow" label.
#include "session_test_support.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/servers/silent_listener.hpp"
#include "support/servers/sshd_test_server.hpp"
#include "support/servers/test_certificates.hpp"
#include "support/temp_dir.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace perchftp::test {
namespace {

using protocol::SessionResult;
using protocol::TransferEventType;
using testing::StartsWith;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

TEST(SessionLimits, GivesUpOnAServerThatNeverGreetsAfterTenSeconds)
{
    SilentListener silent;
    auto session = makeSession("ftp");
    auto const start = Clock::now();
    SessionResult const result = session->connect("127.0.0.1", silent.port(), "u", "p");
    double const elapsed = secondsSince(start);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp connect: Timeout was reached");
    EXPECT_FALSE(session->isConnected());
    EXPECT_GT(elapsed, 9.5);
    EXPECT_LT(elapsed, 15.0);
}

TEST(SessionLimits, EndsAListingThatGetsNoAnswerAfterSixtySeconds)
{
    FtpTestServer server;
    server.setReply("LIST", "STALL");
    auto session = makeSession("ftp");
    ASSERT_TRUE(session->connect("127.0.0.1", server.port(), server.user(), server.password()).ok);
    std::vector<protocol::RemoteEntry> entries;
    auto const start = Clock::now();
    SessionResult const result = session->list("/", entries);
    double const elapsed = secondsSince(start);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp list: Timeout was reached");
    EXPECT_TRUE(session->isConnected());
    EXPECT_GT(elapsed, 59.5);
    EXPECT_LT(elapsed, 70.0);
}

TEST(SessionLimits, FailsAnUploadThatNeedsLongerThanSixtySeconds)
{
    constexpr std::uint64_t kBytesPerSecond = 64 * 1024;
    FtpTestServerOptions options;
    options.throttleBytesPerSecond = kBytesPerSecond;
    FtpTestServer server(options);
    TempDir local;
    std::string const bytes = patternedBytes(100 * kBytesPerSecond);
    writeFile(local.file("slow.bin"), bytes);
    auto session = makeSession("ftp");
    ASSERT_TRUE(session->connect("127.0.0.1", server.port(), server.user(), server.password()).ok);

    EventRecorder recorder;
    auto const start = Clock::now();
    SessionResult const result = session->upload({local.file("slow.bin"), "/slow.bin", false}, recorder.callback());
    double const elapsed = secondsSince(start);
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.message, "ftp upload: Timeout was reached");
    EXPECT_GT(elapsed, 59.5);
    EXPECT_LT(elapsed, 70.0);
    ASSERT_FALSE(recorder.events().empty());
    RecordedEvent const& failed = recorder.events().back();
    EXPECT_EQ(failed.type, TransferEventType::Failed);
    EXPECT_EQ(failed.total, bytes.size());
    EXPECT_GT(failed.transferred, 0u);
}

// A client of one protocol meeting a server of another waits for a greeting that never comes in
// its own language, and gives up at the connect limit.
void expectRefusedAtTheConnectLimit(char const* protocolName, int port, std::string const& user,
                                    std::string const& password)
{
    auto session = makeSession(protocolName);
    auto const start = Clock::now();
    SessionResult const result = session->connect("127.0.0.1", port, user, password);
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.message, StartsWith(std::string(protocolName) + " connect: "));
    EXPECT_FALSE(session->isConnected());
    EXPECT_LT(secondsSince(start), 15.0);
}

TEST(SessionLimits, RefusesAnFtpServerMetBySftp)
{
    FtpTestServer server;
    expectRefusedAtTheConnectLimit("sftp", server.port(), server.user(), server.password());
}

TEST(SessionLimits, RefusesAnImplicitTlsServerMetByPlainFtp)
{
    TestCertificates certificates;
    FtpTestServerOptions options;
    options.implicitTls = true;
    options.certificateFile = certificates.serverCertificate();
    options.keyFile = certificates.serverKey();
    FtpTestServer server(options);
    expectRefusedAtTheConnectLimit("ftp", server.port(), server.user(), server.password());
}

TEST(SessionLimits, RefusesAnSshServerMetByFtp)
{
    std::string const reason = SshdTestServer::whyUnavailable();
    if (!reason.empty()) {
        GTEST_SKIP() << "skipped: sshd " << reason;
    }
    SshdTestServer sshd;
    expectRefusedAtTheConnectLimit("ftp", sshd.port(), sshd.user(), sshd.password());
}

} // namespace
} // namespace perchftp::test
