#pragma once

#include "session_test_support.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/servers/test_certificates.hpp"
#include "support/temp_dir.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace perchftp::test {

// One FTP session against a fresh scriptable server, as plain "ftp" or as "ftps" with implicit
// TLS and a certificate that libcurl trusts through the system bundle of this process only.
class FtpSession : public testing::TestWithParam<char const*> {
protected:
    void SetUp() override
    {
        if (tls()) {
            certificates_ = std::make_unique<TestCertificates>();
            std::string const reason = trustInPrivateMountNamespace(certificates_->authorityCertificate());
            if (!reason.empty()) {
                GTEST_SKIP() << "FTPS test skipped: it " << reason;
            }
            options_.implicitTls = true;
            options_.certificateFile = certificates_->serverCertificate();
            options_.keyFile = certificates_->serverKey();
        }
        server_ = std::make_unique<FtpTestServer>(options_);
        session_ = makeSession(GetParam());
        ASSERT_NE(session_, nullptr);
    }

    std::string protocolName() const { return GetParam(); }
    bool tls() const { return protocolName() == "ftps"; }
    std::string said(std::string const& words) const { return protocolName() + words; }

    protocol::SessionResult connect()
    {
        return session_->connect("127.0.0.1", server_->port(), server_->user(), server_->password());
    }

    // Connects and forgets the login's commands, so that a test sees only its own.
    void connectCleanly()
    {
        ASSERT_TRUE(connect().ok);
        server_->clearReceivedCommands();
    }

    // A new server of the same kind whose data connections carry at most this many bytes a second.
    void restartThrottled(std::uint64_t bytesPerSecond)
    {
        options_.throttleBytesPerSecond = bytesPerSecond;
        server_ = std::make_unique<FtpTestServer>(options_);
    }

    // Puts a file on the server, making its folders first.
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
