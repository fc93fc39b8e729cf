#include "session_fixture.hpp"

#include "support/servers/sshd_test_server.hpp"

#include <map>

namespace perchftp::test {
namespace {

using protocol::RemoteEntry;
using protocol::SessionResult;
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
        ASSERT_TRUE(session_->connect("127.0.0.1", server_->port(), server_->user(), server_->password()).ok);
    }

    std::string remote(std::string const& name) const { return (server_->home() / name).string(); }

    TempDir local_;
    std::unique_ptr<SshdTestServer> server_;
    std::unique_ptr<protocol::IRemoteSession> session_;
};

TEST_F(SftpSession, ListsOnlyWithATrailingSlashAndSendsFtpCommandWordsThatLibcurlRefuses)
{
    writeFile(remote("notes.txt"), "12345");
    writeFile(remote("2024"), "x");
    std::filesystem::create_directories(remote("docs"));
    std::vector<RemoteEntry> entries;
    SessionResult result = session_->list(server_->home().string() + "/", entries);
    ASSERT_TRUE(result.ok) << result.message;
    EXPECT_EQ(result.message, "sftp list");
    std::map<std::string, RemoteEntry> byName;
    for (RemoteEntry const& entry : entries) {
        byName[entry.name] = entry;
    }
    ASSERT_EQ(byName.size(), 3u);
    EXPECT_EQ(byName["notes.txt"].size, 0u) << "the size is read from the last column, the name";
    EXPECT_EQ(byName["notes.txt"].permissions.front(), '-');
    EXPECT_EQ(byName["2024"].size, 2024u);
    EXPECT_TRUE(byName["docs"].isDirectory);
    EXPECT_EQ(byName["docs"].permissions.front(), 'd');

    // Without the slash the folder is fetched as a file.
    entries = {{"kept", false, 0, "", ""}};
    result = session_->list(server_->home().string(), entries);
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.message, StartsWith("sftp list: "));
    EXPECT_EQ(entries.size(), 1u);

    std::string const refused = "sftp operation failed: Quote command returned error";
    EXPECT_EQ(session_->rename(remote("notes.txt"), remote("y")).message, refused);
    EXPECT_EQ(session_->remove(remote("notes.txt")).message, refused);
    EXPECT_EQ(session_->mkdir(remote("new")).message, refused);
    EXPECT_TRUE(std::filesystem::exists(remote("notes.txt")));
    EXPECT_FALSE(std::filesystem::exists(remote("new")));

    auto const before = std::filesystem::status(remote("notes.txt")).permissions();
    result = session_->chmod(remote("notes.txt"), 0);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, "sftp chmod (SFTP passthrough)");
    EXPECT_EQ(std::filesystem::status(remote("notes.txt")).permissions(), before);
    result = session_->chmod(remote("notes.txt"), -1);
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.message, "sftp chmod: invalid mode");

    result = session_->connect("127.0.0.1", server_->port(), server_->user(), server_->password());
    EXPECT_EQ(result.message, "sftp connect");
    EXPECT_TRUE(session_->isConnected());
    result = session_->connect("127.0.0.1", server_->port(), server_->user(), "wrong");
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "sftp connect: Login denied");
    EXPECT_FALSE(session_->isConnected());
}

TEST_F(SftpSession, TransfersTenMegabytesByteForByteAndFailsOnMissingPlaces)
{
    std::string const bytes = patternedBytes(10u * 1024 * 1024);
    writeFile(local_.file("up.bin"), bytes);
    EventRecorder up;
    SessionResult result = session_->upload({local_.file("up.bin"), remote("up.bin"), false}, up.callback());
    ASSERT_TRUE(result.ok) << result.message;
    EXPECT_EQ(result.message, "sftp upload");
    EXPECT_EQ(readFile(remote("up.bin")), bytes);
    EXPECT_THAT(up.shape(), ElementsAre(TransferEventType::Started, TransferEventType::Progress, TransferEventType::Completed));
    EXPECT_EQ(up.events.back().transferred, bytes.size());

    EventRecorder down;
    result = session_->download({local_.file("down.bin"), remote("up.bin"), false}, down.callback());
    ASSERT_TRUE(result.ok) << result.message;
    EXPECT_EQ(result.message, "sftp download");
    EXPECT_EQ(readFile(local_.file("down.bin")), bytes);
    EXPECT_EQ(down.events.back().type, TransferEventType::Completed);
    EXPECT_EQ(down.events.back().total, 0u);

    EventRecorder failed;
    result = session_->upload({local_.file("up.bin"), remote("missing/f"), false}, failed.callback());
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith("sftp upload: "));
    EXPECT_EQ(failed.events.back().type, TransferEventType::Failed);
    result = session_->download({local_.file("g"), remote("absent"), false}, {});
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith("sftp download: "));
}

} // namespace
} // namespace perchftp::test
