// One walk through the session layer against each real server the suite starts on 127.0.0.1:
// every operation a user meets, in the order a user meets them, with the outcome each protocol
// gives and what the server's disk holds afterwards. With PERCHFTP_WALK_RESULTS set, every
// outcome is also appended to that file, from which scripts/server-table writes docs/servers.md.
#include "session_fixture.hpp"

#include "protocol/remote_tree.hpp"
#include "support/servers/sshd_test_server.hpp"
#include "support/servers/test_certificates.hpp"

#include <algorithm>
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

using protocol::RemoteEntry;
using protocol::SessionResult;
using testing::ElementsAre;
using testing::StartsWith;

// A running server as the walk sees it: how to log in, and where the user's folder is on the
// wire and on this machine's disk.
struct WalkServer {
    std::string label; // the server's name in the table of servers
    std::string protocol;
    int port = 0;
    std::string user;
    std::string password;
    std::string base; // the user's folder as a remote path, ending in "/"
    std::filesystem::path disk;
    std::shared_ptr<void> running; // the server and whatever it needs, stopped when this goes
    FtpTestServer* scripted = nullptr; // set for the scripted server, whose record the walk reads too

    // Hands a new item below the user's folder to the owner of that folder, as the server made it.
    void give(std::string const& relative) const
    {
        struct stat folder {};
        ::stat(disk.c_str(), &folder);
        if (::lchown((disk / relative).c_str(), folder.st_uid, folder.st_gid) != 0) {
            throw std::runtime_error("cannot hand " + relative + " to the server's user");
        }
    }
    void makeFolders(std::string const& relative) const
    {
        std::filesystem::path folder;
        for (auto const& name : std::filesystem::path(relative)) {
            folder /= name;
            if (std::filesystem::create_directory(disk / folder)) {
                give(folder);
            }
        }
    }
    void makeFile(std::string const& relative) const
    {
        writeFile(disk / relative, "walk");
        give(relative);
    }
};

constexpr char const* kVsftpd = "/usr/sbin/vsftpd";

// vsftpd with a throwaway configuration, whose user's home is the server's "/" (chrooted). With
// TLS it speaks implicit TLS on control and data, with a self-signed certificate of its own, and
// insists that data connections reuse the control connection's TLS session.
class VsftpdTestServer : public DaemonTestServer {
public:
    explicit VsftpdTestServer(bool tls)
        : DaemonTestServer("vsftpd", "perchftp-v")
    {
        std::filesystem::create_directories(folder_ / "empty");
        std::ofstream config(folder_ / "vsftpd.conf");
        config << "listen=YES\nlisten_address=127.0.0.1\nlisten_port=" << port_ << "\nbackground=NO\n"
               << "anonymous_enable=NO\nlocal_enable=YES\nwrite_enable=YES\nlocal_umask=022\n"
               << "chroot_local_user=YES\nallow_writeable_chroot=YES\nseccomp_sandbox=NO\n"
               << "secure_chroot_dir=" << (folder_ / "empty").string() << "\npam_service_name=vsftpd\n"
               << "pasv_enable=YES\npasv_address=127.0.0.1\ncheck_shell=NO\nuserlist_enable=NO\n"
               << "xferlog_enable=YES\nlog_ftp_protocol=YES\nvsftpd_log_file=" << log().string() << "\n";
        if (tls) {
            requireQuietly("cd '" + folder_.string() + "' && openssl req -x509 -newkey ec -nodes"
                           " -pkeyopt ec_paramgen_curve:prime256v1 -keyout server.key -out server.pem -days 2"
                           " -subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1,DNS:localhost");
            config << "ssl_enable=YES\nimplicit_ssl=YES\nrequire_ssl_reuse=YES\nforce_local_logins_ssl=YES\n"
                   << "force_local_data_ssl=YES\nssl_tlsv1=NO\nssl_sslv2=NO\nssl_sslv3=NO\n"
                   << "rsa_cert_file=" << certificate().string()
                   << "\nrsa_private_key_file=" << (folder_ / "server.key").string() << "\n";
        }
        config.close();
        start({kVsftpd, (folder_ / "vsftpd.conf").string()});
    }

    std::filesystem::path log() const { return folder_ / "commands.log"; } // every command and reply
    // A client that trusts it takes it as its own authority.
    std::filesystem::path certificate() const { return folder_ / "server.pem"; }
};

// Starts a server of that kind into `server`; empty on success, otherwise why it can't run here.
std::string startWalkServer(std::string const& kind, std::unique_ptr<WalkServer>& server)
{
    auto const walkOn = [&server](auto const& running, char const* label, char const* protocol, std::string base,
                                  std::filesystem::path disk) {
        server.reset(new WalkServer{label, protocol, running->port(), running->user(), running->password(),
                                    std::move(base), std::move(disk), running});
    };
    if (kind == "Scripted") {
        auto running = std::make_shared<FtpTestServer>();
        walkOn(running, "scripted test server (pyftpdlib)", "ftp", "/", running->root());
        server->scripted = running.get();
    } else if (kind == "OpenSsh") {
        if (std::string const reason = SshdTestServer::whyUnavailable(); !reason.empty()) {
            return reason;
        }
        auto running = std::make_shared<SshdTestServer>();
        walkOn(running, "OpenSSH", "sftp", running->home().string() + "/", running->home());
    } else if (kind == "FromEnvironment") {
        // "label|protocol|port|user|password|base|disk", as scripts/server-table writes it.
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
        server.reset(new WalkServer{fields[0], fields[1], std::stoi(fields[2]), fields[3], fields[4], fields[5],
                                    fields[6], nullptr});
    } else {
        if (std::string const reason = DaemonTestServer::whyUnavailable(kVsftpd, "vsftpd"); !reason.empty()) {
            return reason;
        }
        bool const tls = kind == "VsftpdTls";
        auto running = std::make_shared<VsftpdTestServer>(tls);
        std::string const reason =
            tls ? trustInPrivateMountNamespace(running->certificate()) : std::string();
        if (!reason.empty()) {
            return reason;
        }
        walkOn(running, tls ? "vsftpd, implicit TLS, require_ssl_reuse" : "vsftpd", tls ? "ftps" : "ftp", "/",
               running->home());
    }
    return {};
}

constexpr std::size_t kFiveMegabytes = 5u * 1024 * 1024;

// The walk's state: the server, the session and what earlier steps left behind.
struct Walk {
    WalkServer const& server;
    protocol::IRemoteSession& session;
    TempDir local;
    std::string file = "walk/five.bin"; // where the uploaded file is now, below the user's folder

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

unsigned modeOf(std::filesystem::path const& path)
{
    return static_cast<unsigned>(std::filesystem::symlink_status(path).permissions());
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
    std::string mode = "-"; // as a listing writes it, "-rw-r--r--" for a file of mode 0644
    for (int bit = 8; bit >= 0; --bit) {
        mode += (modeOf(walk.disk(walk.file)) >> bit & 1) ? "rwx"[(8 - bit) % 3] : '-';
    }
    std::string described = "works";
    auto const wrong = [&described](std::string const& what) {
        described += (described == "works" ? ", but " : ", ") + what;
    };
    if (entry->size != kFiveMegabytes) {
        wrong("the size shows " + std::to_string(entry->size));
    }
    if (entry->isDirectory) {
        wrong("it shows as a folder");
    }
    if (entry->permissions != mode) {
        wrong("the permissions show \"" + entry->permissions + "\"");
    }
    if (!std::regex_match(entry->modifiedAt, std::regex(R"([A-Z][a-z]{2} \d{1,2} (\d\d:\d\d|\d{4}))"))) {
        wrong("the date shows \"" + entry->modifiedAt + "\"");
    }
    return described;
}

// An upload reports Started, its progress, and Completed with every byte; a download has no
// Started, and completes as 0 of 0 after its last report of every byte.
std::string uploadFiveMegabytes(Walk& walk)
{
    std::string const bytes = patternedBytes(kFiveMegabytes);
    writeFile(walk.local.file("five.bin"), bytes);
    EventRecorder events;
    SessionResult const result =
        walk.session.upload({walk.local.file("five.bin"), walk.remote(walk.file), false}, events.callback());
    if (!result.ok) {
        return fails(result);
    }
    EXPECT_THAT(events.shape(), ElementsAre(TransferEventType::Started, TransferEventType::Progress,
                                            TransferEventType::Completed));
    EXPECT_EQ(events.events.back(), (RecordedEvent{TransferEventType::Completed, walk.local.file("five.bin"),
                                                   kFiveMegabytes, kFiveMegabytes}));
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
    EXPECT_THAT(events.shape(), ElementsAre(TransferEventType::Progress, TransferEventType::Completed));
    EXPECT_EQ(events.events.back(), (RecordedEvent{TransferEventType::Completed, target, 0, 0}));
    EXPECT_EQ(events.events.at(events.events.size() - 2),
              (RecordedEvent{TransferEventType::Progress, target, kFiveMegabytes, kFiveMegabytes}));
    return works(readFile(target) == patternedBytes(kFiveMegabytes), "arrives damaged");
}

std::string changeMode(Walk& walk)
{
    auto const octal = [&walk] {
        char text[8];
        std::snprintf(text, sizeof(text), "%04o", modeOf(walk.disk(walk.file)));
        return std::string(text);
    };
    std::string const before = octal();
    // A user's "644", read as octal by the permission dialog, reaches the session as 0644.
    SessionResult const result = walk.session.chmod(walk.remote(walk.file), 0644);
    std::string const reported = result.ok ? "reports success" : fails(result);
    return reported + (octal() == before ? ", changes nothing" : ", the mode becomes " + octal());
}

std::string deleteTree(Walk& walk, std::string const& folder)
{
    std::string firstLine;
    bool const deleted = protocol::deleteRemoteTree(walk.session, walk.remote(folder), [&](std::string const& line) {
        firstLine = firstLine.empty() ? line : firstLine;
    });
    bool const gone = !std::filesystem::exists(walk.disk(folder));
    std::string outcome = deleted ? works(gone, "reports success, leaves the folder") : "fails: " + firstLine;
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

struct WalkStep {
    char const* operation; // as the table of servers names it
    std::function<std::string(Walk&)> run;
    std::string onFtp; // ftp and ftps alike
    std::string onSftp;
    std::vector<std::string> wire; // what the scripted server receives of kWireVerbs
};

std::vector<std::string> const kWireVerbs = {"CWD",  "LIST", "STOR", "RETR", "MKD",
                                             "RNFR", "RNTO", "SITE", "DELE", "RMD"};

std::vector<WalkStep> walkSteps()
{
    std::string const quoteRefused = "fails: operation failed: Quote command returned error";
    std::string const noSftpList = "fails: Remote recursive delete list failed: sftp list: Error in the SSH layer";
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
        {"rename a file",
         [](Walk& walk) {
             std::string const renamed = "walk/renamed.bin";
             SessionResult const result = walk.session.rename(walk.remote(walk.file), walk.remote(renamed));
             bool const moved =
                 std::filesystem::exists(walk.disk(renamed)) && !std::filesystem::exists(walk.disk(walk.file));
             walk.file = moved ? renamed : walk.file;
             return judged(result, moved);
         },
         "works", quoteRefused, {"RNFR walk/five.bin", "RNTO walk/renamed.bin", "LIST"}},
        {"change permissions to 644", changeMode,
         "fails: operation failed: Remote file not found, the mode becomes 0420",
         "reports success, changes nothing", {"SITE CHMOD 420 /walk/renamed.bin"}},
        {"change permissions to an invalid mode",
         [](Walk& walk) {
             SessionResult const result = walk.session.chmod(walk.remote(walk.file), -1);
             return result.code == 4 ? fails(result) : "accepts it";
         },
         "fails: chmod: invalid mode", "fails: chmod: invalid mode", {}},
        {"delete a file",
         [](Walk& walk) {
             SessionResult const result = walk.session.remove(walk.remote(walk.file));
             return judged(result, !std::filesystem::exists(walk.disk(walk.file)));
         },
         "works", quoteRefused, {"DELE walk/renamed.bin", "LIST"}},
        {"delete a folder holding a subfolder",
         [](Walk& walk) {
             walk.server.makeFolders("walk/full/sub");
             walk.server.makeFile("walk/full/sub/inner.txt");
             walk.server.makeFile("walk/full/top.txt");
             return deleteTree(walk, "walk/full");
         },
         "works", noSftpList,
         {"CWD walk", "CWD full", "LIST", "CWD walk", "CWD full", "CWD sub", "LIST", "DELE walk/full/sub/inner.txt",
          "LIST", "RMD walk/full/sub/", "LIST", "DELE walk/full/top.txt", "LIST", "RMD walk/full/", "LIST"}},
        {"delete a folder holding a link that points outside it",
         [](Walk& walk) {
             walk.server.makeFolders("walk/tree/sub");
             walk.server.makeFile("walk/tree/sub/inner.txt");
             std::filesystem::create_symlink("../../outside.txt", walk.disk("walk/tree/link"));
             walk.server.give("walk/tree/link");
             return deleteTree(walk, "walk/tree");
         },
         "fails: Remote recursive delete stopped at a name that is not inside the folder: ../../outside.txt",
         noSftpList, {"CWD walk", "CWD tree", "LIST"}},
        {"list again", [](Walk& walk) { return listedAsOnDisk(walk, "walk/"); }, "works", "works",
         {"CWD walk", "LIST"}},
        // libcurl refuses the blank in the URL before anything goes out.
        {"upload a name with a blank",
         [](Walk& walk) {
             writeFile(walk.local.file("with blank.txt"), "x");
             SessionResult const result = walk.session.upload(
                 {walk.local.file("with blank.txt"), walk.remote("walk/with blank.txt"), false}, {});
             return judged(result, std::filesystem::exists(walk.disk("walk/with blank.txt")));
         },
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

class ServerWalk : public testing::TestWithParam<std::string> {};

TEST_P(ServerWalk, EveryOperationDoesWhatItsProtocolPromises)
{
    std::unique_ptr<WalkServer> server;
    if (std::string const reason = startWalkServer(GetParam(), server); !reason.empty()) {
        GTEST_SKIP() << "The walk against " << GetParam() << " is skipped: it " << reason;
    }
    server->makeFile("outside.txt");
    auto session = makeSession(server->protocol.c_str());
    Walk walk{*server, *session, {}};
    for (WalkStep const& step : walkSteps()) {
        SCOPED_TRACE(step.operation);
        if (server->scripted) {
            server->scripted->clearReceivedCommands();
        }
        std::string const outcome = step.run(walk);
        if (char const* results = std::getenv("PERCHFTP_WALK_RESULTS")) {
            std::ofstream(results, std::ios::app)
                << server->label << '\t' << server->protocol << '\t' << step.operation << '\t' << outcome << '\n';
        }
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
                         testing::Values("Scripted", "Vsftpd", "VsftpdTls", "OpenSsh", "FromEnvironment"),
                         [](auto const& info) { return info.param; });

// A certificate from an authority nobody trusts is refused before any credentials go out, and so is
// a server without TLS. Over implicit TLS with require_ssl_reuse, every data connection must resume
// the control connection's TLS session, which is where other libcurl clients lose transfers.
TEST(VsftpdTls, RefusesStrangersAndPlainServersAndCarriesFiftyFilesEachWayIntact)
{
    if (std::string const reason = DaemonTestServer::whyUnavailable(kVsftpd, "vsftpd"); !reason.empty()) {
        GTEST_SKIP() << "Skipped: it " << reason;
    }
    VsftpdTestServer trusted(true);
    VsftpdTestServer stranger(true);
    if (std::string const reason = trustInPrivateMountNamespace(trusted.certificate());
        !reason.empty()) {
        GTEST_SKIP() << "Skipped: it " << reason;
    }
    auto session = makeSession("ftps");
    SessionResult result = session->connect("127.0.0.1", stranger.port(), stranger.user(), stranger.password());
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.message, "ftps connect: SSL peer certificate or SSH remote key was not OK");
    EXPECT_FALSE(session->isConnected());
    ASSERT_TRUE(session->connect("127.0.0.1", trusted.port(), trusted.user(), trusted.password()).ok);
    EXPECT_NE(readFile(trusted.log()).find("\"USER "), std::string::npos);
    EXPECT_EQ(readFile(stranger.log()).find("\"USER "), std::string::npos)
        << "no credentials go to an untrusted server";

    TempDir local;
    auto const payload = [](int index) { return patternedBytes(64 * 1024 + 4099 * index).substr(index); };
    for (int index = 0; index < 50; ++index) {
        std::string const name = "f" + std::to_string(index) + ".bin";
        writeFile(local.file(name), payload(index));
        result = session->upload({local.file(name), "/" + name, false}, {});
        ASSERT_TRUE(result.ok) << index << ": " << result.message;
        EXPECT_EQ(readFile(trusted.home() / name), payload(index)) << index;
        result = session->download({local.file("back-" + name), "/" + name, false}, {});
        ASSERT_TRUE(result.ok) << index << ": " << result.message;
        EXPECT_EQ(readFile(local.file("back-" + name)), payload(index)) << index;
    }

    FtpTestServer plain;
    result = session->connect("127.0.0.1", plain.port(), plain.user(), plain.password());
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.message, StartsWith("ftps connect: "));
    EXPECT_FALSE(session->isConnected());
}

} // namespace
} // namespace perchftp::test
