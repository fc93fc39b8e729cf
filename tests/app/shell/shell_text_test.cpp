#include "app/remote_rows.hpp"
#include "app/shell_text.hpp"

#include <gtest/gtest.h>

#include <climits>

namespace perchftp::app {
namespace {

TEST(ShellText, APortFieldIsReadAsItsLeadingIntegerClampedToTheIntRange)
{
    std::pair<char const*, int> const rows[] = {{"21", 21}, {"  2121", 2121}, {"22abc", 22}, {"+990", 990}, {"-5", -5},
        {"abc", 0}, {"", 0}, {"- 5", 0}, {"99999999999999", INT_MAX}, {"-99999999999999", INT_MIN}};
    for (auto const& [text, value] : rows) {
        EXPECT_EQ(detail::leadingIntValue(text), value) << '"' << text << '"';
    }
}

TEST(ShellText, ProtocolNamesAreTrimmedAndLoweredOnlyInAsciiAndOnlyExactNamesHaveTheirOwnPort)
{
    EXPECT_EQ(detail::lowerAscii(detail::trim("  SFTP \t\n")), "sftp");
    EXPECT_EQ(detail::lowerAscii("ÄBC"), "Äbc") << "bytes of multi-byte characters stay";
    EXPECT_EQ(detail::trim(" \t "), "");
    EXPECT_EQ(detail::defaultPortForProtocol("sftp"), 22);
    EXPECT_EQ(detail::defaultPortForProtocol("SFTP"), 21);
}

TEST(ShellText, RemoteRowPathsJoinTheBaseAndTheName)
{
    std::tuple<char const*, char const*, char const*> const rows[] = {{"/", "a", "/a"}, {"/srv", "a", "/srv/a"},
        {"/srv/", "a", "/srv/a"}, {"/srv", "", "/srv"}, {"", "", "/"}, {"rel", "a", "rel/a"}};
    for (auto const& [base, name, joined] : rows) {
        EXPECT_EQ(appendPathComponent(base, name), joined) << base << " + " << name;
    }
}

} // namespace
} // namespace perchftp::app
