// The text the session writes and reads: URLs, paths, command ladders and listings.
#include "protocol/curl/command_ladders.hpp"
#include "protocol/curl/listing_parser.hpp"
#include "protocol/curl/remote_paths.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace perchftp::protocol::curl::detail {
namespace {

using Lines = std::vector<std::string>;
using Rows = std::vector<std::pair<std::string, std::string>>;

void expectEach(std::function<std::string(std::string const&)> const& f, Rows const& rows)
{
    for (auto const& [input, output] : rows) {
        EXPECT_EQ(f(input), output) << "input \"" << input << '"';
    }
}

TEST(RemotePaths, BaseUrlWritesSchemeCredentialsHostAndPortWithNothingEscaped)
{
    EXPECT_EQ(baseUrl("h", 21, "u", "", "ftp"), "ftp://u:@h:21");
    EXPECT_EQ(baseUrl("h", 21, "", "secret", "ftp"), "ftp://h:21");
    EXPECT_EQ(baseUrl("h", 21, "u", "a@b/c d", "ftp"), "ftp://u:a@b/c d@h:21");
}

TEST(RemotePaths, HelpersChangeOnlyWhatTheySay)
{
    expectEach(normalizePath, {{"", ""}, {"a/b", "/a/b"}, {"/a/b/", "/a/b/"}, {"./a//../b", "/./a//../b"}, {"//x", "//x"}});
    expectEach(listContextPath, {{"", ""}, {".", ""}, {"/", "/"}, {"/a/b", "/a/b/"}, {"a/b", "/a/b/"}, {"/a/b/", "/a/b/"}});
}

// Each rung as "context: command, command".
Lines rungs(CommandLadder const& ladder)
{
    Lines lines;
    for (auto const& attempt : ladder) {
        std::string line = attempt.context + ":";
        for (auto const& command : attempt.commands) {
            line += (line.back() == ':' ? " " : ", ") + command;
        }
        lines.push_back(line);
    }
    return lines;
}

// The ladders as built for a login folder: "/" on most servers, a home folder on others, or
// unknown ("") when the server would not say. A relative command lands in the login folder, dots
// resolved; with an unknown login folder, or one not of this server's form, only absolute ones do.
TEST(CommandLadders, KeepOnlyTheRungsWhoseCommandsActOnTheTargetSeenFromTheLoginFolder)
{
    struct Row {
        CommandLadder ladder;
        Lines expected;
    };
    std::vector<Row> const rows{
        {renameLadder("/x", "/y", "/"), {"/: RNFR x, RNTO y", ": RNFR x, RNTO y", "/: RNFR x, RNTO y",
                                         ": RNFR /x, RNTO /y", "/: RNFR /x, RNTO /y"}},
        {renameLadder("/x", "/c/y", "/"), {": RNFR x, RNTO c/y", "/: RNFR x, RNTO c/y", ": RNFR /x, RNTO /c/y",
                                           "/: RNFR /x, RNTO /c/y"}},
        {renameLadder("/", "/y", "/"), {": RNFR /, RNTO y", ": RNFR /, RNTO /y", "/: RNFR /, RNTO /y"}},
        {renameLadder("/my file", "/a/../their file", "/"),
         {"/: RNFR my file, RNTO their file", ": RNFR my file, RNTO a/../their file",
          "/: RNFR my file, RNTO a/../their file", ": RNFR /my file, RNTO /a/../their file",
          "/: RNFR /my file, RNTO /a/../their file"}},
        {renameLadder("/x", "", "/"), {}},
        {removeLadder("/a/b.txt", "/"), {": DELE a/b.txt", "/: DELE a/b.txt", ": RMD a/b.txt", "/: RMD a/b.txt",
                                         ": DELE /a/b.txt", "/: DELE /a/b.txt", ": RMD /a/b.txt", "/: RMD /a/b.txt"}},
        {removeLadder("/a/b/", "/"), {": RMD a/b/", "/: RMD a/b/", ": DELE a/b/", "/: DELE a/b/", ": RMD /a/b/",
                                      "/: RMD /a/b/", ": DELE /a/b/", "/: DELE /a/b/"}},
        {removeLadder("/b.txt", "/"), {"/: DELE b.txt", "/: RMD b.txt", ": DELE /b.txt", "/: DELE /b.txt",
                                       ": RMD /b.txt", "/: RMD /b.txt"}},
        {removeLadder("/a/b.txt", ""), {": DELE /a/b.txt", "/: DELE /a/b.txt", ": RMD /a/b.txt", "/: RMD /a/b.txt"}},
        {removeLadder("/home/u/b", "/home/u/"), {"/home/u: DELE b", "/home/u: RMD b", ": DELE /home/u/b",
                                                 "/: DELE /home/u/b", ": RMD /home/u/b", "/: RMD /home/u/b"}},
        {removeLadder("/b", "/home/u"), {": DELE /b", "/: DELE /b", ": RMD /b", "/: RMD /b"}},
        {removeLadder("/home/b", "/home/u/.."), {"/home: DELE b", "/home: RMD b", ": DELE /home/b", "/: DELE /home/b",
                                                  ": RMD /home/b", "/: RMD /home/b"}},
        {removeLadder("/b", "C:/ftp"), {": DELE /b", "/: DELE /b", ": RMD /b", "/: RMD /b"}},
        {removeLadder("", "/"), {}},
        {mkdirLadder("/a/b", "/"), {": MKD a/b", "/: MKD a/b", ": MKD /a/b", "/: MKD /a/b"}},
        {mkdirLadder("/b", "/"), {"/: MKD b", ": MKD /b", "/: MKD /b"}},
        {mkdirLadder("", "/"), {}},
    };
    for (std::size_t index = 0; index < rows.size(); ++index) {
        EXPECT_EQ(rungs(rows[index].ladder), rows[index].expected) << "row " << index;
    }
}

// Each entry as "name|isDirectory|size|permissions|modifiedAt".
Lines described(std::vector<RemoteEntry> const& entries)
{
    Lines lines;
    for (auto const& e : entries) {
        lines.push_back(e.name + "|" + (e.isDirectory ? "1" : "0") + "|" + std::to_string(e.size) + "|" + e.permissions + "|"
                        + e.modifiedAt);
    }
    return lines;
}

struct ListingCase {
    char const* what;
    std::string body;
    Lines entries;
    std::string protocol = "ftp";
};

std::string const kUnixFile = "-rw-r--r-- 1 me staff 1234 Jan 5 10:30 notes.txt";

// That no reply gives an empty, padded, "." or ".." name is the fuzz target's ground; these rows
// pin what each shape of line gives.
std::vector<ListingCase> const kCases = {
    // Unix lines
    {"unix file on ftp", kUnixFile + "\n", {"notes.txt|0|1234|-rw-r--r--|Jan 5 10:30"}},
    {"on sftp the size is read from the name", "-rw-r--r-- 1 me staff 99 Jan 5 10:30 2024.log\n",
     {"2024.log|0|2024|-rw-r--r--|Jan 5 10:30"}, "sftp"},
    {"unix folder with nine columns", "drwxr-xr-x 2 me staff 4096 Feb 1 2024 docs\n", {"docs|1|4096|drwxr-xr-x|Feb 1 2024"}},
    {"a d line with fewer than nine columns is a file", "drwxr-xr-x 2 me staff 4096 docs\n", {"docs|0|4096|drwxr-xr-x|"}},
    {"name with blanks keeps its last word", "-rw-r--r-- 1 me staff 5 Jan 5 10:30 my file.txt\n",
     {"file.txt|0|5|-rw-r--r--|Jan 5 10:30"}},
    {"symbolic link is named by its target", "lrwxrwxrwx 1 me staff 6 Jan 5 10:30 link -> target\n",
     {"target|0|6|lrwxrwxrwx|Jan 5 10:30"}},
    {"total line becomes a phantom entry and keeps the second pass away", "total 24\n" + kUnixFile + "\n",
     {"24|0|0||", "notes.txt|0|1234|-rw-r--r--|Jan 5 10:30"}},
    {"only the dot lines: the second pass names entries by whole lines",
     "drwxr-xr-x 2 me staff 4096 Jan 5 10:30 .\ndrwxr-xr-x 9 me staff 4096 Jan 5 10:30 ..\n",
     {"drwxr-xr-x 2 me staff 4096 Jan 5 10:30 .|0|0||", "drwxr-xr-x 9 me staff 4096 Jan 5 10:30 ..|0|0||"}},
    // DOS and MLSD lines, bare names
    {"dos folder", "01-05-24  10:30AM       <DIR>          Reports\r\n", {"Reports|1|0||"}},
    {"dos file of four tokens has no size read", "01-05-24  10:30AM  1234 a.txt\r\n", {"a.txt|0|0||"}},
    {"mlsd file with a blank in its name", "type=file;size=10;perm=r; a b.txt\r\n", {"a b.txt|0|10||"}},
    {"mlsd folder", "type=dir;size=0;modify=20240105103000; docs\r\n", {"docs|1|0||"}},
    {"mlsd cdir and pdir are not folders and are skipped by name",
     "type=cdir;size=0; .\ntype=pdir;size=0; ..\ntype=cdir;size=0; here\n", {"here|0|0||"}},
    {"mlsd folder with sizd falls to the token rule", "type=dir;sizd=4096; docs\n", {"docs|0|0||"}},
    {"bare names are plain files", "readme.md\nsrc", {"readme.md|0|0||", "src|0|0||"}},
    {"a bare name starting with total is lost", "totals.csv\nreadme.md\n", {"readme.md|0|0||"}},
    // Bytes
    {"an empty reply has no entries", "", {}},
};

TEST(ListingParser, TurnsRepliesIntoTheseEntriesInTheServersOrder)
{
    for (ListingCase const& c : kCases) {
        EXPECT_EQ(described(parseListing(c.body, c.protocol)), c.entries) << c.what;
    }
}

constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();

TEST(ListingParser, ConvertsSizesLikeTheStandardUnsignedConversion)
{
    for (auto const& [text, size] : std::vector<std::pair<std::string_view, std::uint64_t>>{
             {"1234", 1234}, {"  +7", 7}, {"-1", kMax}, {"12abc", 12}, {"abc", 0}, {"", 0},
             {"18446744073709551615", kMax}, {"18446744073709551616", 0}, {"-18446744073709551615", 1},
             {"\v\f12", 12}, {"- 1", 0}}) {
        EXPECT_EQ(parseSize(text), size) << text;
    }
}

} // namespace
} // namespace perchftp::protocol::curl::detail
