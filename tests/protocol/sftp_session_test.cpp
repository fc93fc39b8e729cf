#include "session_test_support.hpp"
#include "support/servers/sshd_test_server.hpp"
#include "support/temp_dir.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gmock/gmock.h>

#include <map>

namespace perchftp::test {
namespace {

using protocol::RemoteEntry;
using protocol::SessionResult;
using protocol::TransferEventType;
using testing::ElementsAre;
using testing::StartsWith;

// An SFTP session against OpenSSH's sshd with a throwaway user whose home is a fresh folder.
class SftpSession : public testing::Test {
protected:
    void SetUp() override
    {
        std::string const reason = SshdTestServer::whyUnavailable();
        if (!reason.empty()) {
            GTEST_SKIP() << "SFTP test skipped: it " << reason;
        }
        server_ = std::make_unique<SshdTestServer>();
        session_ = makeSession("sftp");
    }

    SessionResult connect()
    {
        return session_->connect("127.0.0.1", server_->port(), server_->user(), server_->password());
    }

    std::string remote(std::string const& name) const { return (server_->home() / name).string(); }

    void putRemoteFile(std::string const& name, std::string const& bytes)
    {
        writeFile(server_->home() / name, bytes);
    }

    TempDir local_;
    std::unique_ptr<SshdTestServer> server_;
    std::unique_ptr<protocol::IRemoteSession> session_;
};

TEST_F(SftpSession, ConnectsWithThePasswordAndRefusesAWrongOne)
{
    SessionResult const good = connect();
    EXPECT_TRUE(good.ok);
    EXPECT_EQ(good.message, "sftp connect");
    EXPECT_TRUE(session_->isConnected());

    SessionResult const bad = session_->connect("127.0.0.1", server_->port(), server_->user(), "wrong");
    EXPECT_EQ(bad.code, 1);
    EXPECT_EQ(bad.message, "sftp connect: Login denied");
    EXPECT_FALSE(session_->isConnected());
}

TEST_F(SftpSession, ListsAFolderNamedWithATrailingSlashAndReadsSizesFromTheLastColumn)
{
    putRemoteFile("notes.txt", "12345");
    putRemoteFile("2024", "x");
    std::filesystem::create_directories(server_->home() / "docs");
    ASSERT_TRUE(connect().ok);
    std::vector<RemoteEntry> entries;
    SessionResult const result = session_->list(server_->home().string() + "/", entries);
    ASSERT_TRUE(result.ok) << result.message;
    EXPECT_EQ(result.message, "sftp list");
    std::map<std::string, RemoteEntry> byName;
    for (RemoteEntry const& entry : entries) {
        byName[entry.name] = entry;
    }
    ASSERT_EQ(byName.size(), 3u);
    EXPECT_EQ(byName["notes.txt"].size, 0u);
    EXPECT_EQ(byName["notes.txt"].permissions.front(), '-');
    EXPECT_EQ(byName["2024"].size, 2024u);
    EXPECT_TRUE(byName["docs"].isDirectory);
    EXPECT_EQ(byName["docs"].permissions.front(), 'd');
}

TEST_F(SftpSession, FetchesAFolderNamedWithoutATrailingSlashAsAFileAndFails)
{
    ASSERT_TRUE(connect().ok);
    std::vector<RemoteEntry> entries = {{"kept", false, 0, "", ""}};
    SessionResult const result = session_->list(server_->home().string(), entries);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.message, StartsWith("sftp list: "));
    EXPECT_EQ(entries.size(), 1u);
}

TEST_F(SftpSession, UploadsAndDownloadsTenMegabytesByteForByte)
{
    std::string const bytes = patternedBytes(10u * 1024 * 1024);
    writeFile(local_.file("up.bin"), bytes);
    ASSERT_TRUE(connect().ok);

    EventRecorder up;
    SessionResult const uploaded = session_->upload({local_.file("up.bin"), remote("up.bin"), false}, up.callback());
    ASSERT_TRUE(uploaded.ok) << uploaded.message;
    EXPECT_EQ(uploaded.message, "sftp upload");
    EXPECT_EQ(readFile(server_->home() / "up.bin"), bytes);
    EXPECT_THAT(up.shape(),
                ElementsAre(TransferEventType::Started, TransferEventType::Progress, TransferEventType::Completed));
    EXPECT_EQ(up.events().back().transferred, bytes.size());

    EventRecorder down;
    SessionResult const downloaded = session_->download({local_.file("down.bin"), remote("up.bin"), false},
                                                        down.callback());
    ASSERT_TRUE(downloaded.ok) << downloaded.message;
    EXPECT_EQ(downloaded.message, "sftp download");
    EXPECT_EQ(readFile(local_.file("down.bin")), bytes);
    EXPECT_EQ(down.events().back().type, TransferEventType::Completed);
    EXPECT_EQ(down.events().back().total, 0u);
}

TEST_F(SftpSession, FailsTransfersToAndFromMissingPlaces)
{
    writeFile(local_.file("f"), "abc");
    ASSERT_TRUE(connect().ok);
    EventRecorder recorder;
    SessionResult const up = session_->upload({local_.file("f"), remote("missing/f"), false}, recorder.callback());
    EXPECT_EQ(up.code, 5);
    EXPECT_THAT(up.message, StartsWith("sftp upload: "));
    EXPECT_EQ(recorder.events().back().type, TransferEventType::Failed);

    SessionResult const down = session_->download({local_.file("g"), remote("absent"), false}, {});
    EXPECT_EQ(down.code, 5);
    EXPECT_THAT(down.message, StartsWith("sftp download: "));
}

TEST_F(SftpSession, SendsFtpCommandWordsThatLibcurlRefusesOnSftp)
{
    putRemoteFile("x", "x");
    std::filesystem::create_directories(server_->home() / "dir");
    ASSERT_TRUE(connect().ok);
    std::string const refused = "sftp operation failed: Quote command returned error";
    EXPECT_EQ(session_->rename(remote("x"), remote("y")).message, refused);
    EXPECT_EQ(session_->remove(remote("x")).message, refused);
    EXPECT_EQ(session_->mkdir(remote("new")).message, refused);
    EXPECT_TRUE(std::filesystem::exists(server_->home() / "x"));
    EXPECT_FALSE(std::filesystem::exists(server_->home() / "new"));
}

TEST_F(SftpSession, PassesChmodThroughWithoutChangingAnythingButChecksTheModeFirst)
{
    putRemoteFile("x", "x");
    auto const before = std::filesystem::status(server_->home() / "x").permissions();
    ASSERT_TRUE(connect().ok);
    SessionResult const result = session_->chmod(remote("x"), 0);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, "sftp chmod (SFTP passthrough)");
    EXPECT_EQ(std::filesystem::status(server_->home() / "x").permissions(), before);

    SessionResult const negative = session_->chmod(remote("x"), -1);
    EXPECT_EQ(negative.code, 4);
    EXPECT_EQ(negative.message, "sftp chmod: invalid mode");
}

} // namespace
} // namespace perchftp::test
