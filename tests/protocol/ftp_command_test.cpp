#include "session_fixture.hpp"

#include <functional>

namespace perchftp::test {
namespace {

using protocol::IRemoteSession;
using protocol::SessionResult;
using testing::HasSubstr;

using Lines = std::vector<std::string>;

// One remote command against the server as the previous rows left it. Each row uses names of
// its own; `replies` are whole lines or verbs answered with a 550 (or CLOSE) instead. A row with
// a `login` reply first connects again while PWD gives that answer, which sets the login folder
// the session believes in (the server's own stays "/").
struct CommandRow {
    char const* what;
    Lines files;
    Lines folders;
    std::vector<std::tuple<std::string, std::string, int>> replies;
    std::function<SessionResult(IRemoteSession&)> run;
    int code;
    std::string message;
    Lines verbs; // the commands of the record to compare; empty for all of them
    Lines wire;
    Lines existing{};
    Lines gone{};
    std::string login{};
};

constexpr char const kRefused[] = "550 Refused by the test.";
std::string const kOk = " operation";
std::string const kQuoteFailed = " operation failed: Quote command returned error";

std::vector<CommandRow> commandRows()
{
    return {
        {"rename at the root on the first rung", {"/r1"}, {}, {},
         [](IRemoteSession& s) { return s.rename("/r1", "/r1b"); }, 0, kOk, {"RNFR", "RNTO"},
         {"RNFR r1", "RNTO r1b"}, {"/r1b"}, {"/r1"}},
        {"a second rung equal to the first is sent again", {"/r2"}, {}, {{"RNFR r2", kRefused, 1}},
         [](IRemoteSession& s) { return s.rename("/r2", "/r2b"); }, 0, kOk, {"RNFR", "RNTO"},
         {"RNFR r2", "RNFR r2", "RNTO r2b"}},
        // The bare names would rename "/x" in the login folder; those rungs are never sent.
        {"rename in a folder climbs to the absolute path and leaves a namesake at the root alone", {"/a3/x", "/x"},
         {}, {{"RNFR a3/x", kRefused, -1}, {"RNFR /a3/x", kRefused, 1}},
         [](IRemoteSession& s) { return s.rename("/a3/x", "/a3/y"); }, 0, kOk,
         {"RNFR", "RNTO", "CWD", "LIST", "SIZE", "RETR"},
         {"RNFR a3/x", "RNFR a3/x", "RNFR /a3/x", "RNFR /a3/x", "RNTO /a3/y", "LIST"}, {"/a3/y", "/x"}, {"/y"}},
        {"the first rung's failure is reported when all fail", {}, {},
         {{"RNFR", kRefused, -1}, {"RNFR /gone", "CLOSE", -1}},
         [](IRemoteSession& s) { return s.rename("/gone", "/still-gone"); }, 1, kQuoteFailed, {"RNFR"},
         {"RNFR gone", "RNFR gone", "RNFR gone", "RNFR /gone", "RNFR /gone"}},
        {"names with blanks and dots go as they stand", {"/my file"}, {"/a17"}, {},
         [](IRemoteSession& s) { return s.rename("/my file", "/a17/../their file"); }, 0, kOk, {"RNFR", "RNTO"},
         {"RNFR my file", "RNTO their file"}, {"/their file"}},
        {"mkdir in a folder makes nothing in the login folder", {}, {"/a6"}, {},
         [](IRemoteSession& s) { return s.mkdir("/a6/b6"); }, 0, kOk, {"MKD", "SIZE"}, {"MKD a6/b6"}, {"/a6/b6"},
         {"/b6"}},
        {"a top-level folder is made on the first rung", {}, {}, {},
         [](IRemoteSession& s) { return s.mkdir("/fresh7"); }, 0, kOk, {"MKD"}, {"MKD fresh7"}, {"/fresh7"}},
        {"a file in a folder goes on the relative rung and its namesake at the root stays", {"/a9/b.txt", "/b.txt"},
         {}, {}, [](IRemoteSession& s) { return s.remove("/a9/b.txt"); }, 0, kOk, {"DELE", "RMD"},
         {"DELE a9/b.txt"}, {"/b.txt"}, {"/a9/b.txt"}},
        {"a folder named with a slash is tried with RMD first", {}, {"/a10/b", "/b"}, {},
         [](IRemoteSession& s) { return s.remove("/a10/b/"); }, 0, kOk, {"DELE", "RMD"}, {"RMD a10/b/"}, {"/b"},
         {"/a10/b"}},
        {"a folder named without a slash goes after DELE", {}, {"/a11/b"}, {},
         [](IRemoteSession& s) { return s.remove("/a11/b"); }, 0, kOk, {"DELE", "RMD"},
         {"DELE a11/b", "DELE a11/b", "RMD a11/b"}, {"/b"}, {"/a11/b"}},
        {"a file at the root goes on the first rung", {}, {}, {}, [](IRemoteSession& s) { return s.remove("/b.txt"); },
         0, kOk, {"DELE", "RMD"}, {"DELE b.txt"}, {}, {"/b.txt"}},
        {"an empty remove has no rung", {}, {}, {}, [](IRemoteSession& s) { return s.remove(""); }, 1,
         " operation failed: unknown delete failure", {}, {}},
        {"an empty mkdir has no rung", {}, {}, {}, [](IRemoteSession& s) { return s.mkdir(""); }, 1,
         " operation failed: unknown mkdir failure", {}, {}},
        {"an empty rename has no rung", {}, {}, {}, [](IRemoteSession& s) { return s.rename("", ""); }, 1,
         " rename failed: unknown rename failure", {}, {}},
        {"chmod writes the mode in decimal with the caller's path", {"/x14"}, {}, {},
         [](IRemoteSession& s) { return s.chmod("/x14", 420); }, 0, kOk, {"SITE"}, {"SITE CHMOD 420 /x14"}},
        {"chmod has no ladder", {}, {}, {{"SITE CHMOD", kRefused, -1}},
         [](IRemoteSession& s) { return s.chmod("/x14", 420); }, 1, kQuoteFailed, {"SITE"}, {"SITE CHMOD 420 /x14"}},
        {"a negative mode is refused at home", {}, {}, {}, [](IRemoteSession& s) { return s.chmod("/x14", -1); }, 4,
         " chmod: invalid mode", {}, {}},
        {"a login folder elsewhere leaves only the absolute rungs", {"/c15.txt"}, {}, {},
         [](IRemoteSession& s) { return s.remove("/c15.txt"); }, 0, kOk, {"DELE", "RMD"}, {"DELE /c15.txt"}, {},
         {"/c15.txt"}, "257 \"/home\" is the current directory."},
        {"an unknown login folder leaves only the absolute rungs", {"/d16"}, {}, {},
         [](IRemoteSession& s) { return s.rename("/d16", "/e16"); }, 0, kOk, {"RNFR", "RNTO"},
         {"RNFR /d16", "RNTO /e16"}, {"/e16"}, {"/d16"}, "550 Not telling."},
    };
}

TEST_P(FtpSession, RemoteCommandsClimbTheirLaddersOnTheWire)
{
    connectCleanly();
    for (CommandRow const& row : commandRows()) {
        SCOPED_TRACE(row.what);
        for (auto const& file : row.files) {
            putRemoteFile(file, "x");
        }
        for (auto const& folder : row.folders) {
            std::filesystem::create_directories(server().local(folder));
        }
        server().clearReplies();
        if (!row.login.empty()) {
            server().setReply("PWD", row.login);
            ASSERT_TRUE(connect(server().password()).ok);
            server().clearReplies();
        }
        for (auto const& [command, reply, times] : row.replies) {
            server().setReply(command, reply, times);
        }
        server().clearReceivedCommands();
        testing::internal::CaptureStdout();
        SessionResult const result = row.run(session());
        std::string const printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(result.ok, row.code == 0);
        EXPECT_EQ(result.code, row.code);
        EXPECT_EQ(result.message, said(row.message));
        EXPECT_EQ(row.verbs.empty() ? server().receivedCommands() : server().receivedCommands(row.verbs), row.wire);
        for (auto const& path : row.existing) {
            EXPECT_TRUE(std::filesystem::exists(server().local(path))) << path;
        }
        for (auto const& path : row.gone) {
            EXPECT_FALSE(std::filesystem::exists(server().local(path))) << path;
        }
        if (row.existing == Lines{"/fresh7"}) {
            EXPECT_THAT(printed, HasSubstr("fresh7")) << "the listing after a command goes to standard output";
        }
        EXPECT_TRUE(session().isConnected());
    }
}

TEST_P(FtpSession, RefusesEveryOperationWhenNotConnected)
{
    auto unconnected = makeSession(GetParam());
    protocol::TransferParams const params{local_.file("x"), "/x", false};
    EventRecorder recorder;
    SessionResult const uploaded = unconnected->upload(params, recorder.callback());
    EXPECT_EQ(uploaded.code, 1);
    EXPECT_EQ(uploaded.message, said(" upload: not connected"));
    EXPECT_EQ(unconnected->download(params, recorder.callback()).message, said(" download: not connected"));
    EXPECT_TRUE(recorder.events.empty());
    EXPECT_EQ(unconnected->rename("/a", "/b").message, said(" rename: not connected"));
    EXPECT_EQ(unconnected->remove("/a").message, said(" delete: not connected"));
    EXPECT_EQ(unconnected->mkdir("/a").message, said(" mkdir: not connected"));
    EXPECT_EQ(unconnected->chmod("/a", -1).message, said(" chmod: not connected"));
    std::vector<protocol::RemoteEntry> entries;
    SessionResult const listed = unconnected->list("/", entries);
    EXPECT_EQ(listed.code, 1);
    EXPECT_EQ(listed.message, said(" list: not connected"));
}

} // namespace
} // namespace perchftp::test
