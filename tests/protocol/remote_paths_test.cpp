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
    EXPECT_EQ(baseUrl("h", 990, "u", "p", "ftps"), "ftps://u:p@h:990");
    EXPECT_EQ(baseUrl("h", 22, "u", "p", "sftp"), "sftp://u:p@h:22");
    EXPECT_EQ(baseUrl("h", 21, "u", "p", "gopher"), "ftp://u:p@h:21");
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

TEST(CommandLadders, RenameTriesNameThenRelativeThenAbsoluteFormsWithoutDroppingRepeats)
{
    EXPECT_EQ(rungs(renameLadder("/a/x", "/c/y")),
              (Rungs{"/a: RNFR x, RNTO y", ": RNFR a/x, RNTO c/y", "/: RNFR a/x, RNTO c/y", ": RNFR /a/x, RNTO /c/y",
                     "/: RNFR /a/x, RNTO /c/y"}));
    EXPECT_EQ(rungs(renameLadder("/x", "/y")), (Rungs{"/: RNFR x, RNTO y", ": RNFR x, RNTO y", "/: RNFR x, RNTO y",
                                                      ": RNFR /x, RNTO /y", "/: RNFR /x, RNTO /y"}));
    EXPECT_EQ(rungs(renameLadder("/", "/y")), (Rungs{": RNFR /, RNTO y", ": RNFR /, RNTO /y", "/: RNFR /, RNTO /y"}));
    EXPECT_TRUE(renameLadder("", "").empty());
    EXPECT_TRUE(renameLadder("/x", "").empty());
}

TEST(CommandLadders, RemoveStartsWithRmdOnlyForASlashAndDropsRelativeRungsEqualToTheName)
{
    EXPECT_EQ(rungs(removeLadder("/a/b/")),
              (Rungs{"/a: RMD b", "/a: DELE b", ": RMD a/b/", "/: RMD a/b/", ": DELE a/b/", "/: DELE a/b/",
                     ": RMD /a/b/", "/: RMD /a/b/", ": DELE /a/b/", "/: DELE /a/b/"}));
    EXPECT_EQ(rungs(removeLadder("/a/b")),
              (Rungs{"/a: DELE b", "/a: RMD b", ": DELE a/b", "/: DELE a/b", ": RMD a/b", "/: RMD a/b", ": DELE /a/b",
                     "/: DELE /a/b", ": RMD /a/b", "/: RMD /a/b"}));
    EXPECT_EQ(rungs(removeLadder("b.txt")), (Rungs{"/: DELE b.txt", "/: RMD b.txt", ": DELE /b.txt", "/: DELE /b.txt",
                                                   ": RMD /b.txt", "/: RMD /b.txt"}));
    EXPECT_TRUE(removeLadder("").empty());
}

TEST(CommandLadders, MkdirSkipsTheRelativeFormOfATopLevelName)
{
    EXPECT_EQ(rungs(mkdirLadder("/b")), (Rungs{"/: MKD b", ": MKD /b", "/: MKD /b"}));
    EXPECT_EQ(rungs(mkdirLadder("/a/b")), (Rungs{"/a: MKD b", ": MKD a/b", "/: MKD a/b", ": MKD /a/b", "/: MKD /a/b"}));
    EXPECT_TRUE(mkdirLadder("").empty());
}

} // namespace
} // namespace perchftp::protocol::curl::detail
