#include "protocol/curl/command_ladders.hpp"
#include "protocol/curl/remote_paths.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace perchftp::protocol::curl::detail {
namespace {

using Rows = std::vector<std::pair<std::string, std::string>>;

void expectEach(std::function<std::string(std::string const&)> const& f, Rows const& rows)
{
    for (auto const& [input, output] : rows) {
        EXPECT_EQ(f(input), output) << "input \"" << input << '"';
    }
}

TEST(RemotePaths, BaseUrlWritesSchemeCredentialsHostAndPortWithNothingEscaped)
{
    EXPECT_EQ(baseUrl("h", 21, "u", "p", "ftp"), "ftp://u:p@h:21");
    EXPECT_EQ(baseUrl("h", 21, "u", "", "ftp"), "ftp://u:@h:21");
    EXPECT_EQ(baseUrl("h", 21, "", "secret", "ftp"), "ftp://h:21");
    EXPECT_EQ(baseUrl("h", 21, "u", "a@b/c d", "ftp"), "ftp://u:a@b/c d@h:21");
    EXPECT_EQ(baseUrl("", 0, "", "", "ftp"), "ftp://:0");
}

TEST(RemotePaths, HelpersChangeOnlyWhatTheySay)
{
    expectEach(normalizePath, {{"", ""}, {"a/b", "/a/b"}, {"/a/b/", "/a/b/"}, {"./a//../b", "/./a//../b"}, {"//x", "//x"}});
    expectEach(listContextPath, {{"", ""}, {".", ""}, {"/", "/"}, {"/a/b", "/a/b/"}, {"a/b", "/a/b/"}, {"/a/b/", "/a/b/"}});
    expectEach(commandContextPath, {{"/a/b.txt", "/a"}, {"/a/b/", "/a"}, {"/b.txt", "/"}, {"b.txt", "/"}, {"/", ""},
                                    {"", ""}, {"/a/../b", "/a/.."}});
    expectEach(commandTargetName, {{"/a/b.txt", "b.txt"}, {"/a/b/", "b"}, {"/", "/"}, {"", ""}, {"/a/.", "/a/."},
                                   {"/a/..", ".."}});
}

// Each rung as "context: command, command".
std::vector<std::string> rungs(CommandLadder const& ladder)
{
    std::vector<std::string> lines;
    for (auto const& attempt : ladder) {
        std::string line = attempt.context + ":";
        for (auto const& command : attempt.commands) {
            line += (line.back() == ':' ? " " : ", ") + command;
        }
        lines.push_back(line);
    }
    return lines;
}

using Rungs = std::vector<std::string>;

// The ladders as built for a login folder: "/" on most servers, a home folder on others, or
// unknown ("") when the server would not say. A relative command lands in the login folder, dots
// resolved; with an unknown login folder, or one not of this server's form, only absolute ones do.
TEST(CommandLadders, KeepOnlyTheRungsWhoseCommandsActOnTheTargetSeenFromTheLoginFolder)
{
    struct Row {
        CommandLadder ladder;
        Rungs expected;
    };
    std::vector<Row> const rows{
        {renameLadder("/x", "/y", "/"), {"/: RNFR x, RNTO y", ": RNFR x, RNTO y", "/: RNFR x, RNTO y",
                                         ": RNFR /x, RNTO /y", "/: RNFR /x, RNTO /y"}},
        {renameLadder("/a/x", "/a/y", "/"),
         {": RNFR a/x, RNTO a/y", "/: RNFR a/x, RNTO a/y", ": RNFR /a/x, RNTO /a/y", "/: RNFR /a/x, RNTO /a/y"}},
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
        {mkdirLadder("/b", ""), {": MKD /b", "/: MKD /b"}},
        {mkdirLadder("", "/"), {}},
    };
    for (std::size_t index = 0; index < rows.size(); ++index) {
        EXPECT_EQ(rungs(rows[index].ladder), rows[index].expected) << "row " << index;
    }
}

} // namespace
} // namespace perchftp::protocol::curl::detail
