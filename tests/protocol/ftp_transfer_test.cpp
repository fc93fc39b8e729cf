#include "session_fixture.hpp"

namespace perchftp::test {
namespace {

using protocol::SessionResult;
using protocol::TransferParams;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::size_t kTenMegabytes = 10u * 1024 * 1024;

TEST_P(FtpSession, TransfersByteForByteWithEachDirectionsEventSequence)
{
    std::string const bytes = patternedBytes(kTenMegabytes);
    std::string const upPath = local_.file("big.bin");
    writeFile(upPath, bytes);
    connectCleanly();
    EventRecorder up;
    SessionResult result = session().upload({upPath, "/big.bin", false}, up.callback());
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" upload"));
    EXPECT_EQ(readFile(server().local("/big.bin")), bytes);
    EXPECT_THAT(up.shape(), ElementsAre(TransferEventType::Started, TransferEventType::Progress, TransferEventType::Completed));
    EXPECT_EQ(up.events.front().path, upPath);
    EXPECT_EQ(up.events.front().transferred, 0u);
    EXPECT_EQ(up.events.front().total, kTenMegabytes);
    EXPECT_EQ(up.events.back().transferred, kTenMegabytes);
    EXPECT_EQ(up.events.back().total, kTenMegabytes);
    EXPECT_EQ(up.progress().back().transferred, kTenMegabytes);
    EXPECT_THAT(server().receivedCommands({"STOR"}), ElementsAre("STOR big.bin"));

    // A download makes the local folders, starts with no Started and completes as 0 of 0.
    std::string const downPath = local_.file("new/folders/big.bin");
    EventRecorder down;
    result = session().download({downPath, "big.bin", false}, down.callback());
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" download"));
    EXPECT_EQ(readFile(downPath), bytes);
    EXPECT_THAT(down.shape(), ElementsAre(TransferEventType::Progress, TransferEventType::Completed));
    EXPECT_EQ(down.events.back().transferred, 0u);
    EXPECT_EQ(down.events.back().total, 0u);
    RecordedEvent const last = down.progress().back();
    EXPECT_EQ(last.transferred, kTenMegabytes);
    EXPECT_EQ(last.total, kTenMegabytes);
    EXPECT_EQ(last.path, downPath);

    // An empty file goes up as 0 of 0 from start to end; no callback works the same.
    writeFile(local_.file("empty"), "");
    EventRecorder empty;
    ASSERT_TRUE(session().upload({local_.file("empty"), "/empty", false}, empty.callback()).ok);
    EXPECT_EQ(std::filesystem::file_size(server().local("/empty")), 0u);
    ASSERT_GE(empty.events.size(), 2u);
    EXPECT_EQ(empty.events.front().type, TransferEventType::Started);
    EXPECT_EQ(empty.events.back().type, TransferEventType::Completed);
    for (RecordedEvent const& event : empty.events) {
        EXPECT_EQ(event.transferred + event.total, 0u);
    }
    writeFile(local_.file("up.txt"), "payload");
    ASSERT_TRUE(session().upload({local_.file("up.txt"), "/up.txt", false}, {}).ok);
    ASSERT_TRUE(session().download({local_.file("down.txt"), "/up.txt", false}, {}).ok);
    EXPECT_EQ(readFile(local_.file("down.txt")), "payload");
}

TEST_P(FtpSession, RefusesBadTransfersBeforeAnyEventOrCommand)
{
    writeFile(local_.file("plain"), "not a folder");
    writeFile(local_.file("local"), "y");
    putRemoteFile("/x", "x");
    putRemoteFile("/my file", "x");
    connectCleanly();
    std::string const badUrl = ": URL using bad/illegal format or missing URL";
    struct Row {
        bool upload;
        std::string localPath;
        std::string remotePath;
        int code;
        std::string failure;
    };
    for (Row const& row : std::vector<Row>{
             {true, "", "/x", 3, " upload: invalid path"},
             {false, local_.file("x"), "", 3, " download: invalid path"},
             {true, local_.file("absent"), "/absent", 3, " upload: local file not found"},
             {false, local_.file("plain/x"), "/x", 3, " download: cannot open local path"},
             // Names go into the URL unescaped, where libcurl refuses blanks, quotes and newlines.
             {false, local_.file("copy"), "/my file", 5, " download" + badUrl},
             {true, local_.file("local"), "/my \"quoted\" file", 5, " upload" + badUrl},
             {false, local_.file("copy"), "/new\nline", 5, " download" + badUrl}}) {
        SCOPED_TRACE(row.remotePath);
        EventRecorder events;
        TransferParams const params{row.localPath, row.remotePath, false};
        SessionResult const result =
            row.upload ? session().upload(params, events.callback()) : session().download(params, events.callback());
        EXPECT_EQ(result.code, row.code);
        EXPECT_EQ(result.message, said(row.failure));
        if (row.code == 3) {
            EXPECT_THAT(events.events, IsEmpty());
        }
    }
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
    EXPECT_EQ(readFile(local_.file("plain")), "not a folder");
}

TEST_P(FtpSession, AFailedTransferEndsWithFailedAndADownloadEmptiesItsLocalFileFirst)
{
    writeFile(local_.file("f"), "abc");
    writeFile(local_.file("keep.txt"), "old content");
    connectCleanly();
    EventRecorder up;
    SessionResult result = session().upload({local_.file("f"), "/missing/f", false}, up.callback());
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith(said(" upload: ")));
    EXPECT_EQ(up.events.front().type, TransferEventType::Started);
    EXPECT_EQ(up.events.back().type, TransferEventType::Failed);
    EXPECT_EQ(up.events.back().total, 3u);
    EXPECT_FALSE(std::filesystem::exists(server().local("/missing")));
    EXPECT_TRUE(session().isConnected());

    EventRecorder down;
    result = session().download({local_.file("keep.txt"), "/absent.txt", false}, down.callback());
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.message, said(" download: Remote file not found"));
    ASSERT_FALSE(down.events.empty());
    EXPECT_EQ(down.events.back().type, TransferEventType::Failed);
    EXPECT_EQ(down.events.back().transferred + down.events.back().total, 0u);
    EXPECT_TRUE(std::filesystem::exists(local_.file("keep.txt")));
    EXPECT_EQ(readFile(local_.file("keep.txt")), "");

    // Bytes the disk refuses do not fail the transfer.
    ASSERT_TRUE(std::filesystem::exists("/dev/full"));
    EventRecorder full;
    putRemoteFile("/x.bin", patternedBytes(1024 * 1024));
    result = session().download({"/dev/full", "/x.bin", false}, full.callback());
    EXPECT_TRUE(result.ok) << result.message;
    EXPECT_EQ(full.events.back().type, TransferEventType::Completed);
}

TEST_P(FtpSession, KeepsWhatArrivedWhenTheServerDiesMidDownload)
{
    options_.throttleBytesPerSecond = 2u * 1024 * 1024;
    server_ = std::make_unique<FtpTestServer>(options_);
    putRemoteFile("/big.bin", patternedBytes(kTenMegabytes));
    connectCleanly();
    EventRecorder recorder;
    auto const record = recorder.callback();
    SessionResult const result = session().download(
        {local_.file("big.bin"), "/big.bin", false}, [&](TransferEventType type, protocol::TransferProgress const& progress) {
            record(type, progress);
            if (progress.transferred > 0) {
                server().kill();
            }
        });
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith(said(" download: ")));
    EXPECT_EQ(recorder.events.back().type, TransferEventType::Failed);
    auto const arrived = std::filesystem::file_size(local_.file("big.bin"));
    EXPECT_LT(arrived, kTenMegabytes);
    EXPECT_EQ(readFile(local_.file("big.bin")), patternedBytes(kTenMegabytes).substr(0, arrived));
}

TEST_P(FtpSession, ReportsProgressOfADownloadOfUnknownSizeOnlyUntilBytesArrive)
{
    putRemoteFile("/unsized.bin", patternedBytes(kTenMegabytes));
    server().setReply("SIZE", "502 Command not implemented.");
    connectCleanly();
    EventRecorder recorder;
    SessionResult const result = session().download({local_.file("unsized.bin"), "/unsized.bin", false}, recorder.callback());
    ASSERT_TRUE(result.ok) << result.message;
    EXPECT_EQ(std::filesystem::file_size(local_.file("unsized.bin")), kTenMegabytes);
    std::vector<RecordedEvent> const reports = recorder.progress();
    ASSERT_FALSE(reports.empty());
    EXPECT_GT(reports.back().transferred, 0u) << "the first report with bytes is the last one";
    for (std::size_t i = 0; i < reports.size(); ++i) {
        EXPECT_EQ(reports[i].total, 0u);
        EXPECT_EQ(reports[i].transferred == 0, i + 1 < reports.size()) << i;
    }
}

} // namespace
} // namespace perchftp::test
