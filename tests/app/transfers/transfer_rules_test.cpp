// The text rules of transfers and file operations: permission texts, remote joins, and the
// "already exists" reading of a failure.
#include "app/transfers/permission_modes.hpp"
#include "app/transfers/transfer_paths.hpp"

#include <gtest/gtest.h>

#include <QString>

#include <utility>
#include <vector>

namespace perchftp::app::detail {
namespace {

TEST(PermissionTexts, AcceptedTextsGiveTheirModes)
{
    std::vector<std::pair<QString, int>> const accepted{
        {"644", 0644},
        {"0644", 0644},
        {"7777", 07777},
        {" 7 5\t5 \n", 0755},
        {"rwxr-xr-x", 0755},
        {"drwxr-xr-x", 0755},
        {"-rw-r--r--", 0644},
        {"rwx r-x r-x", 0755},
        {"rwsr-xr-x", 04755},
        {"rwSr--r--", 04644},
        {"rwxrwsr-x", 02775},
        {"rwxrwxrwt", 01777},
        {"rwxrwxrwT", 01776},
        {"---------", 0},
        {"xwrxwrxwr", 0222},
        {"lrwxrwxrwx", 0777},
        {"rtxr-xr-x", 0755 & ~0200},
    };
    for (auto const& [text, mode] : accepted) {
        EXPECT_EQ(parsePermissionMode(text), mode) << text.toStdString();
    }
}

TEST(PermissionTexts, MisplacedReadWriteAndExecuteAreTakenWithoutEffect)
{
    EXPECT_EQ(parsePermissionMode("xrwxrwxrw"), 0) << "every letter in the wrong place gives mode 0";
}

TEST(PermissionTexts, MalformedTextsAreRefused)
{
    std::vector<QString> const refused{
        QString(),
        "",
        "   \n",
        "64",
        "06444",
        "888",
        "rwxr-xr-",
        "xrwxr-xr-x",
        "rwsr-xr-s",
        "Twxr-xr-x",
        "rwxTwxr-x",
        "rwxr-xr-q",
        "rwxr-xr-x-",
        "drwxr-xr-xx",
        "r\u00e9xr-xr-x",
    };
    for (QString const& text : refused) {
        EXPECT_EQ(parsePermissionMode(text), -1) << '"' << text.toStdString() << '"';
    }
}

TEST(PermissionTexts, TheDisplayIsTheOctalModeOrTheTextAsItStands)
{
    EXPECT_EQ(permissionDisplayFromModeString("drwxr-xr-x"), "755");
    EXPECT_EQ(permissionDisplayFromModeString("0644"), "644");
    EXPECT_EQ(permissionDisplayFromModeString("rwsr-xr-x"), "4755");
    EXPECT_EQ(permissionDisplayFromModeString("---------"), "0");
    EXPECT_EQ(permissionDisplayFromModeString("weird"), "weird");
    EXPECT_EQ(permissionDisplayFromModeString(""), "");
    EXPECT_TRUE(permissionDisplayFromModeString(QString()).isEmpty());
    EXPECT_FALSE(permissionDisplayFromModeString(QString()).isNull());
}

TEST(RemotePaths, JoiningPutsExactlyOneSlashBetweenFolderAndName)
{
    EXPECT_EQ(joinRemotePath("", "a"), "/a");
    EXPECT_EQ(joinRemotePath("/", "a"), "/a");
    EXPECT_EQ(joinRemotePath("/srv/", "a"), "/srv/a");
    EXPECT_EQ(joinRemotePath("/srv", "a/b"), "/srv/a/b");
    EXPECT_EQ(joinRemotePath("srv", ""), "srv/");
}

TEST(RemotePaths, AnyMessageThatHoldsExistReadsAsAlreadyExists)
{
    EXPECT_TRUE(messageLooksLikeAlreadyExists("ftp mkdir: File exists"));
    EXPECT_TRUE(messageLooksLikeAlreadyExists("550 Directory already EXISTS"));
    EXPECT_TRUE(messageLooksLikeAlreadyExists("No such file: it does not exist")) << "deliberately this wide";
    EXPECT_FALSE(messageLooksLikeAlreadyExists("ftp operation failed: Quote command returned error"));
    EXPECT_FALSE(messageLooksLikeAlreadyExists(""));
}

TEST(RemotePaths, TheLastComponentIgnoresTrailingSlashes)
{
    EXPECT_EQ(lastPathComponent("/a/b.txt"), "b.txt");
    EXPECT_EQ(lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(lastPathComponent("name"), "name");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(RemotePaths, BytesThatAreNotUtf8SurviveTheTripThroughText)
{
    std::string const bytes = "/tmp/caf\xe9/x";
    EXPECT_EQ(pathBytes(pathText(bytes)), bytes);
    EXPECT_EQ(pathBytes(QStringLiteral("/tmp/café")), "/tmp/caf\xc3\xa9");
}

} // namespace
} // namespace perchftp::app::detail
