#include "ftp_session_fixture.hpp"

namespace perchftp::test {
namespace {

using protocol::SessionResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char const kRefused[] = "550 Refused by the test.";

TEST_P(FtpSession, RenamesAtTheRootOnTheFirstRung)
{
    putRemoteFile("/x", "x");
    connectCleanly();
    SessionResult const result = session().rename("/x", "/y");
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.message, said(" operation"));
    EXPECT_TRUE(std::filesystem::exists(server().local("/y")));
    EXPECT_THAT(server().receivedCommands({"RNFR", "RNTO"}), ElementsAre("RNFR x", "RNTO y"));
}

TEST_P(FtpSession, SendsTheSameRenameAgainWhenTheSecondRungRepeatsTheFirst)
{
    putRemoteFile("/x", "x");
    server().setReply("RNFR x", kRefused, 1);
    connectCleanly();
    EXPECT_TRUE(session().rename("/x", "/y").ok);
    EXPECT_THAT(server().receivedCommands({"RNFR", "RNTO"}), ElementsAre("RNFR x", "RNFR x", "RNTO y"));
}

TEST_P(FtpSession, ClimbsTheRenameLadderToTheAbsolutePathAtTheRoot)
{
    putRemoteFile("/a/x", "x");
    server().setReply("RNFR a/x", kRefused);
    server().setReply("RNFR /a/x", kRefused, 1);
    connectCleanly();
    SessionResult const result = session().rename("/a/x", "/a/y");
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" operation"));
    EXPECT_TRUE(std::filesystem::exists(server().local("/a/y")));
    EXPECT_THAT(server().receivedCommands({"RNFR", "RNTO", "CWD", "LIST", "SIZE", "RETR"}),
                ElementsAre("RNFR x", "RNFR a/x", "RNFR a/x", "RNFR /a/x", "RNFR /a/x", "RNTO /a/y", "LIST"));
}

TEST_P(FtpSession, RenamesIntoTheSourceFolderOnTheFirstRungOfAMove)
{
    server().setReply("RNFR", kRefused);
    connectCleanly();
    SessionResult const result = session().rename("/a/x", "/c/y");
    EXPECT_FALSE(result.ok);
    EXPECT_THAT(server().receivedCommands({"RNFR", "RNTO"}),
                ElementsAre("RNFR x", "RNFR a/x", "RNFR a/x", "RNFR /a/x", "RNFR /a/x"));
}

TEST_P(FtpSession, ReportsTheFirstRungsFailureWhenEveryRungFails)
{
    server().setReply("RNFR", kRefused);
    server().setReply("RNFR /gone", "CLOSE");
    connectCleanly();
    SessionResult const result = session().rename("/gone", "/still-gone");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, said(" operation failed: Quote command returned error"));
    EXPECT_EQ(server().receivedCommands({"RNFR"}).size(), 5u);
    EXPECT_TRUE(session().isConnected());
}

TEST_P(FtpSession, RunsACommandBeforeTheFollowingRequestFailsAndRunsItAgainOnTheNextRung)
{
    // Rung 1 makes "b" at the login folder, then fails to fetch its context "/a" as a file;
    // rung 2 makes the folder that was meant.
    std::filesystem::create_directories(server().local("/a"));
    connectCleanly();
    EXPECT_TRUE(session().mkdir("/a/b").ok);
    EXPECT_TRUE(std::filesystem::is_directory(server().local("/b")));
    EXPECT_TRUE(std::filesystem::is_directory(server().local("/a/b")));
    EXPECT_THAT(server().receivedCommands({"MKD", "SIZE"}), ElementsAre("MKD b", "SIZE a", "MKD a/b"));
}

TEST_P(FtpSession, MakesATopLevelFolderOnTheFirstRung)
{
    connectCleanly();
    testing::internal::CaptureStdout();
    SessionResult const result = session().mkdir("/fresh");
    std::string const printed = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" operation"));
    EXPECT_TRUE(std::filesystem::is_directory(server().local("/fresh")));
    EXPECT_THAT(server().receivedCommands({"MKD"}), ElementsAre("MKD fresh"));
    EXPECT_THAT(printed, HasSubstr("fresh")) << "the listing that follows the command goes to standard output";
}

TEST_P(FtpSession, SkipsTheRelativeMkdirRungsOfATopLevelName)
{
    server().setReply("MKD", kRefused);
    connectCleanly();
    SessionResult const result = session().mkdir("/b");
    EXPECT_FALSE(result.ok);
    EXPECT_THAT(server().receivedCommands({"MKD"}), ElementsAre("MKD b", "MKD /b", "MKD /b"));
}

TEST_P(FtpSession, RemovesAFileInAFolderOnTheRelativeRung)
{
    putRemoteFile("/a/b.txt", "b");
    connectCleanly();
    EXPECT_TRUE(session().remove("/a/b.txt").ok);
    EXPECT_FALSE(std::filesystem::exists(server().local("/a/b.txt")));
    EXPECT_THAT(server().receivedCommands({"DELE", "RMD"}), ElementsAre("DELE b.txt", "RMD b.txt", "DELE a/b.txt"));
}

TEST_P(FtpSession, RemovesAFolderNamedWithASlashByRmdFirst)
{
    std::filesystem::create_directories(server().local("/a/b"));
    connectCleanly();
    EXPECT_TRUE(session().remove("/a/b/").ok);
    EXPECT_FALSE(std::filesystem::exists(server().local("/a/b")));
    EXPECT_THAT(server().receivedCommands({"DELE", "RMD"}), ElementsAre("RMD b", "DELE b", "RMD a/b/"));
}

TEST_P(FtpSession, RemovesAFolderNamedWithoutASlashOnlyAfterTryingDele)
{
    std::filesystem::create_directories(server().local("/a/b"));
    connectCleanly();
    EXPECT_TRUE(session().remove("/a/b").ok);
    EXPECT_FALSE(std::filesystem::exists(server().local("/a/b")));
    EXPECT_THAT(server().receivedCommands({"DELE", "RMD"}),
                ElementsAre("DELE b", "RMD b", "DELE a/b", "DELE a/b", "RMD a/b"));
}

TEST_P(FtpSession, TriesAllTenRemoveRungsBeforeGivingUp)
{
    server().setReply("DELE", kRefused);
    server().setReply("RMD", kRefused);
    connectCleanly();
    SessionResult const result = session().remove("/a/b.txt");
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, said(" operation failed: Quote command returned error"));
    EXPECT_EQ(server().receivedCommands({"DELE", "RMD"}).size(), 10u);
}

TEST_P(FtpSession, GivesTheLaddersOwnFailureForEmptyPathsWithoutTouchingTheNetwork)
{
    connectCleanly();
    SessionResult result = session().remove("");
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, said(" operation failed: unknown delete failure"));
    result = session().mkdir("");
    EXPECT_EQ(result.message, said(" operation failed: unknown mkdir failure"));
    result = session().rename("", "");
    EXPECT_EQ(result.message, said(" rename failed: unknown rename failure"));
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
}

TEST_P(FtpSession, SendsTheModeOfChmodInDecimalWithTheCallersPath)
{
    putRemoteFile("/x", "x");
    connectCleanly();
    SessionResult const result = session().chmod("/x", 420);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" operation"));
    EXPECT_THAT(server().receivedCommands({"SITE"}), ElementsAre("SITE CHMOD 420 /x"));

    server().clearReceivedCommands();
    server().setReply("SITE CHMOD", kRefused);
    EXPECT_EQ(session().chmod("/x", 420).message, said(" operation failed: Quote command returned error"));
    EXPECT_EQ(server().receivedCommands({"SITE"}).size(), 1u) << "chmod has no ladder";
}

TEST_P(FtpSession, RefusesANegativeModeWithoutTouchingTheNetwork)
{
    connectCleanly();
    SessionResult const result = session().chmod("/x", -1);
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.message, said(" chmod: invalid mode"));
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
}

TEST_P(FtpSession, RefusesEveryCommandWhenNotConnected)
{
    auto unconnected = makeSession(GetParam());
    EXPECT_EQ(unconnected->rename("/a", "/b").message, said(" rename: not connected"));
    EXPECT_EQ(unconnected->remove("/a").message, said(" delete: not connected"));
    EXPECT_EQ(unconnected->mkdir("/a").message, said(" mkdir: not connected"));
    EXPECT_EQ(unconnected->chmod("/a", -1).message, said(" chmod: not connected"));
    std::vector<protocol::RemoteEntry> entries;
    SessionResult const listed = unconnected->list("/", entries);
    EXPECT_EQ(listed.code, 1);
    EXPECT_EQ(listed.message, said(" list: not connected"));
}

TEST_P(FtpSession, SendsNamesWithBlanksAndDotsAsTheyStand)
{
    putRemoteFile("/my file", "x");
    std::filesystem::create_directories(server().local("/a"));
    connectCleanly();
    EXPECT_TRUE(session().rename("/my file", "/a/../their file").ok);
    EXPECT_TRUE(std::filesystem::exists(server().local("/their file")));
    EXPECT_THAT(server().receivedCommands({"RNFR", "RNTO"}), ElementsAre("RNFR my file", "RNTO their file"));
}

} // namespace
} // namespace perchftp::test
