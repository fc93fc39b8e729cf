#include "protocol/curl/command_ladders.hpp"
#include "protocol/curl/remote_paths.hpp"

#include <gtest/gtest.h>

namespace perchftp::protocol::curl::detail {
namespace {

TEST(BaseUrl, WritesSchemeCredentialsHostAndPortWithNothingEscaped)
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

TEST(NormalizePath, AddsOneLeadingSlashAndTouchesNothingElse)
{
    EXPECT_EQ(normalizePath(""), "");
    EXPECT_EQ(normalizePath("a/b"), "/a/b");
    EXPECT_EQ(normalizePath("/a/b/"), "/a/b/");
    EXPECT_EQ(normalizePath("./a//../b"), "/./a//../b");
    EXPECT_EQ(normalizePath("//x"), "//x");
}

TEST(ListContextPath, AsksFtpForAFolderUrl)
{
    EXPECT_EQ(listContextPath(""), "");
    EXPECT_EQ(listContextPath("."), "");
    EXPECT_EQ(listContextPath("/"), "/");
    EXPECT_EQ(listContextPath("/a/b"), "/a/b/");
    EXPECT_EQ(listContextPath("a/b"), "/a/b/");
    EXPECT_EQ(listContextPath("/a/b/"), "/a/b/");
}

TEST(SlashHelpers, TrimAndStripOnlyWhatTheySay)
{
    EXPECT_EQ(trimTrailingSlashes("/"), "/");
    EXPECT_EQ(trimTrailingSlashes("///"), "/");
    EXPECT_EQ(trimTrailingSlashes("/a//"), "/a");
    EXPECT_EQ(stripLeadingSlash("//a"), "/a");
    EXPECT_EQ(stripLeadingSlash(""), "");
    EXPECT_TRUE(looksLikeDirectoryPath("/a/"));
    EXPECT_FALSE(looksLikeDirectoryPath("/a"));
    EXPECT_FALSE(looksLikeDirectoryPath(""));
}

TEST(CommandPaths, NameTheParentFolderAndTheLastName)
{
    EXPECT_EQ(commandContextPath("/a/b.txt"), "/a");
    EXPECT_EQ(commandContextPath("/a/b/"), "/a");
    EXPECT_EQ(commandContextPath("/b.txt"), "/");
    EXPECT_EQ(commandContextPath("b.txt"), "/");
    EXPECT_EQ(commandContextPath("/"), "");
    EXPECT_EQ(commandContextPath(""), "");
    EXPECT_EQ(commandContextPath("/a/../b"), "/a/..");

    EXPECT_EQ(commandTargetName("/a/b.txt"), "b.txt");
    EXPECT_EQ(commandTargetName("/a/b/"), "b");
    EXPECT_EQ(commandTargetName("/"), "/");
    EXPECT_EQ(commandTargetName(""), "");
    EXPECT_EQ(commandTargetName("/a/."), "/a/.");
    EXPECT_EQ(commandTargetName("/a/.."), "..");
}

using Ladder = std::vector<CommandAttempt>;

void expectLadder(Ladder const& actual, Ladder const& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t rung = 0; rung < actual.size(); ++rung) {
        SCOPED_TRACE("rung " + std::to_string(rung + 1));
        EXPECT_EQ(actual[rung].context, expected[rung].context);
        EXPECT_EQ(actual[rung].commands, expected[rung].commands);
    }
}

TEST(RenameLadder, TriesNameThenRelativeThenAbsoluteFormsWithoutDroppingRepeats)
{
    expectLadder(renameLadder("/a/x", "/c/y"), {{"/a", {"RNFR x", "RNTO y"}},
                                                {"", {"RNFR a/x", "RNTO c/y"}},
                                                {"/", {"RNFR a/x", "RNTO c/y"}},
                                                {"", {"RNFR /a/x", "RNTO /c/y"}},
                                                {"/", {"RNFR /a/x", "RNTO /c/y"}}});
    expectLadder(renameLadder("/x", "/y"), {{"/", {"RNFR x", "RNTO y"}},
                                            {"", {"RNFR x", "RNTO y"}},
                                            {"/", {"RNFR x", "RNTO y"}},
                                            {"", {"RNFR /x", "RNTO /y"}},
                                            {"/", {"RNFR /x", "RNTO /y"}}});
}

TEST(RenameLadder, HasNoRungForEmptyPathsAndOnlyTheAbsoluteOnesForTheRoot)
{
    expectLadder(renameLadder("", ""), {});
    expectLadder(renameLadder("/x", ""), {});
    expectLadder(renameLadder("/", "/y"), {{"", {"RNFR /", "RNTO y"}},
                                           {"", {"RNFR /", "RNTO /y"}},
                                           {"/", {"RNFR /", "RNTO /y"}}});
}

TEST(RemoveLadder, StartsWithRmdOnlyForAPathEndingInSlash)
{
    expectLadder(removeLadder("/a/b/"), {{"/a", {"RMD b"}},
                                         {"/a", {"DELE b"}},
                                         {"", {"RMD a/b/"}},
                                         {"/", {"RMD a/b/"}},
                                         {"", {"DELE a/b/"}},
                                         {"/", {"DELE a/b/"}},
                                         {"", {"RMD /a/b/"}},
                                         {"/", {"RMD /a/b/"}},
                                         {"", {"DELE /a/b/"}},
                                         {"/", {"DELE /a/b/"}}});
    Ladder const file = removeLadder("/a/b");
    ASSERT_EQ(file.size(), 10u);
    EXPECT_EQ(file[0].commands, std::vector<std::string>{"DELE b"});
    EXPECT_EQ(file[1].commands, std::vector<std::string>{"RMD b"});
}

TEST(RemoveLadder, DropsTheRelativeRungsWhenTheyEqualTheName)
{
    expectLadder(removeLadder("b.txt"), {{"/", {"DELE b.txt"}},
                                         {"/", {"RMD b.txt"}},
                                         {"", {"DELE /b.txt"}},
                                         {"/", {"DELE /b.txt"}},
                                         {"", {"RMD /b.txt"}},
                                         {"/", {"RMD /b.txt"}}});
    expectLadder(removeLadder(""), {});
}

TEST(MkdirLadder, SkipsTheRelativeFormOfATopLevelName)
{
    expectLadder(mkdirLadder("/b"), {{"/", {"MKD b"}}, {"", {"MKD /b"}}, {"/", {"MKD /b"}}});
    expectLadder(mkdirLadder("/a/b"), {{"/a", {"MKD b"}},
                                       {"", {"MKD a/b"}},
                                       {"/", {"MKD a/b"}},
                                       {"", {"MKD /a/b"}},
                                       {"/", {"MKD /a/b"}}});
    expectLadder(mkdirLadder(""), {});
}

} // namespace
} // namespace perchftp::protocol::curl::detail
