// Connecting, browsing and disconnecting through the real controller against real servers: FTP,
// FTPS (implicit TLS) and SFTP. FTPS and SFTP need root: FTPS to trust its test authority in a
// private mount namespace of this test process, SFTP to create a throwaway system user for OpenSSH.
#include "session_shell_test.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/servers/sshd_test_server.hpp"
#include "support/servers/test_certificates.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace perchftp::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using testing::UnorderedElementsAre;

// The same walk for each protocol: the form fills in the protocol's default port, a connect shows
// each step, a folder and an empty folder list, a disconnect, and a wrong password is refused.
class ConnectOverEachProtocol : public SessionShellTest, public testing::WithParamInterface<char const*> {
protected:
    void SetUp() override
    {
        std::string const protocol = GetParam();
        std::string const reason = protocol == "ftps" ? trustInPrivateMountNamespace(certificates_.authorityCertificate())
            : protocol == "sftp"                      ? SshdTestServer::whyUnavailable()
                                                      : std::string();
        if (!reason.empty()) {
            GTEST_SKIP() << protocol << " shell test skipped: it " << reason;
        }
        if (protocol == "sftp") {
            sshd_ = std::make_unique<SshdTestServer>();
        } else {
            FtpTestServerOptions options;
            options.implicitTls = protocol == "ftps";
            if (options.implicitTls) {
                options.certificateFile = certificates_.serverCertificate();
                options.keyFile = certificates_.serverKey();
            }
            ftp_ = std::make_unique<FtpTestServer>(options);
        }
        std::filesystem::path const home = ftp_ ? ftp_->root() : sshd_->home();
        std::filesystem::create_directories(home / "docs");
        std::filesystem::create_directories(home / "empty");
        std::ofstream(home / "docs/notes.txt") << "twelve bytes";
        SessionShellTest::SetUp();
    }

    int port() const { return ftp_ ? ftp_->port() : sshd_->port(); }
    void fillFormForServer(std::string const& password)
    {
        fillForm(QString::fromLatin1(GetParam()), QStringLiteral("127.0.0.1"), QString::number(port()),
            ftp_ ? ftp_->user() : sshd_->user(), password);
    }
    // A remote folder by its name in the login folder; SFTP folders are listed with a trailing "/".
    QString remoteFolder(char const* name) const
    {
        return ftp_ ? QStringLiteral("/%1").arg(QLatin1String(name))
                    : QStringLiteral("%1/%2/").arg(QString::fromStdString(sshd_->home().string()), QLatin1String(name));
    }

    TestCertificates certificates_;
    std::unique_ptr<FtpTestServer> ftp_;
    std::unique_ptr<SshdTestServer> sshd_;
};

TEST_P(ConnectOverEachProtocol, ShowsEachStepBrowsesDisconnectsAndRefusesAWrongPassword)
{
    QString const protocol = QString::fromLatin1(GetParam());
    QString const defaultPort = protocol == "sftp" ? QStringLiteral("22") : QStringLiteral("21");
    controller().portField()->setText(QStringLiteral("2222"));
    controller().protocolField()->setCurrentText(protocol);
    emit controller().protocolField()->activated(controller().protocolField()->currentIndex());
    EXPECT_EQ(controller().portField()->text(), defaultPort) << "the default replaces a typed port";
    EXPECT_EQ(banner(), QStringLiteral("✅ Protocol set to %1, default port %2.").arg(protocol, defaultPort));

    seen().forget();
    fillFormForServer(ftp_ ? ftp_->password() : sshd_->password());
    controller().connectButton()->click();
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages(), connectingSteps(protocol, port()));
    EXPECT_EQ(seen().bannerTexts(), (QStringList{"✅ Connected (" + protocol + ")", "✅ Remote listing refreshed."}));
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Connecting");
    EXPECT_TRUE(controller().queueLog()->toPlainText().contains("Connected to 127.0.0.1"));

    controller().didRequestOpenPath(controller().remotePane(), remoteFolder("docs"), true);
    EXPECT_THAT(remoteNames(), ElementsAre("notes.txt"));
    controller().didRequestOpenPath(controller().remotePane(), remoteFolder("empty"), true);
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
    // Over SFTP an empty folder lists only its "." and ".." lines, which the listing's fallback
    // reading shows as they are; the FTP servers send nothing.
    if (ftp_) {
        EXPECT_EQ(remoteNames().size(), 1);
        EXPECT_THAT(remoteNames().value(0).toStdString(), StartsWith("(")) << "an empty folder says so";
    }

    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "✅ Disconnected.");
    EXPECT_EQ(remoteNames(), QStringList{"(Not connected.)"});

    seen().forget();
    fillFormForServer("not-the-password");
    controller().connectButton()->click();
    QString const denied = QStringLiteral("Connect failed: %1 connect: Login denied").arg(protocol);
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ " + denied);
    EXPECT_EQ(seen().popupMessages(), connectingSteps(protocol, port(), denied));
    EXPECT_EQ(controller().connectButton()->text(), "Connect");
}

INSTANTIATE_TEST_SUITE_P(Protocols, ConnectOverEachProtocol, testing::Values("ftp", "ftps", "sftp"),
    [](auto const& info) { return std::string(info.param); });

class FtpSessionWorkflow : public SessionShellTest {
protected:
    void SetUp() override
    {
        SessionShellTest::SetUp();
        std::filesystem::create_directories(server_.local("/docs/archive"));
        std::ofstream(server_.local("/readme.txt")) << "hello";
        std::ofstream(server_.local("/docs/notes.txt")) << "twelve bytes";
        std::ofstream(server_.local("/docs/archive/old.zip")) << "z";
    }

    QString port() const { return QString::number(server_.port()); }
    void fillFormForServer(QString const& portText = {})
    {
        fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), portText.isNull() ? port() : portText,
            server_.user(), server_.password());
    }
    std::size_t listings() const { return server_.receivedCommands({"LIST"}).size(); }

    FtpTestServer server_;
};

TEST_F(FtpSessionWorkflow, BrowsingRefreshingReconnectingAndDisconnecting)
{
    fillFormForServer();
    controller().connectButton()->click();
    EXPECT_EQ(controller().remotePane()->pathValue(), "/") << "the listing of the empty path shows itself as the root";
    EXPECT_THAT(remoteNames(), UnorderedElementsAre("docs", "readme.txt"));
    EXPECT_EQ(listings(), 1u) << "a listing that works needs no ladder";

    // A double-clicked folder is listed, with the server's sizes, permissions and dates.
    controller().remotePane()->tableViewDoubleClicked(static_cast<int>(remoteNames().indexOf("docs")));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/docs");
    ASSERT_THAT(remoteNames(), UnorderedElementsAre("archive", "notes.txt"));
    auto const& notes = controller().remotePane()->entries()[remoteNames().indexOf("notes.txt")];
    EXPECT_EQ(notes.path, "/docs/notes.txt");
    EXPECT_EQ(notes.size, "12");
    EXPECT_THAT(notes.permissions.toStdString(), StartsWith("-rw"));
    EXPECT_FALSE(notes.modifiedAt.isEmpty());

    std::ofstream(server_.local("/docs/new.txt")) << "new";
    seen().forget();
    controller().refreshButton()->click();
    EXPECT_THAT(remoteNames(), UnorderedElementsAre("archive", "new.txt", "notes.txt"));
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Refreshing");
    EXPECT_EQ(seen().popupMessages().back(), "Refresh complete.");

    // Opening a saved connection changes the form and lists its path through the open session.
    storage::SiteProfile saved = siteProfile("Elsewhere", "sftp", "elsewhere.example.org", 22);
    saved.remoteRoot = "/docs/archive";
    ASSERT_NE(controller().siteManager().addSite(saved), 0);
    dialogs().expectSavedConnection({app::kFirstAlertButton, 0});
    controller().openSavedConnectionButton()->click();
    EXPECT_EQ(controller().hostField()->text(), "elsewhere.example.org");
    EXPECT_THAT(remoteNames(), ElementsAre("old.zip")) << "the session stays what it was";
    EXPECT_EQ(banner(), "✅ Loaded saved connection \"Elsewhere\".");

    // Connecting again replaces the session without asking.
    fillFormForServer();
    seen().forget();
    controller().connectSession();
    EXPECT_TRUE(controller().isConnected());
    QStringList replacing = connectingSteps(QStringLiteral("ftp"), server_.port());
    replacing.insert(1, QStringLiteral("Closing previous session..."));
    EXPECT_EQ(seen().popupMessages(), replacing);

    server_.clearReceivedCommands();
    seen().forget();
    controller().hostField()->setText(QStringLiteral("typed.later.example"));
    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_THAT(seen().popupMessages(), ElementsAre("Disconnecting from typed.later.example...", "Disconnected successfully."))
        << "the host is the field's at the time of the click";
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Disconnecting");
    EXPECT_TRUE(server_.receivedCommands().empty()) << "a disconnect does not talk to the server";

    seen().forget();
    controller().disconnectSession();
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
    EXPECT_THAT(seen().popupMessages(), ElementsAre("Session already disconnected."));
}

TEST_F(FtpSessionWorkflow, BadFormValuesAndRefusedConnectsLeaveNoSession)
{
    // Without a positive leading integer in the port field, or without a host, nothing starts.
    for (auto const& [host, portText] : {std::pair{"127.0.0.1", ""}, {"127.0.0.1", "-21"}, {"", "21"}}) {
        fillForm(QStringLiteral("ftp"), QString::fromLatin1(host), QString::fromLatin1(portText));
        controller().connectButton()->click();
        EXPECT_EQ(banner(), "⚠️ Host and port are required to connect.") << host << ":" << portText;
    }
    EXPECT_TRUE(seen().popupMessages().isEmpty());

    // No upper bound on the port and no trimming of the host: libcurl refuses them.
    for (auto const& [host, portText] : {std::pair{"127.0.0.1", QStringLiteral("70000")}, {"   ", port()}}) {
        seen().forget();
        fillForm(QStringLiteral("ftp"), QString::fromLatin1(host), portText, server_.user(), "x");
        controller().connectButton()->click();
        EXPECT_EQ(seen().popupMessages().value(0), QStringLiteral("Resolving %1:%2 via ftp...").arg(host, portText));
        EXPECT_EQ(banner(), "⚠️ Connect failed: ftp connect: URL using bad/illegal format or missing URL");
        EXPECT_EQ(controller().session(), nullptr);
    }

    seen().forget();
    int const closed = freeLoopbackPort();
    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), QString::number(closed), "perch", "x");
    controller().connectButton()->click();
    QString const refused = QStringLiteral("Connect failed: ftp connect: Couldn't connect to server");
    EXPECT_EQ(banner(), "⚠️ " + refused);
    EXPECT_EQ(seen().popupMessages(), connectingSteps(QStringLiteral("ftp"), closed, refused));

    // A protocol name is trimmed and lowered; a port is read up to its first non-digit.
    QComboBox* protocol = controller().protocolField();
    protocol->addItems({QStringLiteral("  FTP "), QStringLiteral("gopher")});
    fillFormForServer(QStringLiteral(" +") + port() + QStringLiteral("th"));
    protocol->setCurrentText(QStringLiteral("  FTP "));
    seen().forget();
    controller().connectSession();
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages().value(0), "Resolving 127.0.0.1:" + port() + " via ftp...");

    // An unknown protocol: the previous session is gone before the adapter is asked for, and the
    // controls are not refreshed on this path.
    seen().forget();
    protocol->setCurrentText(QStringLiteral("gopher"));
    controller().connectSession();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ Protocol adapter not available in this build.");
    EXPECT_THAT(seen().popupMessages(),
        ElementsAre("Resolving 127.0.0.1:" + port() + " via gopher...", "Closing previous session...",
            "Preparing protocol adapter...", "Protocol adapter not available in this build."));
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");
    protocol->setCurrentIndex(-1);
    controller().connectSession();
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.") << "with nothing selected the protocol is ftp";

    // Over an open session a failure takes the session, but the controls are not refreshed.
    controller().secretField()->setText(QStringLiteral("wrong"));
    controller().connectSession();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");
    controller().connectButton()->click();
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
}

TEST_F(FtpSessionWorkflow, AFailedFirstListingKeepsTheSessionAndOnlyTheRootClimbsTheLadder)
{
    server_.setReply("LIST", "550 Listing refused.");
    fillFormForServer();
    controller().connectButton()->click();
    EXPECT_TRUE(controller().isConnected());
    EXPECT_EQ(seen().popupMessages().back(), "Connected to 127.0.0.1.");
    EXPECT_THAT(banner().toStdString(), StartsWith("⚠️ Remote list failed: ftp list: "));
    EXPECT_THAT(remoteNames().value(0).toStdString(), StartsWith("(List failed: ftp list: "));
    EXPECT_TRUE(controller().queueLog()->toPlainText().contains("Remote list failed: ftp list: "));
    EXPECT_EQ(listings(), 3u) << "the empty path, then \"/\", then the empty path again";

    // The empty path and "." climb the ladder and show as the root once a retry works.
    for (auto const& [path, refusals] : {std::pair{"", 1}, std::pair{".", 2}}) {
        SCOPED_TRACE(path);
        server_.clearReplies();
        server_.clearReceivedCommands();
        server_.setReply("LIST", "550 Not now.", refusals);
        controller().remotePane()->setPathValue(QString::fromLatin1(path));
        controller().refreshRemoteDirectory();
        EXPECT_EQ(listings(), static_cast<std::size_t>(refusals + 1));
        EXPECT_EQ(controller().remotePane()->pathValue(), "/");
        EXPECT_THAT(remoteNames(), UnorderedElementsAre("docs", "readme.txt"));
    }

    // Another path is not tried again.
    server_.clearReceivedCommands();
    server_.setReply("LIST", "550 No.");
    controller().remotePane()->setPathValue(QStringLiteral("/docs"));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(listings(), 1u);
    EXPECT_THAT(banner().toStdString(), StartsWith("⚠️ Remote list failed: ftp list: "));
}

} // namespace
} // namespace perchftp::test
