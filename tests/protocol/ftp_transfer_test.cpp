#include "ftp_session_fixture.hpp"

namespace perchftp::test {
namespace {

using protocol::SessionResult;
using protocol::TransferEventType;
using protocol::TransferParams;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::size_t kTenMegabytes = 10u * 1024 * 1024;

TEST_P(FtpSession, UploadsTenMegabytesByteForByteWithStartedProgressAndCompleted)
{
    std::string const bytes = patternedBytes(kTenMegabytes);
    std::string const localPath = local_.file("big.bin");
    writeFile(localPath, bytes);
    connectCleanly();
    EventRecorder recorder;
    SessionResult const result = session().upload({localPath, "/big.bin", false}, recorder.callback());
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" upload"));
    EXPECT_EQ(readFile(server().local("/big.bin")), bytes);

    EXPECT_THAT(recorder.shape(),
                ElementsAre(TransferEventType::Started, TransferEventType::Progress, TransferEventType::Completed));
    RecordedEvent const& started = recorder.events().front();
    EXPECT_EQ(started.path, localPath);
    EXPECT_EQ(started.transferred, 0u);
    EXPECT_EQ(started.total, kTenMegabytes);
    RecordedEvent const& completed = recorder.events().back();
    EXPECT_EQ(completed.transferred, kTenMegabytes);
    EXPECT_EQ(completed.total, kTenMegabytes);
    EXPECT_EQ(recorder.progress().back().transferred, kTenMegabytes);
    EXPECT_THAT(server().receivedCommands({"STOR"}), ElementsAre("STOR big.bin"));
}

TEST_P(FtpSession, UploadsAnEmptyFileAsZeroOfZero)
{
    std::string const localPath = local_.file("empty");
    writeFile(localPath, "");
    connectCleanly();
    EventRecorder recorder;
    ASSERT_TRUE(session().upload({localPath, "/empty", false}, recorder.callback()).ok);
    EXPECT_TRUE(std::filesystem::exists(server().local("/empty")));
    EXPECT_EQ(std::filesystem::file_size(server().local("/empty")), 0u);
    ASSERT_GE(recorder.events().size(), 2u);
    for (RecordedEvent const& event : recorder.events()) {
        EXPECT_EQ(event.transferred, 0u);
        EXPECT_EQ(event.total, 0u);
    }
    EXPECT_EQ(recorder.events().front().type, TransferEventType::Started);
    EXPECT_EQ(recorder.events().back().type, TransferEventType::Completed);
}

TEST_P(FtpSession, DownloadsTenMegabytesWithoutStartedAndCompletesAsZeroOfZero)
{
    std::string const bytes = patternedBytes(kTenMegabytes);
    putRemoteFile("/big.bin", bytes);
    std::string const localPath = local_.file("new/folders/big.bin");
    connectCleanly();
    EventRecorder recorder;
    SessionResult const result = session().download({localPath, "big.bin", false}, recorder.callback());
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" download"));
    EXPECT_EQ(readFile(localPath), bytes);

    EXPECT_THAT(recorder.shape(), ElementsAre(TransferEventType::Progress, TransferEventType::Completed));
    EXPECT_EQ(recorder.events().back().transferred, 0u);
    EXPECT_EQ(recorder.events().back().total, 0u);
    RecordedEvent const last = recorder.progress().back();
    EXPECT_EQ(last.transferred, kTenMegabytes);
    EXPECT_EQ(last.total, kTenMegabytes);
    EXPECT_EQ(last.path, localPath);
}

TEST_P(FtpSession, TransfersTheSameWithoutACallback)
{
    writeFile(local_.file("up.txt"), "payload");
    connectCleanly();
    ASSERT_TRUE(session().upload({local_.file("up.txt"), "/up.txt", false}, {}).ok);
    ASSERT_TRUE(session().download({local_.file("down.txt"), "/up.txt", false}, {}).ok);
    EXPECT_EQ(readFile(local_.file("down.txt")), "payload");
}

TEST_P(FtpSession, RefusesTransfersWithoutPathsOrConnectionBeforeAnyEvent)
{
    auto unconnected = makeSession(GetParam());
    EventRecorder recorder;
    SessionResult result = unconnected->upload({local_.file("x"), "/x", false}, recorder.callback());
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, said(" upload: not connected"));
    result = unconnected->download({local_.file("x"), "/x", false}, recorder.callback());
    EXPECT_EQ(result.message, said(" download: not connected"));

    connectCleanly();
    result = session().upload({"", "/x", false}, recorder.callback());
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.message, said(" upload: invalid path"));
    result = session().download({local_.file("x"), "", false}, recorder.callback());
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.message, said(" download: invalid path"));
    EXPECT_THAT(recorder.events(), IsEmpty());
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
}

TEST_P(FtpSession, RefusesAMissingLocalFileWithoutAnyEventOrConnection)
{
    connectCleanly();
    EventRecorder recorder;
    SessionResult const result = session().upload({local_.file("absent"), "/absent", false}, recorder.callback());
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.message, said(" upload: local file not found"));
    EXPECT_THAT(recorder.events(), IsEmpty());
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
}

TEST_P(FtpSession, RefusesADownloadWhoseLocalFolderIsAFile)
{
    writeFile(local_.file("plain"), "not a folder");
    putRemoteFile("/x", "x");
    connectCleanly();
    EventRecorder recorder;
    SessionResult const result = session().download({local_.file("plain/x"), "/x", false}, recorder.callback());
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.message, said(" download: cannot open local path"));
    EXPECT_THAT(recorder.events(), IsEmpty());
    EXPECT_EQ(readFile(local_.file("plain")), "not a folder");
}

TEST_P(FtpSession, FailsAnUploadIntoAMissingRemoteFolder)
{
    writeFile(local_.file("f"), "abc");
    connectCleanly();
    EventRecorder recorder;
    SessionResult const result = session().upload({local_.file("f"), "/missing/f", false}, recorder.callback());
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith(said(" upload: ")));
    EXPECT_EQ(recorder.events().front().type, TransferEventType::Started);
    EXPECT_EQ(recorder.events().back().type, TransferEventType::Failed);
    EXPECT_EQ(recorder.events().back().total, 3u);
    EXPECT_FALSE(std::filesystem::exists(server().local("/missing")));
    EXPECT_TRUE(session().isConnected());
}

TEST_P(FtpSession, EmptiesTheLocalFileEvenWhenTheDownloadFails)
{
    writeFile(local_.file("keep.txt"), "old content");
    connectCleanly();
    EventRecorder recorder;
    SessionResult const result = session().download({local_.file("keep.txt"), "/absent.txt", false}, recorder.callback());
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.message, said(" download: Remote file not found"));
    ASSERT_FALSE(recorder.events().empty());
    EXPECT_EQ(recorder.events().back().type, TransferEventType::Failed);
    EXPECT_EQ(recorder.events().back().transferred, 0u);
    EXPECT_EQ(recorder.events().back().total, 0u);
    EXPECT_TRUE(std::filesystem::exists(local_.file("keep.txt")));
    EXPECT_EQ(readFile(local_.file("keep.txt")), "");
}

TEST_P(FtpSession, KeepsWhatArrivedWhenTheServerDiesMidDownload)
{
    restartThrottled(2u * 1024 * 1024);
    putRemoteFile("/big.bin", patternedBytes(kTenMegabytes));
    connectCleanly();
    EventRecorder recorder;
    bool killed = false;
    auto const record = recorder.callback();
    SessionResult const result = session().download(
        {local_.file("big.bin"), "/big.bin", false},
        [&](TransferEventType type, protocol::TransferProgress const& progress) {
            record(type, progress);
            if (!killed && progress.transferred > 0) {
                killed = true;
                server().kill();
            }
        });
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith(said(" download: ")));
    EXPECT_EQ(recorder.events().back().type, TransferEventType::Failed);
    auto const arrived = std::filesystem::file_size(local_.file("big.bin"));
    EXPECT_LT(arrived, kTenMegabytes);
    EXPECT_EQ(readFile(local_.file("big.bin")), patternedBytes(kTenMegabytes).substr(0, arrived));
}

TEST_P(FtpSession, LeavesNamesWithBlanksUnescapedSoLibcurlRefusesTheirUrls)
{
    putRemoteFile("/my file", "x");
    writeFile(local_.file("local"), "y");
    connectCleanly();
    EventRecorder recorder;
    SessionResult const down = session().download({local_.file("copy"), "/my file", false}, recorder.callback());
    EXPECT_EQ(down.code, 5);
    EXPECT_EQ(down.message, said(" download: URL using bad/illegal format or missing URL"));
    SessionResult const up = session().upload({local_.file("local"), "/my \"quoted\" file", false}, {});
    EXPECT_EQ(up.code, 5);
    EXPECT_EQ(up.message, said(" upload: URL using bad/illegal format or missing URL"));
    SessionResult const newline = session().download({local_.file("copy"), "/new\nline", false}, {});
    EXPECT_EQ(newline.message, said(" download: URL using bad/illegal format or missing URL"));
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
}

} // namespace
} // namespace perchftp::test
