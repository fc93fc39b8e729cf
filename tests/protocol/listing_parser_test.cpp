#include "protocol/curl/listing_parser.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace perchftp::protocol::curl::detail {
namespace {

struct Expected {
    Expected(std::string name, bool isDirectory = false, std::uint64_t size = 0, std::string permissions = {},
             std::string modifiedAt = {})
        : name(std::move(name)), isDirectory(isDirectory), size(size), permissions(std::move(permissions)),
          modifiedAt(std::move(modifiedAt))
    {
    }

    std::string name;
    bool isDirectory;
    std::uint64_t size;
    std::string permissions;
    std::string modifiedAt;
};

struct ListingCase {
    char const* what;
    std::string protocol;
    std::string body;
    std::vector<Expected> entries;
};

void PrintTo(ListingCase const& c, std::ostream* out)
{
    *out << c.what;
}

class ListingReplies : public testing::TestWithParam<ListingCase> {};

TEST_P(ListingReplies, BecomeTheseEntriesInTheServersOrder)
{
    ListingCase const& c = GetParam();
    std::vector<RemoteEntry> const entries = parseListing(c.body, c.protocol);
    ASSERT_EQ(entries.size(), c.entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        SCOPED_TRACE("entry " + std::to_string(i));
        EXPECT_EQ(entries[i].name, c.entries[i].name);
        EXPECT_EQ(entries[i].isDirectory, c.entries[i].isDirectory);
        EXPECT_EQ(entries[i].size, c.entries[i].size);
        EXPECT_EQ(entries[i].permissions, c.entries[i].permissions);
        EXPECT_EQ(entries[i].modifiedAt, c.entries[i].modifiedAt);
    }
}

std::string const kUnixFile = "-rw-r--r-- 1 me staff 1234 Jan 5 10:30 notes.txt";
constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();

INSTANTIATE_TEST_SUITE_P(
    Unix, ListingReplies,
    testing::Values(
        ListingCase{"unix file on ftp", "ftp", kUnixFile + "\n",
                    {{"notes.txt", false, 1234, "-rw-r--r--", "Jan 5 10:30"}}},
        ListingCase{"unix file on sftp reads the size from the name", "sftp", kUnixFile + "\n",
                    {{"notes.txt", false, 0, "-rw-r--r--", "Jan 5 10:30"}}},
        ListingCase{"sftp name that is a number becomes the size", "sftp",
                    "-rw-r--r-- 1 me staff 99 Jan 5 10:30 2024.log\n",
                    {{"2024.log", false, 2024, "-rw-r--r--", "Jan 5 10:30"}}},
        ListingCase{"unix folder with nine columns", "ftp", "drwxr-xr-x 2 me staff 4096 Feb 1 2024 docs\n",
                    {{"docs", true, 4096, "drwxr-xr-x", "Feb 1 2024"}}},
        ListingCase{"a d line with fewer than nine columns is a file", "ftp", "drwxr-xr-x 2 me staff 4096 docs\n",
                    {{"docs", false, 4096, "drwxr-xr-x", ""}}},
        ListingCase{"name with blanks keeps its last word", "ftp",
                    "-rw-r--r-- 1 me staff 5 Jan 5 10:30 my file.txt\n",
                    {{"file.txt", false, 5, "-rw-r--r--", "Jan 5 10:30"}}},
        ListingCase{"symbolic link is named by its target", "ftp",
                    "lrwxrwxrwx 1 me staff 6 Jan 5 10:30 link -> target\n",
                    {{"target", false, 6, "lrwxrwxrwx", "Jan 5 10:30"}}},
        ListingCase{"total line becomes a phantom entry and keeps the second pass away", "ftp",
                    "total 24\n" + kUnixFile + "\n",
                    {{"24", false, 0, "", ""}, {"notes.txt", false, 1234, "-rw-r--r--", "Jan 5 10:30"}}},
        ListingCase{"only the dot lines: the second pass names entries by whole lines", "ftp",
                    "drwxr-xr-x 2 me staff 4096 Jan 5 10:30 .\ndrwxr-xr-x 9 me staff 4096 Jan 5 10:30 ..\n",
                    {{"drwxr-xr-x 2 me staff 4096 Jan 5 10:30 ."}, {"drwxr-xr-x 9 me staff 4096 Jan 5 10:30 .."}}},
        ListingCase{"duplicates are kept", "ftp", kUnixFile + "\n" + kUnixFile + "\n",
                    {{"notes.txt", false, 1234, "-rw-r--r--", "Jan 5 10:30"},
                     {"notes.txt", false, 1234, "-rw-r--r--", "Jan 5 10:30"}}}));

INSTANTIATE_TEST_SUITE_P(
    OtherFormats, ListingReplies,
    testing::Values(
        ListingCase{"dos folder", "ftp", "01-05-24  10:30AM       <DIR>          Reports\r\n",
                    {{"Reports", true, 0, "", ""}}},
        ListingCase{"dos file of four tokens has no size read", "ftp", "01-05-24  10:30AM  1234 a.txt\r\n",
                    {{"a.txt", false, 0, "", ""}}},
        ListingCase{"mlsd file with a blank in its name", "ftp", "type=file;size=10;perm=r; a b.txt\r\n",
                    {{"a b.txt", false, 10, "", ""}}},
        ListingCase{"mlsd folder", "ftp", "type=dir;size=0;modify=20240105103000; docs\r\n",
                    {{"docs", true, 0, "", ""}}},
        ListingCase{"mlsd cdir and pdir are not folders and are skipped by name", "ftp",
                    "type=cdir;size=0; .\ntype=pdir;size=0; ..\ntype=cdir;size=0; here\n",
                    {{"here", false, 0, "", ""}}},
        ListingCase{"mlsd type=dir without its semicolon is a file", "ftp", "size=3;type=dir docs;x\n",
                    {{"x", false, 3, "", ""}}},
        ListingCase{"mlsd facts are case-sensitive", "ftp", "Type=dir;Size=3; Docs\n",
                    {{"Docs", false, 0, "", ""}}},
        ListingCase{"mlsd folder with sizd falls to the token rule", "ftp", "type=dir;sizd=4096; docs\n",
                    {{"docs", false, 0, "", ""}}},
        ListingCase{"mlsd without a name falls to the bare-name rule", "ftp", "type=file;size=5;\n",
                    {{"type=file;size=5;", false, 0, "", ""}}},
        ListingCase{"mlsd size -1 wraps", "ftp", "type=file;size=-1; big\n", {{"big", false, kMax, "", ""}}},
        ListingCase{"mlsd size past 64 bits is 0", "ftp", "type=file;size=18446744073709551616; huge\n",
                    {{"huge", false, 0, "", ""}}},
        ListingCase{"mlsd size with leading blanks and trailing letters", "ftp", "type=file;size= 12kb; s\n",
                    {{"s", false, 12, "", ""}}},
        ListingCase{"mlsd empty size is 0", "ftp", "type=file;size=; e\n", {{"e", false, 0, "", ""}}},
        ListingCase{"bare names are plain files", "ftp", "readme.md\nsrc\n",
                    {{"readme.md", false, 0, "", ""}, {"src", false, 0, "", ""}}},
        ListingCase{"a bare name starting with total is lost", "ftp", "totals.csv\nreadme.md\n",
                    {{"readme.md", false, 0, "", ""}}},
        ListingCase{"star dot and dotdot are never entries", "ftp", "*\n.\n..\nkeep\n", {{"keep", false, 0, "", ""}}}));

INSTANTIATE_TEST_SUITE_P(
    Bytes, ListingReplies,
    testing::Values(
        ListingCase{"empty reply", "ftp", "", {}},
        ListingCase{"only blank lines", "ftp", "\n \n\t\n", {}},
        ListingCase{"crlf line ends", "ftp", "a\r\nb\r\n", {{"a"}, {"b"}}},
        ListingCase{"a lone cr does not end a line", "ftp", "a\rb\n", {{"a\rb"}}},
        ListingCase{"no final newline", "ftp", "a\nb", {{"a"}, {"b"}}},
        ListingCase{"trailing blanks and tabs are trimmed", "ftp", "a  \t\n", {{"a"}}},
        ListingCase{"a tab is no blank: the whole line is the name", "ftp", "-rw-r--r--\t1\tme\tx\n",
                    {{"-rw-r--r--\t1\tme\tx"}}},
        ListingCase{"tabs still split tokens once a blank is present", "ftp",
                    "-rw-r--r--\t1\tme\tstaff\t77 Jan\t5\t10:30\tt.txt\n",
                    {{"t.txt", false, 77, "-rw-r--r--", "Jan 5 10:30"}}},
        ListingCase{"non-utf-8 bytes pass through", "ftp", "caf\xe9 \xff\xfe\n", {{"\xff\xfe"}}},
        ListingCase{"a line that is only a dot is skipped, the second pass too", "ftp", ".\n..\n", {}}));

TEST(ListingParser, ReadsAMegabyteLineAsOneName)
{
    std::string const name(1 << 20, 'x');
    std::vector<RemoteEntry> const entries = parseListing(name + "\n", "ftp");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name.size(), name.size());
}

TEST(ListingParser, ReadsGarbageWithoutFailing)
{
    std::string garbage;
    for (int i = 0; i < 4096; ++i) {
        garbage += static_cast<char>((i * 7919) % 256);
    }
    std::vector<RemoteEntry> const entries = parseListing(garbage, "ftp");
    for (RemoteEntry const& entry : entries) {
        EXPECT_FALSE(entry.name.empty());
    }
}

TEST(ListingParser, SplitsLinesAtLineFeedOnlyAndKeepsEmptyOnes)
{
    std::vector<std::string_view> const lines = splitLines(" a \n\n\tb\r\nc");
    EXPECT_EQ(lines, (std::vector<std::string_view>{"a", "", "b", "c"}));
    EXPECT_TRUE(splitLines("").empty());
    EXPECT_EQ(splitLines("a\n").size(), 1u);
}

TEST(ListingParser, JoinsTokensInTheirRangeOnly)
{
    std::vector<std::string_view> const tokens = {"a", "b", "c"};
    EXPECT_EQ(joinTokens(tokens, 0, 2), "a b");
    EXPECT_EQ(joinTokens(tokens, 1, 8), "b c");
    EXPECT_EQ(joinTokens(tokens, 2, 2), "");
    EXPECT_EQ(joinTokens(tokens, 3, 8), "");
}

TEST(ListingParser, ConvertsSizesLikeTheStandardUnsignedConversion)
{
    EXPECT_EQ(parseSize("1234"), 1234u);
    EXPECT_EQ(parseSize("  +7"), 7u);
    EXPECT_EQ(parseSize("-1"), kMax);
    EXPECT_EQ(parseSize("12abc"), 12u);
    EXPECT_EQ(parseSize("abc"), 0u);
    EXPECT_EQ(parseSize(""), 0u);
    EXPECT_EQ(parseSize("18446744073709551615"), kMax);
    EXPECT_EQ(parseSize("18446744073709551616"), 0u);
    EXPECT_EQ(parseSize("-18446744073709551615"), 1u);
    EXPECT_EQ(parseSize("\v\f12"), 12u);
    EXPECT_EQ(parseSize("- 1"), 0u);
}

} // namespace
} // namespace perchftp::protocol::curl::detail
