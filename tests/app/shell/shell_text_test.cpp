#include "app/remote_rows.hpp"
#include "app/shell_text.hpp"

#include <gtest/gtest.h>

#include <climits>

namespace perchftp::app {
namespace {

TEST(ShellText, APortFieldIsReadLikeADesktopTextFieldReadsItsInteger)
{
    EXPECT_EQ(detail::leadingIntValue("21"), 21);
    EXPECT_EQ(detail::leadingIntValue("  2121"), 2121);
    EXPECT_EQ(detail::leadingIntValue("22abc"), 22) << "digits followed by letters pass with the digits";
    EXPECT_EQ(detail::leadingIntValue("+990"), 990);
    EXPECT_EQ(detail::leadingIntValue("-5"), -5);
    EXPECT_EQ(detail::leadingIntValue("abc"), 0);
    EXPECT_EQ(detail::leadingIntValue(""), 0);
    EXPECT_EQ(detail::leadingIntValue("- 5"), 0);
    EXPECT_EQ(detail::leadingIntValue("99999999999999"), INT_MAX);
    EXPECT_EQ(detail::leadingIntValue("-99999999999999"), INT_MIN);
}

TEST(ShellText, ProtocolNamesAreTrimmedAndLoweredOnlyInAscii)
{
    EXPECT_EQ(detail::lowerAscii(detail::trim("  SFTP \t\n")), "sftp");
    EXPECT_EQ(detail::lowerAscii("ÄBC"), "Äbc") << "bytes of multi-byte characters stay";
    EXPECT_EQ(detail::trim(" \t "), "");
    EXPECT_EQ(detail::qtToCpp(QString()), "");
    EXPECT_EQ(detail::defaultPortForProtocol("sftp"), 22);
    EXPECT_EQ(detail::defaultPortForProtocol("ftps"), 21);
    EXPECT_EQ(detail::defaultPortForProtocol("SFTP"), 21) << "only the exact name";
}

TEST(ShellText, RemoteRowPathsJoinTheBaseAndTheName)
{
    EXPECT_EQ(appendPathComponent("/", "a"), "/a");
    EXPECT_EQ(appendPathComponent("/srv", "a"), "/srv/a");
    EXPECT_EQ(appendPathComponent("/srv/", "a"), "/srv/a");
    EXPECT_EQ(appendPathComponent("/srv", ""), "/srv");
    EXPECT_EQ(appendPathComponent("", ""), "/");
    EXPECT_EQ(appendPathComponent("rel", "a"), "rel/a");
}

} // namespace
} // namespace perchftp::app
