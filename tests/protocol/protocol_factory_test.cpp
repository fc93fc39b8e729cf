#include "protocol/protocol_factory.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace perchftp::protocol {
namespace {

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
        EXPECT_EQ(std::unique_ptr<IRemoteSession>(ProtocolFactory::create(name)), nullptr) << '"' << name << '"';
    }
}

} // namespace
} // namespace perchftp::protocol
