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

bool createsMarkedSession(char const* name)
{
    std::unique_ptr<IRemoteSession> const session(ProtocolFactory::create(name));
    return session && session->isConnected();
}

TEST(ProtocolFactory, CreatesANewUnconnectedSessionForEachBuiltInProtocol)
{
    for (char const* name : {"ftp", "ftps", "sftp"}) {
        SCOPED_TRACE(name);
        std::unique_ptr<IRemoteSession> const first(ProtocolFactory::create(name));
        std::unique_ptr<IRemoteSession> const second(ProtocolFactory::create(name));
        ASSERT_NE(first, nullptr);
        ASSERT_NE(second, nullptr);
        EXPECT_NE(first.get(), second.get());
        EXPECT_FALSE(first->isConnected());
    }
}

TEST(ProtocolFactory, FindsNamesOnlyInTheirExactForm)
{
    for (char const* name : {"FTP", "", "other", " ftp", "ftp "}) {
        std::unique_ptr<IRemoteSession> const session(ProtocolFactory::create(name));
        EXPECT_EQ(session, nullptr) << '"' << name << '"';
    }
}

TEST(ProtocolFactory, ReplacesABuiltInNameRegisteredBeforeTheFirstCreate)
{
    EXPECT_IN_FRESH_PROCESS({
        ProtocolFactory::registerProtocol("ftp", makeMarkedSession);
        CHILD_CHECK(!createsMarkedSession("ftp"));
    });
}

TEST(ProtocolFactory, KeepsAMakerRegisteredAfterTheFirstCreate)
{
    EXPECT_IN_FRESH_PROCESS({
        delete ProtocolFactory::create("sftp");
        ProtocolFactory::registerProtocol("ftp", makeMarkedSession);
        CHILD_CHECK(createsMarkedSession("ftp"));
        CHILD_CHECK(!createsMarkedSession("sftp"));
    });
}

TEST(ProtocolFactory, KeepsANewNameRegisteredBeforeTheDefaults)
{
    EXPECT_IN_FRESH_PROCESS({
        ProtocolFactory::registerProtocol("webdav", makeMarkedSession);
        CHILD_CHECK(createsMarkedSession("webdav"));
        CHILD_CHECK(std::unique_ptr<IRemoteSession>(ProtocolFactory::create("ftp")) != nullptr);
    });
}

TEST(ProtocolFactory, RegistersTheDefaultsOnlyOnce)
{
    EXPECT_IN_FRESH_PROCESS({
        ensureDefaultProtocolAdapters();
        ProtocolFactory::registerProtocol("ftps", makeMarkedSession);
        ensureDefaultProtocolAdapters();
        CHILD_CHECK(createsMarkedSession("ftps"));
    });
}

} // namespace
} // namespace perchftp::protocol
