// One walk through the session layer against each real server the suite starts on 127.0.0.1:
// every operation a user meets, in the order a user meets them, with the outcome each protocol
// gives and what the server's disk holds afterwards. With PERCHFTP_WALK_RESULTS set, every
// outcome is also appended to that file, from which scripts/server-table writes docs/servers.md.
#include "session_fixture.hpp"
#include "walk_servers.hpp"

#include "protocol/remote_tree.hpp"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <set>
#include <sys/stat.h>

namespace perchftp::test {
namespace {

using protocol::RemoteEntry;
using protocol::SessionResult;

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

std::set<std::string> namesOnDisk(std::filesystem::path const& folder)
{
    std::set<std::string> names;
    for (auto const& item : std::filesystem::directory_iterator(folder)) {
        names.insert(item.path().filename().string());
    }
    return names;
}

std::string listedAsOnDisk(Walk& walk, std::string const& folder)
{
    std::vector<RemoteEntry> entries;
    SessionResult const result = walk.session.list(walk.remote(folder), entries);
    if (!result.ok) {
        return fails(result);
    }
    std::set<std::string> names;
    for (RemoteEntry const& entry : entries) {
        names.insert(entry.name);
    }
    return works(names == namesOnDisk(walk.disk(folder)), "lists other names than the disk holds");
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
    EXPECT_THAT(events.shape(), testing::ElementsAre(TransferEventType::Started, TransferEventType::Progress,
                                                     TransferEventType::Completed));
    EXPECT_EQ(events.events.back().transferred, kFiveMegabytes);
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
    EXPECT_EQ(events.events.back().type, TransferEventType::Completed);
    EXPECT_EQ(events.events.back().total, 0u) << "a download completes as 0 of 0";
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
};

std::vector<WalkStep> walkSteps()
{
    std::string const quoteRefused = "fails: operation failed: Quote command returned error";
    return {
        {"connect with a wrong password",
         [](Walk& walk) {
             WalkServer const& s = walk.server;
             SessionResult const result = walk.session.connect("127.0.0.1", s.port, s.user, s.password + "-wrong");
             return result.ok ? "works" : fails(result);
         },
         "fails: connect: Login denied", "fails: connect: Login denied"},
        {"connect",
         [](Walk& walk) {
             WalkServer const& s = walk.server;
             SessionResult const result = walk.session.connect("127.0.0.1", s.port, s.user, s.password);
             return result.ok ? "works" : fails(result);
         },
         "works", "works"},
        {"list the home folder", [](Walk& walk) { return listedAsOnDisk(walk, ""); }, "works", "works"},
        {"create a folder",
         [](Walk& walk) {
             SessionResult const result = walk.session.mkdir(walk.remote("walk"));
             bool const made = std::filesystem::is_directory(walk.disk("walk"));
             walk.server.makeFolders("walk"); // as another tool would, so that the walk goes on
             return judged(result, made);
         },
         "works", quoteRefused},
        {"upload 5 MiB", uploadFiveMegabytes, "works", "works"},
        {"list a folder", describeListedFile, "works", "works, but the size shows 0"},
        {"list a folder named without a trailing /",
         [](Walk& walk) {
             std::vector<RemoteEntry> entries;
             SessionResult const result = walk.session.list(walk.remote("walk"), entries);
             return result.ok ? "works" : fails(result);
         },
         "works", "fails: list: Error in the SSH layer"},
        {"download and compare", downloadAndCompare, "works", "works"},
        {"rename a file", renameFile, "works", quoteRefused},
        {"change permissions to 644", changeMode,
         "fails: operation failed: Remote file not found, the mode becomes 0420",
         "reports success, changes nothing"},
        {"change permissions to an invalid mode",
         [](Walk& walk) {
             SessionResult const result = walk.session.chmod(walk.remote(walk.file), -1);
             return result.code == 4 ? fails(result) : "accepts it";
         },
         "fails: chmod: invalid mode", "fails: chmod: invalid mode"},
        {"delete a file", deleteFile, "works", quoteRefused},
        {"delete a folder holding a subfolder",
         [](Walk& walk) {
             walk.server.makeFolders("walk/full/sub");
             walk.server.makeFile("walk/full/sub/inner.txt");
             walk.server.makeFile("walk/full/top.txt");
             return deleteTree(walk, "walk/full");
         },
         "works", "fails: Remote recursive delete list failed: sftp list: Error in the SSH layer"},
        {"delete a folder holding a link that points outside it",
         [](Walk& walk) {
             walk.server.makeFolders("walk/tree/sub");
             walk.server.makeFile("walk/tree/sub/inner.txt");
             walk.server.makeLink("walk/tree/link", "../../outside.txt");
             return deleteTree(walk, "walk/tree");
         },
         "fails: Remote recursive delete stopped at a name that is not inside the folder: ../../outside.txt",
         "fails: Remote recursive delete list failed: sftp list: Error in the SSH layer"},
        {"list again", [](Walk& walk) { return listedAsOnDisk(walk, "walk/"); }, "works", "works"},
        {"upload a name with a blank", uploadNameWithBlank, "fails: upload: URL using bad/illegal format or missing URL",
         "fails: upload: URL using bad/illegal format or missing URL"},
        {"disconnect",
         [](Walk& walk) {
             SessionResult const result = walk.session.disconnect();
             return result.ok && !walk.session.isConnected() ? "works" : fails(result);
         },
         "works", "works"},
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
        std::string const outcome = step.run(walk);
        recordOutcome(*server, step.operation, outcome);
        EXPECT_EQ(outcome, server->protocol == "sftp" ? step.onSftp : step.onFtp);
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
