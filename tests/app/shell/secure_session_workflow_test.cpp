// Connecting and browsing over FTPS (implicit TLS) and SFTP, through the real controller against
// real servers. Both need root: FTPS to trust its test authority in a private mount namespace of
// this test process, SFTP to create a throwaway system user for OpenSSH.
#include "session_shell_test.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/servers/sshd_test_server.hpp"
#include "support/servers/test_certificates.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPushButton>

#include <filesystem>
#include <fstream>

namespace perchftp::test {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class FtpsSessionWorkflow : public SessionShellTest {
protected:
    void SetUp() override
    {
        std::string const reason = trustInPrivateMountNamespace(certificates_.authorityCertificate());
        if (!reason.empty()) {
            GTEST_SKIP() << "FTPS shell test skipped: it " << reason;
        }
        FtpTestServerOptions options;
        options.implicitTls = true;
        options.certificateFile = certificates_.serverCertificate();
        options.keyFile = certificates_.serverKey();
        server_ = std::make_unique<FtpTestServer>(options);
        std::filesystem::create_directories(server_->local("/secure"));
        std::ofstream(server_->local("/ledger.csv")) << "a,b\n";
        SessionShellTest::SetUp();
    }

    TestCertificates certificates_;
    std::unique_ptr<FtpTestServer> server_;
};

TEST_F(FtpsSessionWorkflow, ConnectingOverImplicitTlsShowsEachStepAndListsTheRoot)
{
    QString const port = QString::number(server_->port());
    fillForm(QStringLiteral("ftps"), QStringLiteral("127.0.0.1"), port, server_->user(), server_->password());
    controller().connectButton()->click();

    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages(), connectingSteps(QStringLiteral("ftps"), server_->port()));
    EXPECT_THAT(seen().bannerTexts(), ElementsAre("✅ Connected (ftps)", "✅ Remote listing refreshed."));
    EXPECT_THAT(remotePaths(), UnorderedElementsAre("/ledger.csv", "/secure"));

    controller().didRequestOpenPath(controller().remotePane(), QStringLiteral("/secure"), true);
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
    ASSERT_EQ(controller().remotePane()->entries().size(), 1);
    EXPECT_TRUE(controller().remotePane()->entries().front().placeholder) << "an empty folder says so";

    controller().connectButton()->click();
    EXPECT_EQ(banner(), "✅ Disconnected.");
}

class SftpSessionWorkflow : public SessionShellTest {
protected:
    void SetUp() override
    {
        std::string const reason = SshdTestServer::whyUnavailable();
        if (!reason.empty()) {
            GTEST_SKIP() << "SFTP shell test skipped: it " << reason;
        }
        server_ = std::make_unique<SshdTestServer>();
        std::filesystem::create_directories(server_->home() / "photos");
        std::ofstream(server_->home() / "todo.txt") << "milk";
        SessionShellTest::SetUp();
    }

    std::unique_ptr<SshdTestServer> server_;
};

TEST_F(SftpSessionWorkflow, ConnectingShowsEachStepAndTheHomeFolderCanBeBrowsed)
{
    controller().protocolField()->setCurrentText(QStringLiteral("sftp"));
    emit controller().protocolField()->activated(controller().protocolField()->currentIndex());
    EXPECT_EQ(controller().portField()->text(), "22");
    seen().forget();
    QString const port = QString::number(server_->port());
    fillForm(QStringLiteral("sftp"), QStringLiteral("127.0.0.1"), port, server_->user(), server_->password());
    controller().connectButton()->click();

    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages(), connectingSteps(QStringLiteral("sftp"), server_->port()));
    EXPECT_THAT(seen().bannerTexts(), ElementsAre("✅ Connected (sftp)", "✅ Remote listing refreshed."));
    EXPECT_FALSE(controller().remotePane()->entries().isEmpty());

    // An SFTP folder is listed when its path ends in a slash, as a user types it.
    QString const home = QString::fromStdString(server_->home().string());
    controller().didRequestOpenPath(controller().remotePane(), home + "/", true);
    EXPECT_THAT(remotePaths(), testing::IsSupersetOf({home + "/photos", home + "/todo.txt"}));

    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_TRUE(remotePaneShowsPlaceholder(QStringLiteral("Not connected.")));
}

TEST_F(SftpSessionWorkflow, AWrongPasswordIsRefusedBySsh)
{
    fillForm(QStringLiteral("sftp"), QStringLiteral("127.0.0.1"), QString::number(server_->port()), server_->user(),
        "not-the-password");
    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ Connect failed: sftp connect: Login denied");
    EXPECT_THAT(seen().popupMessages(),
        ElementsAre("Resolving 127.0.0.1:" + QString::number(server_->port()) + " via sftp...",
            "Preparing protocol adapter...", "Opening session for 127.0.0.1...",
            "Connect failed: sftp connect: Login denied"));
}

} // namespace
} // namespace perchftp::test
