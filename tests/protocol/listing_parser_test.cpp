#include "protocol/curl/listing_parser.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace perchftp::protocol::curl::detail {
namespace {

using Described = std::vector<std::string>;

// Each entry as "name|isDirectory|size|permissions|modifiedAt".
Described described(std::vector<RemoteEntry> const& entries)
{
    Described lines;
    for (auto const& e : entries) {
        lines.push_back(e.name + "|" + (e.isDirectory ? "1" : "0") + "|" + std::to_string(e.size) + "|" + e.permissions + "|"
                        + e.modifiedAt);
    }
    return lines;
}

struct ListingCase {
    char const* what;
    std::string body;
    Described entries;
    std::string protocol = "ftp";
};

std::string const kUnixFile = "-rw-r--r-- 1 me staff 1234 Jan 5 10:30 notes.txt";

// That no reply gives an empty, padded, "." or ".." name is the fuzz target's ground; these rows
// pin what each shape of line gives.
std::vector<ListingCase> const kCases = {
    // Unix lines
    {"unix file on ftp", kUnixFile + "\n", {"notes.txt|0|1234|-rw-r--r--|Jan 5 10:30"}},
    {"unix file on sftp reads the size from the name", kUnixFile + "\n", {"notes.txt|0|0|-rw-r--r--|Jan 5 10:30"}, "sftp"},
    {"sftp name that is a number becomes the size", "-rw-r--r-- 1 me staff 99 Jan 5 10:30 2024.log\n",
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
    {"mlsd without a name falls to the bare-name rule", "type=file;size=5;\n", {"type=file;size=5;|0|0||"}},
    {"bare names are plain files", "readme.md\nsrc", {"readme.md|0|0||", "src|0|0||"}},
    {"a bare name starting with total is lost", "totals.csv\nreadme.md\n", {"readme.md|0|0||"}},
    // Bytes
    {"an empty reply has no entries", "", {}},
    {"a lone cr does not end a line", "a\rb\n", {"a\rb|0|0||"}},
    {"a tab is no blank: the whole line is the name", "-rw-r--r--\t1\tme\tx\n", {"-rw-r--r--\t1\tme\tx|0|0||"}},
    {"tabs still split tokens once a blank is present", "-rw-r--r--\t1\tme\tstaff\t77 Jan\t5\t10:30\tt.txt\n",
     {"t.txt|0|77|-rw-r--r--|Jan 5 10:30"}},
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
