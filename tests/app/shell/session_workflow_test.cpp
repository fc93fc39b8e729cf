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
using testing::HasSubstr;
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
        std::filesystem::create_directories(home() / "docs");
        std::filesystem::create_directories(home() / "empty");
        std::ofstream(home() / "docs/notes.txt") << "twelve bytes";
        SessionShellTest::SetUp();
    }

    std::filesystem::path home() const { return ftp_ ? ftp_->root() : sshd_->home(); }
    int port() const { return ftp_ ? ftp_->port() : sshd_->port(); }
    void fillFormForServer(std::string const& password)
    {
        fillForm(QString::fromLatin1(GetParam()), QStringLiteral("127.0.0.1"), QString::number(port()),
            ftp_ ? ftp_->user() : sshd_->user(), password);
    }
    std::string password() const { return ftp_ ? ftp_->password() : sshd_->password(); }
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
    fillFormForServer(password());
    controller().connectButton()->click();
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages(), connectingSteps(protocol, port()));
    EXPECT_EQ(seen().bannerTexts(), (QStringList{"✅ Connected (" + protocol + ")", "✅ Remote listing refreshed."}));
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Connecting");
    EXPECT_TRUE(controller().queueLog()->toPlainText().contains("Connected to 127.0.0.1"));
    EXPECT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));

    controller().didRequestOpenPath(controller().remotePane(), remoteFolder("docs"), true);
    EXPECT_THAT(remoteNames(), ElementsAre("notes.txt"));
    controller().didRequestOpenPath(controller().remotePane(), remoteFolder("empty"), true);
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
    // Over SFTP an empty folder lists only its "." and ".." lines, which the listing's fallback
    // reading shows as they are; the FTP servers send nothing.
    if (ftp_) {
        ASSERT_EQ(controller().remotePane()->entries().size(), 1);
        EXPECT_TRUE(controller().remotePane()->entries().front().placeholder) << "an empty folder says so";
    }

    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "✅ Disconnected.");
    EXPECT_TRUE(remotePaneShowsPlaceholder(QStringLiteral("Not connected.")));

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
    void fillFormForServer()
    {
        fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), port(), server_.user(), server_.password());
    }
    std::vector<std::string> listings() const { return server_.receivedCommands({"LIST"}); }

    FtpTestServer server_;
};

TEST_F(FtpSessionWorkflow, BrowsingRefreshingReconnectingAndDisconnecting)
{
    fillFormForServer();
    controller().connectButton()->click();
    EXPECT_EQ(controller().remotePane()->pathValue(), "/") << "the listing of the empty path shows itself as the root";
    EXPECT_THAT(remotePaths(), UnorderedElementsAre("/docs", "/readme.txt"));
    EXPECT_THAT(listings(), ElementsAre("LIST")) << "a listing that works needs no ladder";

    // A double-clicked folder is listed, with the server's sizes, permissions and dates.
    controller().remotePane()->tableViewDoubleClicked(static_cast<int>(remoteNames().indexOf("docs")));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/docs");
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
    ASSERT_THAT(remoteNames(), UnorderedElementsAre("archive", "notes.txt"));
    auto const& notes = controller().remotePane()->entries()[remoteNames().indexOf("notes.txt")];
    EXPECT_EQ(notes.path, "/docs/notes.txt");
    EXPECT_FALSE(notes.dir || notes.placeholder);
    EXPECT_EQ(notes.size, "12");
    EXPECT_THAT(notes.permissions.toStdString(), StartsWith("-rw"));
    EXPECT_FALSE(notes.modifiedAt.isEmpty());
    EXPECT_TRUE(controller().remotePane()->entries()[remoteNames().indexOf("archive")].dir);

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
    EXPECT_TRUE(controller().isConnected()) << "the session stays what it was";
    EXPECT_EQ(controller().remotePane()->pathValue(), "/docs/archive");
    EXPECT_THAT(remoteNames(), ElementsAre("old.zip"));
    EXPECT_EQ(banner(), "✅ Loaded saved connection \"Elsewhere\".");

    // Connecting again replaces the session without asking.
    fillFormForServer();
    seen().forget();
    useMenuItem(QStringLiteral("Connection"), QStringLiteral("Connect"));
    EXPECT_TRUE(controller().isConnected());
    QStringList replacing = connectingSteps(QStringLiteral("ftp"), server_.port());
    replacing.insert(1, QStringLiteral("Closing previous session..."));
    EXPECT_EQ(seen().popupMessages(), replacing);
    EXPECT_EQ(dialogs().questions().size(), 1u) << "only the saved-connection picker asked";

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
    useMenuItem(QStringLiteral("Connection"), QStringLiteral("Disconnect"));
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
    EXPECT_THAT(seen().popupMessages(), ElementsAre("Session already disconnected."));
}

TEST_F(FtpSessionWorkflow, BadPortsAndHostsAndRefusedConnectsLeaveNoSession)
{
    // The port is the field's leading integer; without one, nothing starts.
    for (QString const bad : {"", "   ", "abc", "-21", "0", "+0x15"}) {
        fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), bad, server_.user(), server_.password());
        controller().connectButton()->click();
        EXPECT_EQ(banner(), "⚠️ Host and port are required to connect.") << bad.toStdString();
        EXPECT_EQ(controller().statusPopupWindow(), nullptr) << bad.toStdString();
    }
    fillForm(QStringLiteral("ftp"), QString(), port(), server_.user(), server_.password());
    controller().connectButton()->click();
    EXPECT_EQ(banner(), "⚠️ Host and port are required to connect.");
    EXPECT_TRUE(seen().popupMessages().isEmpty());

    // No upper bound on the port and no trimming of the host: the server side fails them.
    QString const badUrl = QStringLiteral("⚠️ Connect failed: ftp connect: URL using bad/illegal format or missing URL");
    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), QStringLiteral("70000"), server_.user(), "x");
    controller().connectButton()->click();
    EXPECT_EQ(seen().popupMessages().front(), "Resolving 127.0.0.1:70000 via ftp...");
    EXPECT_EQ(banner(), badUrl);
    EXPECT_EQ(controller().session(), nullptr);
    seen().forget();
    fillForm(QStringLiteral("ftp"), QStringLiteral("   "), port(), server_.user(), server_.password());
    controller().connectButton()->click();
    EXPECT_EQ(seen().popupMessages().front(), "Resolving    :" + port() + " via ftp...");
    EXPECT_EQ(banner(), badUrl);
    EXPECT_EQ(controller().session(), nullptr);

    seen().forget();
    int const closed = freeLoopbackPort();
    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), QString::number(closed), "perch", "x");
    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ Connect failed: ftp connect: Couldn't connect to server");
    EXPECT_EQ(seen().popupMessages(),
        connectingSteps(QStringLiteral("ftp"), closed, QStringLiteral("Connect failed: ftp connect: Couldn't connect to server")));

    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), QStringLiteral(" +") + port() + QStringLiteral("th"),
        server_.user(), server_.password());
    controller().connectButton()->click();
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();

    // Over an open session a failure takes the session, but the controls are not refreshed.
    controller().secretField()->setText(QStringLiteral("wrong"));
    useMenuItem(QStringLiteral("Connection"), QStringLiteral("Connect"));
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");
    controller().connectButton()->click();
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
}

TEST_F(FtpSessionWorkflow, AProtocolNameIsTrimmedAndLoweredAndAnUnknownOneHasNoAdapter)
{
    QComboBox* protocol = controller().protocolField();
    protocol->addItems({QStringLiteral("  FTP "), QStringLiteral("gopher")});
    fillFormForServer();
    protocol->setCurrentText(QStringLiteral("  FTP "));
    controller().connectSession();
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages().front(), "Resolving 127.0.0.1:" + port() + " via ftp...");

    seen().forget();
    protocol->setCurrentText(QStringLiteral("gopher"));
    controller().connectSession();
    EXPECT_EQ(controller().session(), nullptr) << "the previous session is gone before the adapter is asked for";
    EXPECT_EQ(banner(), "⚠️ Protocol adapter not available in this build.");
    // "Preparing protocol adapter..." stands for no blocking step here and is replaced at once.
    EXPECT_THAT(seen().popupMessages(),
        ElementsAre("Resolving 127.0.0.1:" + port() + " via gopher...", "Closing previous session...",
            "Protocol adapter not available in this build."));
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect") << "the controls are not refreshed on this path";

    protocol->setCurrentIndex(-1);
    controller().connectSession();
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.") << "with nothing selected the protocol is ftp";
}

TEST_F(FtpSessionWorkflow, AFailedFirstListingKeepsTheSessionAndTheRootLadderRootsTheRows)
{
    server_.setReply("LIST", "550 Listing refused.");
    fillFormForServer();
    controller().connectButton()->click();
    EXPECT_TRUE(controller().isConnected());
    EXPECT_EQ(seen().popupMessages().back(), "Connected to 127.0.0.1.");
    EXPECT_THAT(banner().toStdString(), StartsWith("⚠️ Remote list failed: ftp list: "));
    ASSERT_EQ(controller().remotePane()->entries().size(), 1);
    EXPECT_THAT(controller().remotePane()->entries().front().name.toStdString(), StartsWith("List failed: ftp list: "));
    EXPECT_THAT(controller().queueLog()->toPlainText().toStdString(), HasSubstr("Remote list failed: ftp list: "));
    EXPECT_EQ(listings().size(), 3u) << "the empty path, then \"/\", then the empty path again";
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");

    // The empty path and "." climb the ladder and show as the root once a retry works.
    for (auto const& [path, refusals] : {std::pair{"", 1}, std::pair{".", 2}}) {
        SCOPED_TRACE(path);
        server_.clearReplies();
        server_.clearReceivedCommands();
        server_.setReply("LIST", "550 Not now.", refusals);
        controller().remotePane()->setPathValue(QString::fromLatin1(path));
        controller().refreshRemoteDirectory();
        EXPECT_EQ(listings().size(), static_cast<std::size_t>(refusals + 1));
        EXPECT_EQ(controller().remotePane()->pathValue(), "/");
        EXPECT_THAT(remotePaths(), UnorderedElementsAre("/docs", "/readme.txt"));
        EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
    }
}

} // namespace
} // namespace perchftp::test
