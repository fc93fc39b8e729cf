#include "ftp_session_fixture.hpp"

#include "support/servers/child_process.hpp"

namespace perchftp::test {
namespace {

using protocol::RemoteEntry;
using protocol::SessionResult;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

TEST_P(FtpSession, ConnectsByLoggingInWithoutAnyRequestOfItsOwn)
{
    SessionResult const result = connect();
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.message, said(" connect"));
    EXPECT_TRUE(session().isConnected());
    EXPECT_THAT(server().receivedCommands({"LIST", "RETR", "STOR", "NLST", "MLSD"}), IsEmpty());
    EXPECT_THAT(server().receivedCommands({"USER", "PASS"}),
                ElementsAre("USER " + server().user(), "PASS " + server().password()));
}

TEST_P(FtpSession, RefusesAWrongPasswordAndForgetsAnEarlierConnection)
{
    ASSERT_TRUE(connect().ok);
    SessionResult const result = session().connect("127.0.0.1", server().port(), server().user(), "wrong");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, said(" connect: Login denied"));
    EXPECT_FALSE(session().isConnected());
}

TEST_P(FtpSession, ReportsAClosedPortInLibcurlsWords)
{
    SessionResult const result = session().connect("127.0.0.1", freeLoopbackPort(), "u", "p");
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, said(" connect: Couldn't connect to server"));
    EXPECT_FALSE(session().isConnected());
}

TEST_P(FtpSession, RejectsAnEndpointWithoutHostOrPositivePortBeforeTouchingTheNetwork)
{
    ASSERT_TRUE(connect().ok);
    for (auto const& [host, port] : std::vector<std::pair<std::string, int>>{{"", server().port()},
                                                                             {"127.0.0.1", 0},
                                                                             {"127.0.0.1", -21}}) {
        server().clearReceivedCommands();
        SessionResult const result = session().connect(host, port, server().user(), server().password());
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.code, 1);
        EXPECT_EQ(result.message, said(" connect: invalid endpoint"));
        EXPECT_FALSE(session().isConnected());
        EXPECT_THAT(server().receivedCommands(), IsEmpty());
    }
}

TEST_P(FtpSession, PutsAPasswordWithAnAtSignIntoTheUrlUnescapedWhichLibcurlRefuses)
{
    for (std::string const password : {"p@ss", "a@b@c"}) {
        SessionResult const result = session().connect("127.0.0.1", server().port(), server().user(), password);
        EXPECT_EQ(result.message, said(" connect: URL using bad/illegal format or missing URL")) << password;
        EXPECT_FALSE(session().isConnected());
    }
}

TEST_P(FtpSession, DisconnectsWithoutTalkingToTheServer)
{
    auto fresh = makeSession(GetParam());
    EXPECT_EQ(fresh->disconnect().message, said(" disconnect"));
    EXPECT_TRUE(fresh->disconnect().ok);

    connectCleanly();
    SessionResult const result = session().disconnect();
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" disconnect"));
    EXPECT_FALSE(session().isConnected());
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
}

TEST_P(FtpSession, ListsTheServersOwnFolder)
{
    putRemoteFile("/notes.txt", "12345");
    std::filesystem::create_directories(server().local("/docs"));
    connectCleanly();
    std::vector<RemoteEntry> entries;
    SessionResult const result = session().list("/", entries);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.message, said(" list"));
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].name, "docs");
    EXPECT_TRUE(entries[0].isDirectory);
    EXPECT_EQ(entries[1].name, "notes.txt");
    EXPECT_EQ(entries[1].size, 5u);
    EXPECT_EQ(entries[1].permissions, "-rw-r--r--");
    EXPECT_FALSE(entries[1].modifiedAt.empty());
}

TEST_P(FtpSession, ListsAFolderAsAFolderUrlWhateverItsSpelling)
{
    std::filesystem::create_directories(server().local("/a/b"));
    server().setListing("/a/b", "-rw-r--r-- 1 me staff 7 Jan 5 10:30 inner.txt\n");
    connectCleanly();
    for (std::string const path : {"/a/b", "a/b", "/a/b/"}) {
        server().clearReceivedCommands();
        std::vector<RemoteEntry> entries;
        ASSERT_TRUE(session().list(path, entries).ok) << path;
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_EQ(entries[0].name, "inner.txt");
        EXPECT_THAT(server().receivedCommands({"CWD", "LIST"}), ElementsAre("CWD a", "CWD b", "LIST")) << path;
    }
    for (std::string const path : {"", "."}) {
        server().clearReceivedCommands();
        std::vector<RemoteEntry> entries;
        ASSERT_TRUE(session().list(path, entries).ok);
        EXPECT_THAT(server().receivedCommands({"CWD", "LIST"}), ElementsAre("LIST")) << path;
    }
}

TEST_P(FtpSession, LeavesDotSegmentsToLibcurlWhichResolvesThemInTheUrl)
{
    std::filesystem::create_directories(server().local("/a/b"));
    server().setListing("/a/b", "inner\n");
    server().setListing("/", "top\n");
    connectCleanly();
    std::vector<RemoteEntry> entries;
    ASSERT_TRUE(session().list("/a/../a/./b", entries).ok);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "inner");
    ASSERT_TRUE(session().list("/a/..", entries).ok);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "top");
    EXPECT_THAT(server().receivedCommands({"CWD", "LIST"}), ElementsAre("CWD a", "CWD b", "LIST", "LIST"));
}

TEST_P(FtpSession, ParsesScriptedRepliesExactlyAsTheyArrive)
{
    static char const kGarbage[] = "\0\x01\xff garbage \x7f\n\x80";
    struct Reply {
        std::string body;
        std::vector<std::string> names;
    };
    std::vector<Reply> const replies = {
        {"total 24\r\n-rw-r--r-- 1 me staff 1234 Jan 5 10:30 notes.txt\r\n", {"24", "notes.txt"}},
        {"01-05-24  10:30AM       <DIR>          Reports\r\n01-05-24  10:31AM  12 a.txt\r\n", {"Reports", "a.txt"}},
        {"type=dir;size=0; sub dir\r\ntype=file;size=10;perm=r; a b.txt\r\n", {"sub dir", "a b.txt"}},
        {"readme.md\r\ntotals.csv\r\nsrc", {"readme.md", "src"}},
        {"", {}},
        {std::string(kGarbage, sizeof(kGarbage) - 1), {"\x7f", "\x80"}},
    };
    connectCleanly();
    for (Reply const& reply : replies) {
        server().setListing("/", reply.body);
        std::vector<RemoteEntry> entries;
        ASSERT_TRUE(session().list("/", entries).ok);
        std::vector<std::string> names;
        for (RemoteEntry const& entry : entries) {
            names.push_back(entry.name);
        }
        EXPECT_EQ(names, reply.names) << reply.body;
    }
}

TEST_P(FtpSession, KeepsTheCallersEntriesWhenAListingFails)
{
    connectCleanly();
    std::vector<RemoteEntry> entries = {{"kept", false, 1, "", ""}};
    SessionResult const missing = session().list("/no/such/folder", entries);
    EXPECT_FALSE(missing.ok);
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.message, said(" list: Access denied to remote resource"));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "kept");

    server().setReply("LIST", "CLOSE");
    SessionResult const dropped = session().list("/", entries);
    EXPECT_FALSE(dropped.ok);
    EXPECT_THAT(dropped.message, StartsWith(said(" list: ")));
    EXPECT_EQ(entries.size(), 1u);
    EXPECT_TRUE(session().isConnected());
}

TEST_P(FtpSession, ReplacesTheCallersEntriesWhenAListingWorks)
{
    server().setListing("/", "only.txt\n");
    connectCleanly();
    std::vector<RemoteEntry> entries = {{"old", false, 1, "", ""}, {"older", false, 2, "", ""}};
    ASSERT_TRUE(session().list("/", entries).ok);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "only.txt");
}

INSTANTIATE_TEST_SUITE_P(Protocols, FtpSession, testing::Values("ftp", "ftps"));

TEST(FtpsSession, RefusesACertificateThatNoTrustedAuthoritySigned)
{
    TestCertificates trusted;
    TestCertificates stranger;
    std::string const reason = trustInPrivateMountNamespace(trusted.authorityCertificate());
    if (!reason.empty()) {
        GTEST_SKIP() << "FTPS test skipped: it " << reason;
    }
    FtpTestServerOptions options;
    options.implicitTls = true;
    options.certificateFile = stranger.serverCertificate();
    options.keyFile = stranger.serverKey();
    FtpTestServer strangerServer(options);
    options.certificateFile = trusted.serverCertificate();
    options.keyFile = trusted.serverKey();
    FtpTestServer trustedServer(options);

    auto session = makeSession("ftps");
    SessionResult const refused = session->connect("127.0.0.1", strangerServer.port(), strangerServer.user(),
                                                   strangerServer.password());
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.message, "ftps connect: SSL peer certificate or SSH remote key was not OK");
    EXPECT_FALSE(session->isConnected());
    EXPECT_THAT(strangerServer.receivedCommands(), IsEmpty()) << "no credentials go to an untrusted server";

    EXPECT_TRUE(session->connect("127.0.0.1", trustedServer.port(), trustedServer.user(), trustedServer.password()).ok);
}

TEST(FtpsSession, IsRefusedByAServerThatSpeaksPlainFtp)
{
    FtpTestServer server;
    auto session = makeSession("ftps");
    SessionResult const result = session->connect("127.0.0.1", server.port(), server.user(), server.password());
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.message, StartsWith("ftps connect: "));
    EXPECT_FALSE(session->isConnected());
}

} // namespace
} // namespace perchftp::test
