// Connecting, browsing and disconnecting through the real controller against a real FTP server.
#include "session_shell_test.hpp"
#include "support/servers/ftp_test_server.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPushButton>

#include <filesystem>
#include <fstream>

namespace perchftp::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class FtpSessionWorkflow : public SessionShellTest {
protected:
    void SetUp() override
    {
        SessionShellTest::SetUp();
        std::filesystem::create_directories(server_.local("/docs/archive"));
        std::ofstream(server_.local("/readme.txt")) << "hello";
        std::ofstream(server_.local("/docs/notes.txt")) << "twelve bytes";
    }

    QString port() const { return QString::number(server_.port()); }

    void fillFormForServer()
    {
        fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), port(), server_.user(), server_.password());
    }

    void connectToServer()
    {
        fillFormForServer();
        controller().connectButton()->click();
        ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
        seen().forget();
        server_.clearReceivedCommands();
    }

    std::vector<std::string> listings() const { return server_.receivedCommands({"LIST"}); }

    FtpTestServer server_;
};

TEST_F(FtpSessionWorkflow, ConnectingShowsEachStepAndListsTheLoginFolderUnderTheEmptyPath)
{
    fillFormForServer();
    controller().connectButton()->click();

    EXPECT_EQ(seen().popupMessages(), connectingSteps(QStringLiteral("ftp"), server_.port()));
    EXPECT_THAT(seen().bannerTexts(), ElementsAre("✅ Connected (ftp)", "✅ Remote listing refreshed."));
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Connecting");
    EXPECT_EQ(controller().remotePane()->pathValue(), "/") << "the listing of the empty path shows itself as the root";
    EXPECT_THAT(remoteNames(), testing::UnorderedElementsAre("docs", "readme.txt"));
    EXPECT_THAT(remotePaths(), testing::UnorderedElementsAre("/docs", "/readme.txt"));
    EXPECT_THAT(listings(), ElementsAre("LIST")) << "a listing that works needs no ladder";
    EXPECT_TRUE(controller().queueLog()->toPlainText().contains("Connected to 127.0.0.1"));

    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");
    EXPECT_EQ(controller().connectionStatusText()->text(), "Connected");
    EXPECT_TRUE(controller().refreshButton()->isEnabled());
    EXPECT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));
}

TEST_F(FtpSessionWorkflow, RowsCarryTheServersSizesPermissionsAndDates)
{
    connectToServer();
    controller().didRequestOpenPath(controller().remotePane(), QStringLiteral("/docs"), true);

    app::PaneEntries const& rows = controller().remotePane()->entries();
    ASSERT_EQ(rows.size(), 2);
    auto const notes = std::find_if(rows.begin(), rows.end(), [](auto const& row) { return row.name == "notes.txt"; });
    ASSERT_NE(notes, rows.end());
    EXPECT_EQ(notes->path, "/docs/notes.txt");
    EXPECT_FALSE(notes->dir);
    EXPECT_FALSE(notes->placeholder);
    EXPECT_EQ(notes->size, "12");
    EXPECT_EQ(notes->sizeValue, 12u);
    EXPECT_THAT(notes->permissions.toStdString(), StartsWith("-rw"));
    EXPECT_FALSE(notes->modifiedAt.isEmpty());
    auto const archive = std::find_if(rows.begin(), rows.end(), [](auto const& row) { return row.name == "archive"; });
    ASSERT_NE(archive, rows.end());
    EXPECT_TRUE(archive->dir);
    EXPECT_EQ(archive->size, "");
}

TEST_F(FtpSessionWorkflow, ADoubleClickedFolderIsListedAndRefreshListsItAgain)
{
    connectToServer();
    int const docs = static_cast<int>(remoteNames().indexOf(QStringLiteral("docs")));
    ASSERT_GE(docs, 0);
    controller().remotePane()->tableViewDoubleClicked(docs);
    EXPECT_EQ(controller().remotePane()->pathValue(), "/docs");
    EXPECT_THAT(remoteNames(), testing::UnorderedElementsAre("archive", "notes.txt"));
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");

    std::ofstream(server_.local("/docs/new.txt")) << "new";
    seen().forget();
    controller().refreshButton()->click();
    EXPECT_THAT(remoteNames(), testing::UnorderedElementsAre("archive", "new.txt", "notes.txt"));
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Refreshing");
    EXPECT_EQ(popupMessage(), "Refresh complete.");
    EXPECT_EQ(seen().popupMessages().back(), "Refresh complete.");
}

TEST_F(FtpSessionWorkflow, DisconnectingEndsTheSessionAndASecondDisconnectSaysItIsAlreadyDone)
{
    connectToServer();
    controller().hostField()->setText(QStringLiteral("typed.later.example"));
    controller().connectButton()->click();

    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_THAT(seen().popupMessages(), ElementsAre("Disconnecting from typed.later.example...", "Disconnected successfully."))
        << "the host is the field's at the time of the click";
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Disconnecting");
    EXPECT_EQ(banner(), "✅ Disconnected.");
    EXPECT_TRUE(remotePaneShowsPlaceholder(QStringLiteral("Not connected.")));
    EXPECT_EQ(controller().connectButton()->text(), "Connect");
    EXPECT_FALSE(controller().refreshButton()->isEnabled());
    EXPECT_TRUE(server_.receivedCommands().empty()) << "a disconnect does not talk to the server";

    seen().forget();
    useMenuItem(QStringLiteral("Connection"), QStringLiteral("Disconnect"));
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
    EXPECT_THAT(seen().popupMessages(), ElementsAre("Session already disconnected."));
}

TEST_F(FtpSessionWorkflow, ConnectingAgainReplacesTheSessionWithoutAsking)
{
    connectToServer();
    useMenuItem(QStringLiteral("Connection"), QStringLiteral("Connect"));

    EXPECT_TRUE(controller().isConnected());
    EXPECT_THAT(seen().popupMessages(),
        ElementsAre("Resolving 127.0.0.1:" + port() + " via ftp...", "Closing previous session...",
            "Preparing protocol adapter...", "Opening session for 127.0.0.1...",
            "Session opened. Loading remote directory...", "Connected to 127.0.0.1."));
    EXPECT_TRUE(dialogs().questions().empty());
}

TEST_F(FtpSessionWorkflow, AWrongPasswordLeavesNoSessionAndTheControlsAsTheyWere)
{
    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), port(), server_.user(), "wrong");
    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ Connect failed: ftp connect: Login denied");
    EXPECT_EQ(seen().popupMessages().back(), "Connect failed: ftp connect: Login denied");
    EXPECT_EQ(controller().connectButton()->text(), "Connect");

    // Over an open session the failure takes the session, but the controls are not refreshed.
    connectToServer();
    controller().secretField()->setText(QStringLiteral("wrong"));
    useMenuItem(QStringLiteral("Connection"), QStringLiteral("Connect"));
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");
    controller().connectButton()->click();
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
}

TEST_F(FtpSessionWorkflow, AClosedPortIsReportedInLibcurlsWords)
{
    int const closed = freeLoopbackPort();
    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), QString::number(closed), "perch", "x");
    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ Connect failed: ftp connect: Couldn't connect to server");
    EXPECT_THAT(seen().popupMessages(),
        ElementsAre("Resolving 127.0.0.1:" + QString::number(closed) + " via ftp...", "Preparing protocol adapter...",
            "Opening session for 127.0.0.1...", "Connect failed: ftp connect: Couldn't connect to server"));
}

TEST_F(FtpSessionWorkflow, APortIsItsLeadingDigitsAndOtherwiseRequiredBeforeAnyPopup)
{
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

    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), QStringLiteral(" +") + port() + QStringLiteral("th"),
        server_.user(), server_.password());
    controller().connectButton()->click();
    EXPECT_TRUE(controller().isConnected()) << banner().toStdString();
}

TEST_F(FtpSessionWorkflow, APortAboveTheRangeAndABlankHostGoToTheServerAndFailThere)
{
    fillForm(QStringLiteral("ftp"), QStringLiteral("127.0.0.1"), QStringLiteral("70000"), server_.user(), "x");
    controller().connectButton()->click();
    EXPECT_EQ(seen().popupMessages().front(), "Resolving 127.0.0.1:70000 via ftp...") << "no upper bound is applied";
    EXPECT_EQ(banner(), "⚠️ Connect failed: ftp connect: URL using bad/illegal format or missing URL");
    EXPECT_EQ(controller().session(), nullptr);

    seen().forget();
    fillForm(QStringLiteral("ftp"), QStringLiteral("   "), port(), server_.user(), server_.password());
    controller().connectButton()->click();
    EXPECT_EQ(seen().popupMessages().front(), "Resolving    :" + port() + " via ftp...") << "the host is not trimmed";
    EXPECT_EQ(banner(), "⚠️ Connect failed: ftp connect: URL using bad/illegal format or missing URL");
    EXPECT_EQ(controller().session(), nullptr);
}

TEST_F(FtpSessionWorkflow, AProtocolNameIsTrimmedAndLoweredAndAnUnknownOneHasNoAdapter)
{
    QComboBox* protocol = controller().protocolField();
    protocol->addItems({QStringLiteral("  FTP "), QStringLiteral("gopher")});
    connectToServer();

    fillFormForServer();
    protocol->setCurrentText(QStringLiteral("  FTP "));
    controller().connectSession();
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
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

TEST_F(FtpSessionWorkflow, AFailedFirstListingKeepsTheSessionAndThePopupStillSaysConnected)
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
}

TEST_F(FtpSessionWorkflow, TheRootLadderKeepsTheEmptyPathAndRootsTheRows)
{
    connectToServer();
    server_.setReply("LIST", "550 Not now.", 1);
    controller().remotePane()->setPathValue(QString(QLatin1String("")));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(listings().size(), 2u);
    EXPECT_EQ(controller().remotePane()->pathValue(), "/");
    EXPECT_THAT(remotePaths(), testing::UnorderedElementsAre("/docs", "/readme.txt"));
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");

    server_.clearReceivedCommands();
    server_.setReply("LIST", "550 Not now, twice.", 2);
    controller().remotePane()->setPathValue(QStringLiteral("."));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(listings().size(), 3u);
    EXPECT_EQ(controller().remotePane()->pathValue(), "/") << "\".\" becomes the root once a retry works";
    EXPECT_THAT(remotePaths(), testing::UnorderedElementsAre("/docs", "/readme.txt"));

    server_.clearReceivedCommands();
    server_.setReply("LIST", "550 Not there.", 1);
    controller().remotePane()->setPathValue(QStringLiteral("/docs"));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(listings().size(), 1u) << "another path has no ladder";
    EXPECT_THAT(banner().toStdString(), StartsWith("⚠️ Remote list failed: ftp list: "));
    EXPECT_TRUE(controller().isConnected());
}

TEST_F(FtpSessionWorkflow, OpeningASavedConnectionWhileConnectedListsItsRemotePathThroughTheOpenSession)
{
    connectToServer();
    storage::SiteProfile saved = siteProfile("Elsewhere", "sftp", "elsewhere.example.org", 22);
    saved.remoteRoot = "/docs";
    ASSERT_NE(controller().siteManager().addSite(saved), 0);
    dialogs().expectSavedConnection({app::kFirstAlertButton, 0});
    controller().openSavedConnectionButton()->click();

    EXPECT_EQ(controller().hostField()->text(), "elsewhere.example.org") << "the form changes";
    EXPECT_TRUE(controller().isConnected()) << "the session stays what it was";
    EXPECT_EQ(controller().remotePane()->pathValue(), "/docs");
    EXPECT_THAT(remoteNames(), testing::UnorderedElementsAre("archive", "notes.txt"));
    EXPECT_EQ(banner(), "✅ Loaded saved connection \"Elsewhere\".");
}

} // namespace
} // namespace perchftp::test
