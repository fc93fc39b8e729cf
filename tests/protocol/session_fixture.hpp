#pragma once

#include "protocol/protocol_factory.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/servers/test_certificates.hpp"
#include "support/temp_dir.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace perchftp::test {

using protocol::TransferEventType;

struct RecordedEvent {
    TransferEventType type;
    std::string path;
    std::uint64_t transferred = 0;
    std::uint64_t total = 0;
};

// Collects a transfer's events through the callback it hands out.
struct EventRecorder {
    std::vector<RecordedEvent> events;

    protocol::TransferCallback callback()
    {
        return [this](TransferEventType type, protocol::TransferProgress const& progress) {
            events.push_back({type, progress.path, progress.transferred, progress.total});
        };
    }
    // The event types in order, with runs of Progress folded into one.
    std::vector<TransferEventType> shape() const
    {
        std::vector<TransferEventType> types;
        for (auto const& event : events) {
            if (types.empty() || event.type != TransferEventType::Progress || types.back() != event.type) {
                types.push_back(event.type);
            }
        }
        return types;
    }
    std::vector<RecordedEvent> progress() const
    {
        std::vector<RecordedEvent> reports;
        std::copy_if(events.begin(), events.end(), std::back_inserter(reports),
                     [](auto const& event) { return event.type == TransferEventType::Progress; });
        return reports;
    }
};

inline std::unique_ptr<protocol::IRemoteSession> makeSession(char const* protocolName)
{
    return std::unique_ptr<protocol::IRemoteSession>(protocol::ProtocolFactory::create(protocolName));
}

// Bytes that differ from position to position with a period of 251, so that a shifted or
// truncated copy shows.
inline std::string patternedBytes(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i % 251);
    }
    return bytes;
}

// Server options for implicit TLS with the given certificates.
inline FtpTestServerOptions implicitTls(TestCertificates const& certificates)
{
    FtpTestServerOptions options;
    options.implicitTls = true;
    options.certificateFile = certificates.serverCertificate();
    options.keyFile = certificates.serverKey();
    return options;
}

// One FTP session against a fresh scriptable server, as plain "ftp" or as "ftps" with implicit
// TLS and a certificate that libcurl trusts through the system bundle of this process only.
class FtpSession : public testing::TestWithParam<char const*> {
protected:
    void SetUp() override
    {
        if (protocolName() == "ftps") {
            certificates_ = std::make_unique<TestCertificates>();
            std::string const reason = trustInPrivateMountNamespace(certificates_->authorityCertificate());
            if (!reason.empty()) {
                GTEST_SKIP() << "FTPS test skipped: it " << reason;
            }
            options_ = implicitTls(*certificates_);
        }
        server_ = std::make_unique<FtpTestServer>(options_);
        session_ = makeSession(GetParam());
        ASSERT_NE(session_, nullptr);
    }

    std::string protocolName() const { return GetParam(); }
    std::string said(std::string const& words) const { return protocolName() + words; }

    protocol::SessionResult connect(std::string const& password)
    {
        return session_->connect("127.0.0.1", server_->port(), server_->user(), password);
    }

    // Connects and forgets the login's commands, so that a test sees only its own.
    void connectCleanly()
    {
        ASSERT_TRUE(connect(server_->password()).ok);
        server_->clearReceivedCommands();
    }

    void putRemoteFile(std::string const& remotePath, std::string const& bytes)
    {
        std::filesystem::create_directories(server_->local(remotePath).parent_path());
        writeFile(server_->local(remotePath), bytes);
    }

    protocol::IRemoteSession& session() { return *session_; }
    FtpTestServer& server() { return *server_; }

    TempDir local_;
    FtpTestServerOptions options_;
    std::unique_ptr<TestCertificates> certificates_;
    std::unique_ptr<FtpTestServer> server_;
    std::unique_ptr<protocol::IRemoteSession> session_;
};

} // namespace perchftp::test
