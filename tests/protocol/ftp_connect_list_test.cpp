#include "session_fixture.hpp"

#include "support/servers/child_process.hpp"

namespace perchftp::test {
namespace {

using protocol::RemoteEntry;
using protocol::SessionResult;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<std::string> namesOf(std::vector<RemoteEntry> const& entries)
{
    std::vector<std::string> names;
    for (auto const& entry : entries) {
        names.push_back(entry.name);
    }
    return names;
}

TEST_P(FtpSession, ConnectsByLoggingInOnlyAndDisconnectsWithoutTalkingToTheServer)
{
    auto fresh = makeSession(GetParam());
    EXPECT_TRUE(fresh->disconnect().ok);
    EXPECT_EQ(fresh->disconnect().message, said(" disconnect"));

    SessionResult const result = connect(server().password());
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.message, said(" connect"));
    EXPECT_TRUE(session().isConnected());
    EXPECT_THAT(server().receivedCommands({"LIST", "RETR", "STOR", "NLST", "MLSD"}), IsEmpty());
    EXPECT_THAT(server().receivedCommands({"USER", "PASS"}),
                ElementsAre("USER " + server().user(), "PASS " + server().password()));

    server().clearReceivedCommands();
    SessionResult const disconnected = session().disconnect();
    EXPECT_TRUE(disconnected.ok);
    EXPECT_EQ(disconnected.message, said(" disconnect"));
    EXPECT_FALSE(session().isConnected());
    EXPECT_THAT(server().receivedCommands(), IsEmpty());
}

TEST_P(FtpSession, AFailedConnectForgetsTheEarlierConnection)
{
    struct Row {
        std::string host;
        int port;
        std::string password;
        std::string failure;
    };
    int const closedPort = freeLoopbackPort();
    int const port = server().port();
    std::string const badUrl = ": URL using bad/illegal format or missing URL";
    for (Row const& row : std::vector<Row>{
             {"127.0.0.1", port, "wrong", " connect: Login denied"},
             {"127.0.0.1", closedPort, "p", " connect: Couldn't connect to server"},
             // Checked before the network is touched.
             {"", port, server().password(), " connect: invalid endpoint"},
             {"127.0.0.1", 0, server().password(), " connect: invalid endpoint"},
             {"127.0.0.1", -21, server().password(), " connect: invalid endpoint"},
             // The password goes into the URL unescaped, where libcurl refuses an "@".
             {"127.0.0.1", port, "p@ss", " connect" + badUrl},
             {"127.0.0.1", port, "a@b@c", " connect" + badUrl}}) {
        SCOPED_TRACE(row.host + ":" + std::to_string(row.port) + " " + row.password);
        connectCleanly();
        SessionResult const result = session().connect(row.host, row.port, server().user(), row.password);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.code, 1);
        EXPECT_EQ(result.message, said(row.failure));
        EXPECT_FALSE(session().isConnected());
        if (row.failure.ends_with("invalid endpoint")) {
            EXPECT_THAT(server().receivedCommands(), IsEmpty());
        }
    }
}

// What a listing finds on a real server is pinned by the walk in server_walk_test.cpp; here, which
// folder the request names.
TEST_P(FtpSession, ListsAFolderAsAFolderUrlAndLeavesDotSegmentsToLibcurl)
{
    connectCleanly();
    std::vector<RemoteEntry> entries;
    std::filesystem::create_directories(server().local("/a/b"));
    server().setListing("/a/b", "-rw-r--r-- 1 me staff 7 Jan 5 10:30 inner.txt\n");
    server().setListing("/", "top\n");
    for (auto const& [path, wire, names] : std::vector<std::tuple<std::string, std::vector<std::string>, std::vector<std::string>>>{
             {"/a/b", {"CWD a", "CWD b", "LIST"}, {"inner.txt"}},
             {"", {"LIST"}, {"top"}},
             {"/a/../a/./b", {"CWD a", "CWD b", "LIST"}, {"inner.txt"}},
             {"/a/..", {"LIST"}, {"top"}}}) {
        SCOPED_TRACE(path);
        server().clearReceivedCommands();
        ASSERT_TRUE(session().list(path, entries).ok);
        EXPECT_EQ(namesOf(entries), names);
        EXPECT_EQ(server().receivedCommands({"CWD", "LIST"}), wire);
    }
}

TEST_P(FtpSession, AReplyReplacesTheCallersEntriesAndAFailureLeavesThem)
{
    // How lines become entries is the listing parser's own test; here, that a reply replaces them.
    connectCleanly();
    server().setListing("/", "total 24\r\n-rw-r--r-- 1 me staff 1234 Jan 5 10:30 notes.txt\r\n");
    std::vector<RemoteEntry> listed = {{"stale", false, 1, "", ""}};
    ASSERT_TRUE(session().list("/", listed).ok);
    EXPECT_EQ(namesOf(listed), (std::vector<std::string>{"24", "notes.txt"}));

    std::vector<RemoteEntry> entries = {{"kept", false, 1, "", ""}};
    SessionResult const missing = session().list("/no/such/folder", entries);
    EXPECT_FALSE(missing.ok);
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.message, said(" list: Access denied to remote resource"));
    server().setReply("LIST", "CLOSE");
    SessionResult const dropped = session().list("/", entries);
    EXPECT_FALSE(dropped.ok);
    EXPECT_THAT(dropped.message, StartsWith(said(" list: ")));
    EXPECT_EQ(namesOf(entries), std::vector<std::string>{"kept"});
    EXPECT_TRUE(session().isConnected());
}

INSTANTIATE_TEST_SUITE_P(Protocols, FtpSession, testing::Values("ftp", "ftps"));

TEST(FtpsSession, RefusesAnUntrustedCertificateAndAPlainServer)
{
    TestCertificates trusted;
    TestCertificates stranger;
    std::string const reason = trustInPrivateMountNamespace(trusted.authorityCertificate());
    if (!reason.empty()) {
        GTEST_SKIP() << "FTPS test skipped: it " << reason;
    }
    FtpTestServer strangerServer(implicitTls(stranger));
    FtpTestServer trustedServer(implicitTls(trusted));
    FtpTestServer plainServer;

    auto session = makeSession("ftps");
    SessionResult result = session->connect("127.0.0.1", strangerServer.port(), "perch", "perch-secret");
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftps connect: SSL peer certificate or SSH remote key was not OK");
    EXPECT_FALSE(session->isConnected());
    EXPECT_THAT(strangerServer.receivedCommands(), IsEmpty()) << "no credentials go to an untrusted server";

    EXPECT_TRUE(session->connect("127.0.0.1", trustedServer.port(), "perch", "perch-secret").ok);

    result = session->connect("127.0.0.1", plainServer.port(), "perch", "perch-secret");
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.message, StartsWith("ftps connect: "));
    EXPECT_FALSE(session->isConnected());
}

} // namespace
} // namespace perchftp::test
