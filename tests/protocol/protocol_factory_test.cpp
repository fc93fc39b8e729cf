#include "protocol/protocol_factory.hpp"

#include "support/fresh_process.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace perchftp::protocol {
namespace {

// A stand-in session that tells itself apart by reporting itself connected from the start.
class MarkedSession final : public IRemoteSession {
public:
    SessionResult connect(std::string const&, int, std::string const&, std::string const&) override { return {}; }
    SessionResult disconnect() override { return {}; }
    SessionResult list(std::string const&, std::vector<RemoteEntry>&) override { return {}; }
    SessionResult upload(TransferParams const&, TransferCallback) override { return {}; }
    SessionResult download(TransferParams const&, TransferCallback) override { return {}; }
    SessionResult rename(std::string const&, std::string const&) override { return {}; }
    SessionResult remove(std::string const&) override { return {}; }
    SessionResult mkdir(std::string const&) override { return {}; }
    SessionResult chmod(std::string const&, int) override { return {}; }
    bool isConnected() const override { return true; }
};

IRemoteSession* makeMarkedSession()
{
    return new MarkedSession;
}

// 1: a marked session, 0: a real one, -1: none.
int kindCreated(char const* name)
{
    std::unique_ptr<IRemoteSession> const session(ProtocolFactory::create(name));
    return session ? (session->isConnected() ? 1 : 0) : -1;
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
        EXPECT_EQ(kindCreated(name), -1) << '"' << name << '"';
    }
}

// The registry is global and fills itself with the defaults at the first create: each order of
// calls gets a process of its own.
TEST(ProtocolFactory, TheDefaultsReplaceABuiltInNameRegisteredBeforeTheFirstCreateOnly)
{
    EXPECT_IN_FRESH_PROCESS({
        ProtocolFactory::registerProtocol("ftp", makeMarkedSession);
        ProtocolFactory::registerProtocol("webdav", makeMarkedSession);
        CHILD_CHECK(kindCreated("ftp") == 0);
        CHILD_CHECK(kindCreated("webdav") == 1);
    });
    EXPECT_IN_FRESH_PROCESS({
        delete ProtocolFactory::create("sftp");
        ProtocolFactory::registerProtocol("ftp", makeMarkedSession);
        CHILD_CHECK(kindCreated("ftp") == 1);
        CHILD_CHECK(kindCreated("sftp") == 0);
    });
    EXPECT_IN_FRESH_PROCESS({
        ensureDefaultProtocolAdapters();
        ProtocolFactory::registerProtocol("ftps", makeMarkedSession);
        ensureDefaultProtocolAdapters();
        CHILD_CHECK(kindCreated("ftps") == 1);
    });
}

} // namespace
} // namespace perchftp::protocol
