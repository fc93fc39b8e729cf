// What only a scriptable server shows: commands it refuses or drops, the login folder it claims,
// a server that dies mid-transfer, and what a failure leaves behind.
#include "session_fixture.hpp"

#include "support/servers/child_process.hpp"

namespace perchftp::test {
namespace {

using protocol::IRemoteSession;
using protocol::RemoteEntry;
using protocol::SessionResult;
using testing::IsEmpty;
using testing::StartsWith;

class ScriptedFtp : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(connect().ok);
        server.clearReceivedCommands();
    }
    SessionResult connect()
    {
        return session->connect("127.0.0.1", server.port(), server.user(), server.password());
    }
    void put(std::string const& remotePath, std::string const& bytes = "x")
    {
        std::filesystem::create_directories(server.local(remotePath).parent_path());
        writeFile(server.local(remotePath), bytes);
    }

    FtpTestServer server{{.throttleBytesPerSecond = 2u * 1024 * 1024}}; // so that a test can end a transfer midway
    std::unique_ptr<IRemoteSession> session = makeSession("ftp");
    TempDir local;
};

TEST_F(ScriptedFtp, RemoteCommandsClimbTheirLaddersOnTheWire)
{
    for (char const* file : {"/a3/x", "/x", "/c15.txt", "/d16"}) {
        put(file);
    }
    // What the last operation sent of the commands that act; its scripted replies end with it.
    auto const sent = [this] {
        std::vector<std::string> const lines = server.receivedCommands({"RNFR", "RNTO", "DELE", "RMD", "MKD"});
        server.clearReceivedCommands();
        server.clearReplies();
        return lines;
    };
    using Lines = std::vector<std::string>;

    // The bare names would rename "/x" in the login folder; those rungs are never sent. A rung equal
    // to the one before it is sent again.
    server.setReply("RNFR a3/x", "550 Refused.");
    server.setReply("RNFR /a3/x", "550 Refused.", 1);
    EXPECT_TRUE(session->rename("/a3/x", "/a3/y").ok);
    EXPECT_EQ(sent(), (Lines{"RNFR a3/x", "RNFR a3/x", "RNFR /a3/x", "RNFR /a3/x", "RNTO /a3/y"}));

    // When every rung fails, the first one's failure is reported.
    server.setReply("RNFR", "550 Refused.");
    server.setReply("RNFR /gone", "CLOSE");
    SessionResult const result = session->rename("/gone", "/still-gone");
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp operation failed: Quote command returned error");
    EXPECT_EQ(sent(), (Lines{"RNFR gone", "RNFR gone", "RNFR gone", "RNFR /gone", "RNFR /gone"}));
    EXPECT_TRUE(session->isConnected());

    // A login folder elsewhere, or one the server won't tell, leaves only the absolute rungs.
    server.setReply("PWD", "257 \"/home\" is the current directory.");
    ASSERT_TRUE(connect().ok);
    sent();
    EXPECT_TRUE(session->remove("/c15.txt").ok);
    EXPECT_EQ(sent(), (Lines{"DELE /c15.txt"}));
    server.setReply("PWD", "550 Not telling.");
    ASSERT_TRUE(connect().ok);
    sent();
    EXPECT_TRUE(session->rename("/d16", "/e16").ok);
    EXPECT_EQ(sent(), (Lines{"RNFR /d16", "RNTO /e16"}));

    for (char const* kept : {"/a3/y", "/x"}) {
        EXPECT_TRUE(std::filesystem::exists(server.local(kept))) << kept;
    }
    for (char const* gone : {"/y", "/c15.txt", "/d16"}) {
        EXPECT_FALSE(std::filesystem::exists(server.local(gone))) << gone;
    }
}

TEST_F(ScriptedFtp, ListingsAndTransfersFailWithoutLosingWhatTheCallerHad)
{
    // A reply replaces the caller's entries; a failure leaves them.
    put("/top");
    std::vector<RemoteEntry> entries = {{"stale", false, 1, "", ""}};
    ASSERT_TRUE(session->list("/", entries).ok);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "top");
    SessionResult result = session->list("/no/such/folder", entries);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp list: Access denied to remote resource");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "top");
    EXPECT_TRUE(session->isConnected());

    // Refused before any event or command.
    writeFile(local.file("plain"), "not a folder");
    put("/x");
    server.clearReceivedCommands();
    EventRecorder none;
    result = session->upload({local.file("absent"), "/x", false}, none.callback());
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.message, "ftp upload: local file not found");
    result = session->download({local.file("plain/x"), "/x", false}, none.callback());
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.message, "ftp download: cannot open local path");
    EXPECT_THAT(none.events, IsEmpty());
    EXPECT_THAT(server.receivedCommands(), IsEmpty());

    // A failed upload ends in Failed and makes nothing; a failed download empties its local file first.
    writeFile(local.file("f"), "abc");
    EventRecorder up;
    result = session->upload({local.file("f"), "/missing/f", false}, up.callback());
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith("ftp upload: "));
    ASSERT_FALSE(up.events.empty());
    EXPECT_EQ(up.events.front(), (RecordedEvent{TransferEventType::Started, local.file("f"), 0, 3}));
    EXPECT_EQ(up.events.back().type, TransferEventType::Failed);
    EXPECT_EQ(up.events.back().total, 3u);
    EXPECT_FALSE(std::filesystem::exists(server.local("/missing")));
    writeFile(local.file("keep.txt"), "old content");
    EventRecorder down;
    result = session->download({local.file("keep.txt"), "/absent.txt", false}, down.callback());
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.message, "ftp download: Remote file not found");
    ASSERT_FALSE(down.events.empty());
    EXPECT_EQ(down.events.back(), (RecordedEvent{TransferEventType::Failed, local.file("keep.txt"), 0, 0}));
    EXPECT_TRUE(std::filesystem::exists(local.file("keep.txt")));
    EXPECT_EQ(readFile(local.file("keep.txt")), "");
    EXPECT_TRUE(session->isConnected());

    // Bytes the disk refuses do not fail a download.
    put("/x.bin", patternedBytes(1024 * 1024));
    EXPECT_TRUE(session->download({"/dev/full", "/x.bin", false}, {}).ok);

    // Without a size, progress is reported only until the first bytes arrive.
    put("/unsized.bin", patternedBytes(4u * 1024 * 1024));
    server.setReply("SIZE", "502 Command not implemented.");
    EventRecorder unsized;
    ASSERT_TRUE(session->download({local.file("unsized.bin"), "/unsized.bin", false}, unsized.callback()).ok);
    ASSERT_GE(unsized.events.size(), 2u);
    for (std::size_t i = 0; i + 1 < unsized.events.size(); ++i) {
        EXPECT_EQ(unsized.events[i].total, 0u) << i;
        EXPECT_EQ(unsized.events[i].transferred == 0, i + 2 < unsized.events.size()) << i;
    }

    // A failed connect forgets the earlier connection.
    result = session->connect("127.0.0.1", freeLoopbackPort(), server.user(), server.password());
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp connect: Couldn't connect to server");
    EXPECT_FALSE(session->isConnected());

    // A server that dies mid-download leaves what arrived, in order, and a failed transfer.
    ASSERT_TRUE(connect().ok);
    std::string const bytes = patternedBytes(10u * 1024 * 1024);
    put("/big.bin", bytes);
    RecordedEvent last{};
    auto const killOnFirstBytes = [&](TransferEventType type, protocol::TransferProgress const& progress) {
        last = {type, progress.path, progress.transferred, progress.total};
        if (progress.transferred > 0) {
            server.kill();
        }
    };
    result = session->download({local.file("big.bin"), "/big.bin", false}, killOnFirstBytes);
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith("ftp download: "));
    EXPECT_EQ(last.type, TransferEventType::Failed);
    EXPECT_GT(last.transferred, 0u) << "the failure reports the bytes that went through";
    std::string const arrived = readFile(local.file("big.bin"));
    EXPECT_LT(arrived.size(), bytes.size());
    EXPECT_EQ(arrived, bytes.substr(0, arrived.size()));
}

} // namespace
} // namespace perchftp::test
