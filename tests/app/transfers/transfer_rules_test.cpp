// The text rules of transfers and file operations: the modes that permission texts give (the
// properties that hold for every text are the permission fuzz target's), remote joins, path bytes,
// and the "already exists" reading of a failure.
#include "app/transfers/permission_modes.hpp"
#include "app/transfers/transfer_paths.hpp"

#include <gtest/gtest.h>

#include <QStringList>

#include <string>
#include <utility>
#include <vector>

namespace perchftp::app {
namespace {

using namespace detail;

TEST(TransferText, PermissionTextsGiveTheirModesOrAreRefused)
{
    std::pair<QString, int> const accepted[] = {{"644", 0644}, {"7777", 07777}, {" 7 5\t5 \n", 0755},
        {"drwxr-xr-x", 0755}, {"-rw-r--r--", 0644}, {"lrwxrwxrwx", 0777}, {"rwsr-xr-x", 04755}, {"rwSr--r--", 04644},
        {"rwxrwsr-x", 02775}, {"rwxrwxrwt", 01777}, {"rwxrwxrwT", 01776}, {"xwrxwrxwr", 0222},
        {"rtxr-xr-x", 0755 & ~0200},
        {"xrwxrwxrw", 0}}; // letters in the wrong place are taken without effect
    for (auto const& [text, mode] : accepted) {
        EXPECT_EQ(parsePermissionMode(text), mode) << text.toStdString();
    }
    QString const refused[] = {"", "64", "06444", "888", "rwxr-xr-", "xrwxr-xr-x", "rwsr-xr-s", "Twxr-xr-x",
        "rwxTwxr-x", "rwxr-xr-q", "drwxr-xr-xx", "r\u00e9xr-xr-x"};
    for (QString const& text : refused) {
        EXPECT_EQ(parsePermissionMode(text), -1) << '"' << text.toStdString() << '"';
    }
}

TEST(TransferText, RemotePathsJoinWithOneSlashKeepTheirBytesAndAnyMessageHoldingExistReadsAsAlreadyExists)
{
    EXPECT_EQ((std::vector<std::string>{joinRemotePath("", "a"), joinRemotePath("/", "a"), joinRemotePath("/srv/", "a"),
                  joinRemotePath("/srv", "a/b")}),
        (std::vector<std::string>{"/a", "/a", "/srv/a", "/srv/a/b"}));
    EXPECT_EQ(QStringList({lastPathComponent("/a/b.txt"), lastPathComponent("/a/b/"), lastPathComponent("name"),
                  lastPathComponent("/"), lastPathComponent("")}),
        QStringList({"b.txt", "b", "name", "/", ""}));
    std::string const bytes = "/tmp/caf\xe9/x";
    EXPECT_EQ(pathBytes(pathText(bytes)), bytes);
    EXPECT_EQ(pathBytes(QStringLiteral("/tmp/café")), "/tmp/caf\xc3\xa9");

    EXPECT_TRUE(messageLooksLikeAlreadyExists("550 Directory already EXISTS"));
    EXPECT_TRUE(messageLooksLikeAlreadyExists("No such file: it does not exist")) << "deliberately this wide";
    EXPECT_FALSE(messageLooksLikeAlreadyExists("ftp operation failed: Quote command returned error"));
}

} // namespace
} // namespace perchftp::app
