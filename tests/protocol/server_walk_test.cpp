// One walk through the session layer against each real server the suite starts on 127.0.0.1:
// every operation a user meets, in the order a user meets them, with the outcome each protocol
// gives and what the server's disk holds afterwards. With PERCHFTP_WALK_RESULTS set, every
// outcome is also appended to that file, from which scripts/server-table writes docs/servers.md.
#include "session_fixture.hpp"

#include "protocol/remote_tree.hpp"
#include "support/servers/child_process.hpp"
#include "support/servers/sshd_test_server.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <regex>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace perchftp::test {
namespace {

using protocol::IRemoteSession;
using protocol::RemoteEntry;
using protocol::SessionResult;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using Lines = std::vector<std::string>;

enum class WalkServerKind {
    Scripted,        // the project's scriptable FTP server
    Vsftpd,          // Debian's vsftpd, plain FTP
    VsftpdTls,       // vsftpd with implicit TLS and require_ssl_reuse
    OpenSsh,         // OpenSSH's sshd, SFTP
    FromEnvironment, // a server started by scripts/server-table, described in PERCHFTP_WALK_SERVER
};

std::string toString(WalkServerKind kind)
{
    static char const* const names[] = {"Scripted", "Vsftpd", "VsftpdTls", "OpenSsh", "FromEnvironment"};
    return names[static_cast<int>(kind)];
}

void giveTo(std::filesystem::path const& path, uid_t owner, gid_t group)
{
    if (::lchown(path.c_str(), owner, group) != 0) {
        throw std::filesystem::filesystem_error("lchown", path, std::error_code(errno, std::generic_category()));
    }
}

// A running server as the walk sees it: how to log in, where the user's folder is on the wire
// and on this machine's disk, and how to put things there as the server's user would own them.
struct WalkServer {
    std::string label; // the server's name in the table of servers
    std::string protocol;
    int port = 0;
    std::string user;
    std::string password;
    std::string base; // the user's folder as a remote path, ending in "/"
    std::filesystem::path disk;
    uid_t owner = 0;
    gid_t group = 0;
    std::shared_ptr<void> running; // the server and whatever it needs, stopped when this goes
    FtpTestServer* scripted = nullptr; // set for the scripted server, whose record the walk reads too

    void makeFolders(std::string const& relative) const
    {
        std::filesystem::path folder = disk;
        for (auto const& name : std::filesystem::path(relative)) {
            folder /= name;
            if (std::filesystem::create_directory(folder)) {
                giveTo(folder, owner, group);
            }
        }
    }
    void makeFile(std::string const& relative, std::string const& bytes = "walk") const
    {
        writeFile(disk / relative, bytes);
        giveTo(disk / relative, owner, group);
    }
    void makeLink(std::string const& relative, std::string const& target) const
    {
        std::filesystem::create_symlink(target, disk / relative);
        giveTo(disk / relative, owner, group);
    }
};

constexpr char const* kVsftpd = "/usr/sbin/vsftpd";

// vsftpd with a throwaway configuration, whose user's home is the server's "/" (chrooted). With
// certificate files it speaks implicit TLS on control and data and insists that data connections
// reuse the control connection's TLS session.
class VsftpdTestServer : public DaemonTestServer {
public:
    explicit VsftpdTestServer(TestCertificates const* tls = nullptr)
        : DaemonTestServer("vsftpd", "perchftp-v")
    {
        std::filesystem::create_directories(folder_ / "empty");
        std::ofstream config(folder_ / "vsftpd.conf");
        config << "listen=YES\nlisten_address=127.0.0.1\nlisten_port=" << port_ << "\nbackground=NO\n"
               << "anonymous_enable=NO\nlocal_enable=YES\nwrite_enable=YES\nlocal_umask=022\n"
               << "chroot_local_user=YES\nallow_writeable_chroot=YES\nseccomp_sandbox=NO\n"
               << "secure_chroot_dir=" << (folder_ / "empty").string() << "\npam_service_name=vsftpd\n"
               << "pasv_enable=YES\npasv_address=127.0.0.1\ncheck_shell=NO\nuserlist_enable=NO\n"
               << "xferlog_enable=NO\nvsftpd_log_file=" << (folder_ / "transfers.log").string() << "\n";
        if (tls) {
            config << "ssl_enable=YES\nimplicit_ssl=YES\nrequire_ssl_reuse=YES\nforce_local_logins_ssl=YES\n"
                   << "force_local_data_ssl=YES\nssl_tlsv1=NO\nssl_sslv2=NO\nssl_sslv3=NO\n"
                   << "rsa_cert_file=" << tls->serverCertificate().string() << "\nrsa_private_key_file="
                   << tls->serverKey().string() << "\n";
        }
        config.close();
        start({kVsftpd, (folder_ / "vsftpd.conf").string()});
    }
};

// A server object with port(), user() and password(), kept running by `running`.
template <typename Server>
std::unique_ptr<WalkServer> walkServer(std::string label, std::string protocol, Server const& server,
                                       std::string base, std::filesystem::path disk, std::shared_ptr<void> running)
{
    return std::make_unique<WalkServer>(WalkServer{std::move(label), std::move(protocol), server.port(), server.user(),
                                                   server.password(), std::move(base), std::move(disk), 0, 0,
                                                   std::move(running), nullptr});
}

// "label|protocol|port|user|password|base|disk", as scripts/server-table writes it.
std::string fromEnvironment(std::unique_ptr<WalkServer>& server)
{
    char const* description = std::getenv("PERCHFTP_WALK_SERVER");
    if (!description || !*description) {
        return "runs only for a server that scripts/server-table --unpacked started";
    }
    std::vector<std::string> fields;
    std::stringstream stream(description);
    for (std::string field; std::getline(stream, field, '|');) {
        fields.push_back(field);
    }
    if (fields.size() != 7) {
        return "needs PERCHFTP_WALK_SERVER as label|protocol|port|user|password|base|disk";
    }
    server = std::make_unique<WalkServer>(WalkServer{fields[0], fields[1], std::stoi(fields[2]), fields[3], fields[4],
                                                     fields[5], fields[6], 0, 0, nullptr, nullptr});
    return {};
}

std::string startServer(WalkServerKind kind, std::unique_ptr<WalkServer>& server)
{
    switch (kind) {
    case WalkServerKind::Scripted: {
        auto running = std::make_shared<FtpTestServer>();
        server = walkServer("scripted test server (pyftpdlib)", "ftp", *running, "/", running->root(), running);
        server->scripted = running.get();
        return {};
    }
    case WalkServerKind::Vsftpd:
    case WalkServerKind::VsftpdTls: {
        if (std::string const reason = DaemonTestServer::whyUnavailable(kVsftpd, "vsftpd"); !reason.empty()) {
            return reason;
        }
        bool const tls = kind == WalkServerKind::VsftpdTls;
        auto const certificates = tls ? std::make_shared<TestCertificates>() : nullptr;
        if (tls) {
            if (std::string const reason = trustInPrivateMountNamespace(certificates->authorityCertificate());
                !reason.empty()) {
                return reason;
            }
        }
        auto running = std::make_shared<VsftpdTestServer>(certificates.get());
        server = walkServer(tls ? "vsftpd, implicit TLS, require_ssl_reuse" : "vsftpd", tls ? "ftps" : "ftp", *running,
                            "/", running->home(), std::make_shared<std::pair<decltype(certificates),
                                                                             decltype(running)>>(certificates, running));
        return {};
    }
    case WalkServerKind::OpenSsh: {
        if (std::string const reason = SshdTestServer::whyUnavailable(); !reason.empty()) {
            return reason;
        }
        auto running = std::make_shared<SshdTestServer>();
        server = walkServer("OpenSSH", "sftp", *running, running->home().string() + "/", running->home(), running);
        return {};
    }
    case WalkServerKind::FromEnvironment:
        return fromEnvironment(server);
    }
    return "is not a kind of server";
}

// Starts a server of that kind into `server`; empty on success, otherwise why it can't run here.
std::string startWalkServer(WalkServerKind kind, std::unique_ptr<WalkServer>& server)
{
    std::string const reason = startServer(kind, server);
    if (reason.empty()) {
        struct stat status {};
        ::stat(server->disk.c_str(), &status);
        server->owner = status.st_uid;
        server->group = status.st_gid;
    }
    return reason;
}

constexpr std::size_t kFiveMegabytes = 5u * 1024 * 1024;
// A user's "644", read as octal by the permission dialog, reaches the session as this number.
constexpr int kTypedMode644 = 0644;

// The walk's state: the server, the session and what earlier steps left behind.
struct Walk {
    WalkServer const& server;
    protocol::IRemoteSession& session;
    TempDir& local;
    std::string file = "walk/five.bin"; // where the uploaded file is now, below the user's folder
    std::vector<std::string> log;

    std::string remote(std::string const& relative) const { return server.base + relative; }
    std::filesystem::path disk(std::string const& relative) const { return server.disk / relative; }
};

// A session's message without its protocol word, so that ftp and ftps read alike.
std::string fails(SessionResult const& result)
{
    return "fails: " + result.message.substr(result.message.find(' ') + 1);
}

std::string works(bool ok, std::string const& otherwise)
{
    return ok ? "works" : otherwise;
}

// A step that should change the server's disk, judged by what it reported and what it changed.
std::string judged(SessionResult const& result, bool changed)
{
    if (result.ok) {
        return works(changed, "reports success, changes nothing");
    }
    return changed ? "changes the disk, then " + fails(result) : fails(result);
}

std::string listedAsOnDisk(Walk& walk, std::string const& folder)
{
    std::vector<RemoteEntry> entries;
    SessionResult const result = walk.session.list(walk.remote(folder), entries);
    if (!result.ok) {
        return fails(result);
    }
    std::set<std::string> listed;
    std::set<std::string> onDisk;
    for (RemoteEntry const& entry : entries) {
        listed.insert(entry.name);
    }
    for (auto const& item : std::filesystem::directory_iterator(walk.disk(folder))) {
        onDisk.insert(item.path().filename().string());
    }
    return works(listed == onDisk, "lists other names than the disk holds");
}

// "-rw-r--r--" for a regular file of mode 0644.
std::string modeText(std::filesystem::path const& path)
{
    struct stat status {};
    ::lstat(path.c_str(), &status);
    std::string text = S_ISDIR(status.st_mode) ? "d" : "-";
    for (int shift = 6; shift >= 0; shift -= 3) {
        text += (status.st_mode >> shift) & 4 ? 'r' : '-';
        text += (status.st_mode >> shift) & 2 ? 'w' : '-';
        text += (status.st_mode >> shift) & 1 ? 'x' : '-';
    }
    return text;
}

std::string describeListedFile(Walk& walk)
{
    std::vector<RemoteEntry> entries;
    SessionResult const result = walk.session.list(walk.remote("walk/"), entries);
    if (!result.ok) {
        return fails(result);
    }
    auto const entry = std::find_if(entries.begin(), entries.end(), [](auto const& e) { return e.name == "five.bin"; });
    if (entry == entries.end()) {
        return "the file is missing from the listing";
    }
    std::vector<std::string> wrong;
    if (entry->size != kFiveMegabytes) {
        wrong.push_back("the size shows " + std::to_string(entry->size));
    }
    if (entry->isDirectory) {
        wrong.push_back("it shows as a folder");
    }
    if (entry->permissions != modeText(walk.disk(walk.file))) {
        wrong.push_back("the permissions show \"" + entry->permissions + "\"");
    }
    if (!std::regex_match(entry->modifiedAt, std::regex(R"([A-Z][a-z]{2} \d{1,2} (\d\d:\d\d|\d{4}))"))) {
        wrong.push_back("the date shows \"" + entry->modifiedAt + "\"");
    }
    std::string described = "works";
    for (std::size_t index = 0; index < wrong.size(); ++index) {
        described += (index == 0 ? ", but " : ", ") + wrong[index];
    }
    return described;
}

std::string uploadFiveMegabytes(Walk& walk)
{
    std::string const bytes = patternedBytes(kFiveMegabytes);
    writeFile(walk.local.file("five.bin"), bytes);
    EventRecorder events;
    SessionResult const result = walk.session.upload({walk.local.file("five.bin"), walk.remote(walk.file), false},
                                                     events.callback());
    if (!result.ok) {
        return fails(result);
    }
    EXPECT_THAT(events.shape(), ElementsAre(TransferEventType::Started, TransferEventType::Progress,
                                            TransferEventType::Completed));
    RecordedEvent const& first = events.events.front();
    EXPECT_EQ(first.path, walk.local.file("five.bin"));
    EXPECT_EQ(first.transferred, 0u);
    EXPECT_EQ(first.total, kFiveMegabytes);
    EXPECT_EQ(events.events.back().transferred, kFiveMegabytes);
    EXPECT_EQ(events.events.back().total, kFiveMegabytes);
    return works(readFile(walk.disk(walk.file)) == bytes, "arrives damaged");
}

std::string downloadAndCompare(Walk& walk)
{
    std::string const target = walk.local.file("back/five.bin");
    EventRecorder events;
    SessionResult const result = walk.session.download({target, walk.remote(walk.file), false}, events.callback());
    if (!result.ok) {
        return fails(result);
    }
    // A download has no Started, and completes as 0 of 0 after its last report of every byte.
    EXPECT_THAT(events.shape(), ElementsAre(TransferEventType::Progress, TransferEventType::Completed));
    EXPECT_EQ(events.events.back().transferred + events.events.back().total, 0u);
    RecordedEvent const& last = events.events.at(events.events.size() - 2);
    EXPECT_EQ(last.path, target);
    EXPECT_EQ(last.transferred, kFiveMegabytes);
    EXPECT_EQ(last.total, kFiveMegabytes);
    return works(readFile(target) == patternedBytes(kFiveMegabytes), "arrives damaged");
}

std::string renameFile(Walk& walk)
{
    std::string const renamed = "walk/renamed.bin";
    SessionResult const result = walk.session.rename(walk.remote(walk.file), walk.remote(renamed));
    bool const moved = std::filesystem::exists(walk.disk(renamed)) && !std::filesystem::exists(walk.disk(walk.file));
    if (moved) {
        walk.file = renamed;
    }
    return judged(result, moved);
}

std::string octalMode(std::filesystem::path const& path)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%04o", static_cast<unsigned>(std::filesystem::status(path).permissions()));
    return text;
}

std::string changeMode(Walk& walk)
{
    std::string const before = octalMode(walk.disk(walk.file));
    SessionResult const result = walk.session.chmod(walk.remote(walk.file), kTypedMode644);
    std::string const after = octalMode(walk.disk(walk.file));
    std::string const reported = result.ok ? "reports success" : fails(result);
    return reported + (after == before ? ", changes nothing" : ", the mode becomes " + after);
}

std::string deleteFile(Walk& walk)
{
    SessionResult const result = walk.session.remove(walk.remote(walk.file));
    bool const gone = !std::filesystem::exists(walk.disk(walk.file));
    return judged(result, gone);
}

std::string deleteTree(Walk& walk, std::string const& folder)
{
    walk.log.clear();
    bool const deleted = protocol::deleteRemoteTree(walk.session, walk.remote(folder),
                                                    [&walk](std::string const& line) { walk.log.push_back(line); });
    bool const gone = !std::filesystem::exists(walk.disk(folder));
    std::string outcome = deleted ? works(gone, "reports success, leaves the folder") : "fails: " + walk.log.at(0);
    if (!std::filesystem::exists(walk.disk("outside.txt"))) {
        outcome += ", and deletes outside.txt outside the folder";
    }
    return outcome;
}

std::string connect(Walk& walk, std::string const& passwordSuffix)
{
    WalkServer const& s = walk.server;
    SessionResult const result = walk.session.connect("127.0.0.1", s.port, s.user, s.password + passwordSuffix);
    return result.ok ? "works" : fails(result);
}

std::string uploadNameWithBlank(Walk& walk)
{
    writeFile(walk.local.file("with blank.txt"), "x");
    SessionResult const result =
        walk.session.upload({walk.local.file("with blank.txt"), walk.remote("walk/with blank.txt"), false}, {});
    return judged(result, std::filesystem::exists(walk.disk("walk/with blank.txt")));
}

struct WalkStep {
    char const* operation; // as the table of servers names it
    std::function<std::string(Walk&)> run;
    std::string onFtp;  // ftp and ftps alike
    std::string onSftp;
    Lines wire; // what the scripted server receives of kWireVerbs
};

Lines const kWireVerbs = {"CWD", "LIST", "STOR", "RETR", "MKD", "RNFR", "RNTO", "SITE", "DELE", "RMD"};

std::vector<WalkStep> walkSteps()
{
    std::string const quoteRefused = "fails: operation failed: Quote command returned error";
    return {
        {"connect with a wrong password", [](Walk& walk) { return connect(walk, "-wrong"); },
         "fails: connect: Login denied", "fails: connect: Login denied", {}},
        {"connect", [](Walk& walk) { return connect(walk, ""); }, "works", "works", {}},
        {"list the home folder", [](Walk& walk) { return listedAsOnDisk(walk, ""); }, "works", "works", {"LIST"}},
        {"create a folder",
         [](Walk& walk) {
             SessionResult const result = walk.session.mkdir(walk.remote("walk"));
             bool const made = std::filesystem::is_directory(walk.disk("walk"));
             walk.server.makeFolders("walk"); // as another tool would, so that the walk goes on
             return judged(result, made);
         },
         "works", quoteRefused, {"MKD walk", "LIST"}},
        {"upload 5 MiB", uploadFiveMegabytes, "works", "works", {"CWD walk", "STOR five.bin"}},
        {"list a folder", describeListedFile, "works", "works, but the size shows 0", {"CWD walk", "LIST"}},
        {"list a folder named without a trailing /",
         [](Walk& walk) {
             std::vector<RemoteEntry> entries;
             SessionResult const result = walk.session.list(walk.remote("walk"), entries);
             return result.ok ? "works" : fails(result);
         },
         "works", "fails: list: Error in the SSH layer", {"CWD walk", "LIST"}},
        {"download and compare", downloadAndCompare, "works", "works", {"CWD walk", "RETR five.bin"}},
        {"rename a file", renameFile, "works", quoteRefused,
         {"RNFR walk/five.bin", "RNTO walk/renamed.bin", "LIST"}},
        {"change permissions to 644", changeMode,
         "fails: operation failed: Remote file not found, the mode becomes 0420",
         "reports success, changes nothing", {"SITE CHMOD 420 /walk/renamed.bin"}},
        {"change permissions to an invalid mode",
         [](Walk& walk) {
             SessionResult const result = walk.session.chmod(walk.remote(walk.file), -1);
             return result.code == 4 ? fails(result) : "accepts it";
         },
         "fails: chmod: invalid mode", "fails: chmod: invalid mode", {}},
        {"delete a file", deleteFile, "works", quoteRefused, {"DELE walk/renamed.bin", "LIST"}},
        {"delete a folder holding a subfolder",
         [](Walk& walk) {
             walk.server.makeFolders("walk/full/sub");
             walk.server.makeFile("walk/full/sub/inner.txt");
             walk.server.makeFile("walk/full/top.txt");
             return deleteTree(walk, "walk/full");
         },
         "works", "fails: Remote recursive delete list failed: sftp list: Error in the SSH layer",
         {"CWD walk", "CWD full", "LIST", "CWD walk", "CWD full", "CWD sub", "LIST", "DELE walk/full/sub/inner.txt",
          "LIST", "RMD walk/full/sub/", "LIST", "DELE walk/full/top.txt", "LIST", "RMD walk/full/", "LIST"}},
        {"delete a folder holding a link that points outside it",
         [](Walk& walk) {
             walk.server.makeFolders("walk/tree/sub");
             walk.server.makeFile("walk/tree/sub/inner.txt");
             walk.server.makeLink("walk/tree/link", "../../outside.txt");
             return deleteTree(walk, "walk/tree");
         },
         "fails: Remote recursive delete stopped at a name that is not inside the folder: ../../outside.txt",
         "fails: Remote recursive delete list failed: sftp list: Error in the SSH layer",
         {"CWD walk", "CWD tree", "LIST"}},
        {"list again", [](Walk& walk) { return listedAsOnDisk(walk, "walk/"); }, "works", "works",
         {"CWD walk", "LIST"}},
        // libcurl refuses the blank in the URL before anything goes out.
        {"upload a name with a blank", uploadNameWithBlank,
         "fails: upload: URL using bad/illegal format or missing URL",
         "fails: upload: URL using bad/illegal format or missing URL", {}},
        {"disconnect",
         [](Walk& walk) {
             SessionResult const result = walk.session.disconnect();
             return result.ok && !walk.session.isConnected() ? "works" : fails(result);
         },
         "works", "works", {}},
    };
}

void recordOutcome(WalkServer const& server, std::string const& operation, std::string const& outcome)
{
    if (char const* results = std::getenv("PERCHFTP_WALK_RESULTS")) {
        std::ofstream(results, std::ios::app) << server.label << '\t' << server.protocol << '\t' << operation << '\t'
                                              << outcome << '\n';
    }
}

class ServerWalk : public testing::TestWithParam<WalkServerKind> {};

TEST_P(ServerWalk, EveryOperationDoesWhatItsProtocolPromises)
{
    std::unique_ptr<WalkServer> server;
    if (std::string const reason = startWalkServer(GetParam(), server); !reason.empty()) {
        GTEST_SKIP() << "The walk against " << toString(GetParam()) << " is skipped: it " << reason;
    }
    server->makeFile("outside.txt");
    auto session = makeSession(server->protocol.c_str());
    TempDir local;
    Walk walk{*server, *session, local, "walk/five.bin", {}};
    for (WalkStep const& step : walkSteps()) {
        SCOPED_TRACE(step.operation);
        if (server->scripted) {
            server->scripted->clearReceivedCommands();
        }
        std::string const outcome = step.run(walk);
        recordOutcome(*server, step.operation, outcome);
        EXPECT_EQ(outcome, server->protocol == "sftp" ? step.onSftp : step.onFtp);
        if (server->scripted) {
            EXPECT_EQ(server->scripted->receivedCommands(kWireVerbs), step.wire);
        }
        if (std::string(step.operation) == "connect") {
            ASSERT_TRUE(session->isConnected()) << "the rest of the walk needs a session";
        }
    }
    EXPECT_EQ(readFile(walk.disk("outside.txt")), "walk") << "nothing outside the folders acted on is touched";
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerWalk,
                         testing::Values(WalkServerKind::Scripted, WalkServerKind::Vsftpd, WalkServerKind::VsftpdTls,
                                         WalkServerKind::OpenSsh, WalkServerKind::FromEnvironment),
                         [](auto const& info) { return toString(info.param); });

// What only a scriptable server shows: commands it refuses or drops, the login folder it claims,
// and what a failure leaves behind.
class ScriptedFtp : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(connect(server.password()).ok);
        server.clearReceivedCommands();
    }
    SessionResult connect(std::string const& password)
    {
        return session->connect("127.0.0.1", server.port(), server.user(), password);
    }
    void put(std::string const& remotePath, std::string const& bytes = "x")
    {
        std::filesystem::create_directories(server.local(remotePath).parent_path());
        writeFile(server.local(remotePath), bytes);
    }

    FtpTestServer server;
    std::unique_ptr<IRemoteSession> session = makeSession("ftp");
    TempDir local;
};

// One command against the server as the earlier rows left it; `replies` are whole lines or verbs
// answered instead of carried out (see FtpTestServer::setReply). A row with a `login` reply first
// connects again while PWD gives that answer: the login folder the session believes in.
struct LadderRow {
    char const* what;
    std::vector<std::tuple<std::string, std::string, int>> replies;
    std::function<SessionResult(IRemoteSession&)> run;
    std::string failure; // empty when it works
    Lines wire;
    std::string login{};
};

TEST_F(ScriptedFtp, RemoteCommandsClimbTheirLaddersOnTheWire)
{
    for (char const* file : {"/r2", "/a3/x", "/x", "/my file", "/c15.txt", "/d16"}) {
        put(file);
    }
    std::filesystem::create_directories(server.local("/a17"));
    std::string const refused = "550 Refused by the test.";
    std::string const quoteFailed = "ftp operation failed: Quote command returned error";
    std::vector<LadderRow> const rows{
        {"a second rung equal to the first is sent again", {{"RNFR r2", refused, 1}},
         [](IRemoteSession& s) { return s.rename("/r2", "/r2b"); }, "", {"RNFR r2", "RNFR r2", "RNTO r2b"}},
        // The bare names would rename "/x" in the login folder; those rungs are never sent.
        {"a rename climbs to the absolute path", {{"RNFR a3/x", refused, -1}, {"RNFR /a3/x", refused, 1}},
         [](IRemoteSession& s) { return s.rename("/a3/x", "/a3/y"); }, "",
         {"RNFR a3/x", "RNFR a3/x", "RNFR /a3/x", "RNFR /a3/x", "RNTO /a3/y"}},
        {"the first rung's failure is reported when all fail", {{"RNFR", refused, -1}, {"RNFR /gone", "CLOSE", -1}},
         [](IRemoteSession& s) { return s.rename("/gone", "/still-gone"); }, quoteFailed,
         {"RNFR gone", "RNFR gone", "RNFR gone", "RNFR /gone", "RNFR /gone"}},
        {"names with blanks and dots go as they stand", {},
         [](IRemoteSession& s) { return s.rename("/my file", "/a17/../their file"); }, "",
         {"RNFR my file", "RNTO their file"}},
        {"chmod has no ladder", {{"SITE CHMOD", refused, -1}}, [](IRemoteSession& s) { return s.chmod("/x", 420); },
         quoteFailed, {"SITE CHMOD 420 /x"}},
        {"an empty remove has no rung", {}, [](IRemoteSession& s) { return s.remove(""); },
         "ftp operation failed: unknown delete failure", {}},
        {"an empty mkdir has no rung", {}, [](IRemoteSession& s) { return s.mkdir(""); },
         "ftp operation failed: unknown mkdir failure", {}},
        {"an empty rename has no rung", {}, [](IRemoteSession& s) { return s.rename("", ""); },
         "ftp rename failed: unknown rename failure", {}},
        {"a login folder elsewhere leaves only the absolute rungs", {},
         [](IRemoteSession& s) { return s.remove("/c15.txt"); }, "", {"DELE /c15.txt"},
         "257 \"/home\" is the current directory."},
        {"an unknown login folder leaves only the absolute rungs", {},
         [](IRemoteSession& s) { return s.rename("/d16", "/e16"); }, "", {"RNFR /d16", "RNTO /e16"},
         "550 Not telling."},
    };
    for (LadderRow const& row : rows) {
        SCOPED_TRACE(row.what);
        server.clearReplies();
        if (!row.login.empty()) {
            server.setReply("PWD", row.login);
            ASSERT_TRUE(connect(server.password()).ok);
            server.clearReplies();
        }
        for (auto const& [command, reply, times] : row.replies) {
            server.setReply(command, reply, times);
        }
        server.clearReceivedCommands();
        SessionResult const result = row.run(*session);
        EXPECT_EQ(result.code, row.failure.empty() ? 0 : 1);
        EXPECT_EQ(result.message, row.failure.empty() ? "ftp operation" : row.failure);
        EXPECT_EQ(server.receivedCommands({"RNFR", "RNTO", "DELE", "RMD", "MKD", "SITE"}), row.wire);
        EXPECT_TRUE(session->isConnected());
    }
    for (char const* kept : {"/r2b", "/a3/y", "/x", "/their file"}) {
        EXPECT_TRUE(std::filesystem::exists(server.local(kept))) << kept;
    }
    for (char const* gone : {"/y", "/c15.txt", "/d16"}) {
        EXPECT_FALSE(std::filesystem::exists(server.local(gone))) << gone;
    }
}

TEST_F(ScriptedFtp, ListingsAndTransfersFailWithoutLosingWhatTheCallerHad)
{
    // A reply replaces the caller's entries; a failure leaves them.
    server.setListing("/", "top\n");
    std::vector<RemoteEntry> entries = {{"stale", false, 1, "", ""}};
    ASSERT_TRUE(session->list("/", entries).ok);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "top");
    SessionResult result = session->list("/no/such/folder", entries);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftp list: Access denied to remote resource");
    server.setReply("LIST", "CLOSE");
    EXPECT_THAT(session->list("/", entries).message, StartsWith("ftp list: "));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "top");
    EXPECT_TRUE(session->isConnected());

    // Refused before any event or command.
    writeFile(local.file("plain"), "not a folder");
    put("/x");
    server.clearReceivedCommands();
    struct Refusal {
        bool upload;
        std::string localPath;
        std::string remotePath;
        std::string message;
    };
    for (Refusal const& row : std::vector<Refusal>{
             {true, "", "/x", "ftp upload: invalid path"},
             {false, local.file("x"), "", "ftp download: invalid path"},
             {true, local.file("absent"), "/x", "ftp upload: local file not found"},
             {false, local.file("plain/x"), "/x", "ftp download: cannot open local path"}}) {
        EventRecorder events;
        protocol::TransferParams const params{row.localPath, row.remotePath, false};
        result = row.upload ? session->upload(params, events.callback())
                            : session->download(params, events.callback());
        EXPECT_EQ(result.code, 3) << row.message;
        EXPECT_EQ(result.message, row.message);
        EXPECT_THAT(events.events, IsEmpty()) << row.message;
    }
    EXPECT_THAT(server.receivedCommands(), IsEmpty());

    // A failed upload ends in Failed and makes nothing; a failed download empties its local file first.
    writeFile(local.file("f"), "abc");
    EventRecorder up;
    result = session->upload({local.file("f"), "/missing/f", false}, up.callback());
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith("ftp upload: "));
    ASSERT_FALSE(up.events.empty());
    EXPECT_EQ(up.events.front().type, TransferEventType::Started);
    EXPECT_EQ(up.events.back().type, TransferEventType::Failed);
    EXPECT_EQ(up.events.back().total, 3u);
    EXPECT_FALSE(std::filesystem::exists(server.local("/missing")));
    writeFile(local.file("keep.txt"), "old content");
    EventRecorder down;
    result = session->download({local.file("keep.txt"), "/absent.txt", false}, down.callback());
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.message, "ftp download: Remote file not found");
    ASSERT_FALSE(down.events.empty());
    EXPECT_EQ(down.events.back().type, TransferEventType::Failed);
    EXPECT_EQ(down.events.back().transferred + down.events.back().total, 0u);
    EXPECT_TRUE(std::filesystem::exists(local.file("keep.txt")));
    EXPECT_EQ(readFile(local.file("keep.txt")), "");
    EXPECT_TRUE(session->isConnected());

    // Bytes the disk refuses do not fail a download.
    put("/x.bin", patternedBytes(1024 * 1024));
    EXPECT_TRUE(session->download({"/dev/full", "/x.bin", false}, {}).ok);

    // Without a size, progress is reported only until the first bytes arrive.
    put("/unsized.bin", patternedBytes(10u * 1024 * 1024));
    server.setReply("SIZE", "502 Command not implemented.");
    EventRecorder unsized;
    ASSERT_TRUE(session->download({local.file("unsized.bin"), "/unsized.bin", false}, unsized.callback()).ok);
    ASSERT_GE(unsized.events.size(), 2u);
    for (std::size_t i = 0; i + 1 < unsized.events.size(); ++i) {
        EXPECT_EQ(unsized.events[i].total, 0u) << i;
        EXPECT_EQ(unsized.events[i].transferred == 0, i + 2 < unsized.events.size()) << i;
    }

    // A failed connect forgets the earlier connection, even one refused before the network.
    int const closed = freeLoopbackPort();
    for (auto const& [host, port, failure] : std::vector<std::tuple<std::string, int, std::string>>{
             {"127.0.0.1", server.port(), "Login denied"}, {"127.0.0.1", closed, "Couldn't connect to server"},
             {"", server.port(), "invalid endpoint"}, {"127.0.0.1", 0, "invalid endpoint"},
             {"127.0.0.1", -21, "invalid endpoint"}}) {
        ASSERT_TRUE(connect(server.password()).ok);
        result = session->connect(host, port, server.user(), "wrong");
        EXPECT_EQ(result.code, 1);
        EXPECT_EQ(result.message, "ftp connect: " + failure);
        EXPECT_FALSE(session->isConnected()) << failure;
    }
}

TEST(ScriptedFtpServer, KeepsWhatArrivedWhenTheServerDiesMidDownload)
{
    FtpTestServerOptions options;
    options.throttleBytesPerSecond = 2u * 1024 * 1024;
    FtpTestServer server(options);
    std::string const bytes = patternedBytes(10u * 1024 * 1024);
    writeFile(server.local("/big.bin"), bytes);
    auto session = makeSession("ftp");
    ASSERT_TRUE(session->connect("127.0.0.1", server.port(), server.user(), server.password()).ok);
    TempDir local;
    TransferEventType last{};
    auto const killOnFirstBytes = [&](TransferEventType type, protocol::TransferProgress const& progress) {
        last = type;
        if (progress.transferred > 0) {
            server.kill();
        }
    };
    SessionResult const result = session->download({local.file("big.bin"), "/big.bin", false}, killOnFirstBytes);
    EXPECT_EQ(result.code, 5);
    EXPECT_THAT(result.message, StartsWith("ftp download: "));
    EXPECT_EQ(last, TransferEventType::Failed);
    std::string const arrived = readFile(local.file("big.bin"));
    EXPECT_LT(arrived.size(), bytes.size());
    EXPECT_EQ(arrived, bytes.substr(0, arrived.size()));
}

// Every protocol refuses every operation before a connect, and an endpoint it can't use.
TEST(UnconnectedSession, RefusesEveryOperation)
{
    for (std::string const name : {"ftp", "ftps", "sftp"}) {
        auto session = makeSession(name.c_str());
        EventRecorder events;
        protocol::TransferParams const params{"/tmp/x", "/x", false};
        SessionResult const uploaded = session->upload(params, events.callback());
        EXPECT_EQ(uploaded.code, 1);
        EXPECT_EQ(uploaded.message, name + " upload: not connected");
        EXPECT_EQ(session->download(params, events.callback()).message, name + " download: not connected");
        EXPECT_THAT(events.events, IsEmpty());
        EXPECT_EQ(session->rename("/a", "/b").message, name + " rename: not connected");
        EXPECT_EQ(session->remove("/a").message, name + " delete: not connected");
        EXPECT_EQ(session->mkdir("/a").message, name + " mkdir: not connected");
        EXPECT_EQ(session->chmod("/a", -1).message, name + " chmod: not connected");
        std::vector<RemoteEntry> entries;
        SessionResult const listed = session->list("/", entries);
        EXPECT_EQ(listed.code, 1);
        EXPECT_EQ(listed.message, name + " list: not connected");
        SessionResult const disconnected = session->disconnect();
        EXPECT_TRUE(disconnected.ok);
        EXPECT_EQ(disconnected.message, name + " disconnect");
    }
}

TEST(FtpsSession, RefusesAnUntrustedCertificateAndAPlainServer)
{
    TestCertificates trusted;
    TestCertificates stranger;
    if (std::string const reason = trustInPrivateMountNamespace(trusted.authorityCertificate()); !reason.empty()) {
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

// Implicit TLS with require_ssl_reuse: every data connection must resume the control
// connection's TLS session, which is where other libcurl clients lose transfers.
TEST(VsftpdTls, FiftyUploadsAndFiftyDownloadsInARowArriveIntact)
{
    std::unique_ptr<WalkServer> server;
    if (std::string const reason = startWalkServer(WalkServerKind::VsftpdTls, server); !reason.empty()) {
        GTEST_SKIP() << "Skipped: it " << reason;
    }
    auto session = makeSession("ftps");
    ASSERT_TRUE(session->connect("127.0.0.1", server->port, server->user, server->password).ok);
    TempDir local;
    auto const payload = [](int index) { return patternedBytes(64 * 1024 + 4099 * index).substr(index); };
    for (int index = 0; index < 50; ++index) {
        std::string const name = "f" + std::to_string(index) + ".bin";
        writeFile(local.file(name), payload(index));
        SessionResult const result = session->upload({local.file(name), "/" + name, false}, {});
        ASSERT_TRUE(result.ok) << index << ": " << result.message;
        EXPECT_EQ(readFile(server->disk / name), payload(index)) << index;
    }
    for (int index = 0; index < 50; ++index) {
        std::string const name = "f" + std::to_string(index) + ".bin";
        SessionResult const result = session->download({local.file("back-" + name), "/" + name, false}, {});
        ASSERT_TRUE(result.ok) << index << ": " << result.message;
        EXPECT_EQ(readFile(local.file("back-" + name)), payload(index)) << index;
    }
}

} // namespace
} // namespace perchftp::test
