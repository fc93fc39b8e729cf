#include "protocol/protocol_factory.hpp"

#include "support/fresh_process.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace perchftp::protocol {
namespace {

bool creates(char const* name)
{
    return std::unique_ptr<IRemoteSession>(ProtocolFactory::create(name)) != nullptr;
}

// A maker of no session tells at once whether it, or the built-in maker, is in force.
IRemoteSession* makeNothing()
{
    return nullptr;
}

IRemoteSession* makeSftpSession()
{
    return ProtocolFactory::create("sftp");
}

TEST(ProtocolFactory, CreatesANewUnconnectedSessionForEachBuiltInNameInItsExactFormOnly)
{
    for (char const* name : {"ftp", "ftps", "sftp"}) {
        std::unique_ptr<IRemoteSession> const first(ProtocolFactory::create(name));
        std::unique_ptr<IRemoteSession> const second(ProtocolFactory::create(name));
        ASSERT_NE(first, nullptr) << name;
        EXPECT_NE(first.get(), second.get());
        EXPECT_FALSE(first->isConnected());
    }
    for (char const* name : {"FTP", "", "other", " ftp", "ftp "}) {
        EXPECT_FALSE(creates(name)) << '"' << name << '"';
    }
}

// The registry is global and fills itself with the defaults at the first create: each order of
// calls gets a process of its own.
TEST(ProtocolFactory, TheDefaultsReplaceABuiltInNameRegisteredBeforeTheFirstCreateOnly)
{
    EXPECT_IN_FRESH_PROCESS({
        ProtocolFactory::registerProtocol("ftp", makeNothing);
        ProtocolFactory::registerProtocol("webdav", makeSftpSession);
        CHILD_CHECK(creates("ftp"));
        CHILD_CHECK(creates("webdav"));
    });
    EXPECT_IN_FRESH_PROCESS({
        delete ProtocolFactory::create("sftp");
        ProtocolFactory::registerProtocol("ftp", makeNothing);
        CHILD_CHECK(!creates("ftp"));
        CHILD_CHECK(creates("sftp"));
    });
    EXPECT_IN_FRESH_PROCESS({
        ensureDefaultProtocolAdapters();
        ProtocolFactory::registerProtocol("ftps", makeNothing);
        ensureDefaultProtocolAdapters();
        CHILD_CHECK(!creates("ftps"));
    });
}

} // namespace
} // namespace perchftp::protocol
