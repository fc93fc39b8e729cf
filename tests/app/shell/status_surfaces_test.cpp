#include "app/pane/perch_file_pane_controller.hpp"
#include "app/status/connect_button.hpp"
#include "app/status/connection_light.hpp"
#include "app/status/status_banner.hpp"
#include "app/status/status_popup.hpp"
#include "app/status/system_colours.hpp"
#include "support/scripted_session.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

#include <QAbstractAnimation>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

namespace perchftp::test {
namespace {

class StatusSurfaces : public StartedShellTest {
protected:
    void SetUp() override
    {
        startShell();
        // Let the start-up's own popup go, so that each test sees only its own.
        ASSERT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));
    }

    ScriptedSession* installSession(bool connected)
    {
        auto* session = new ScriptedSession;
        session->connected = connected;
        controller().setSession(session);
        return session;
    }
};

TEST_F(StatusSurfaces, TheBannerShowsItsPrefixAndChoosesThePaletteByTheFlag)
{
    controller().setStatusText(QStringLiteral("Transfer completed."), false);
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("✅ Transfer completed."));
    EXPECT_FALSE(controller().statusBanner()->showsError());

    controller().setStatusText(QStringLiteral("Remote list failed: ftp: nope"), true);
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("⚠️ Remote list failed: ftp: nope"));
    EXPECT_TRUE(controller().statusBanner()->showsError());

    controller().setStatusText(QString(), false);
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("✅ "));
}

TEST_F(StatusSurfaces, APopupOpensWithItsTextsARunningBarAndASwimmingIcon)
{
    controller().showConnectionPopupWithTitle(QStringLiteral("Connecting"), QStringLiteral("Resolving host:21 via ftp..."));
    ASSERT_NE(controller().statusPopupWindow(), nullptr);
    EXPECT_TRUE(controller().statusPopupWindow()->isVisible());
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Connecting");
    EXPECT_EQ(controller().statusPopupMessage()->text(), "Resolving host:21 via ftp...");
    EXPECT_EQ(controller().statusPopupProgress()->maximum(), 0) << "indeterminate while the step runs";
    ASSERT_NE(controller().statusPopupIcon()->swim(), nullptr);
    EXPECT_EQ(controller().statusPopupIcon()->swim()->state(), QAbstractAnimation::Running);
    EXPECT_EQ(controller().statusPopupIcon()->swim()->objectName(), "swim");

    controller().updateConnectionPopupTitle(QString());
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Working...");
    controller().updateConnectionPopupMessage(QString());
    EXPECT_EQ(controller().statusPopupMessage()->text(), "");
}

TEST_F(StatusSurfaces, OpeningAPopupReplacesTheOneThatIsOpen)
{
    controller().showConnectionPopupWithTitle(QStringLiteral("First"), QStringLiteral("one"));
    QPointer<QWidget> first = controller().statusPopupWindow();
    controller().showConnectionPopupWithTitle(QStringLiteral("Second"), QStringLiteral("two"));
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Second");
}

TEST_F(StatusSurfaces, UpdatesWithoutAPopupDoNothing)
{
    controller().updateConnectionPopupTitle(QStringLiteral("Nobody"));
    controller().updateConnectionPopupMessage(QStringLiteral("listens"));
    controller().closeConnectionPopupWithMessage(QStringLiteral("gone"), true);
    EXPECT_EQ(controller().statusPopupWindow(), nullptr);
}

TEST_F(StatusSurfaces, AClosingPopupFillsItsBarStopsSwimmingAndGoesSixHundredMillisecondsLater)
{
    for (bool success : {true, false}) {
        controller().showConnectionPopupWithTitle(QStringLiteral("Refreshing"), QStringLiteral("..."));
        QPointer<QWidget> popup = controller().statusPopupWindow();
        QElapsedTimer clock;
        clock.start();
        controller().closeConnectionPopupWithMessage(QStringLiteral("Refresh complete."), success);

        EXPECT_EQ(controller().statusPopupProgress()->maximum(), 100);
        EXPECT_EQ(controller().statusPopupProgress()->value(), 100);
        EXPECT_EQ(controller().statusPopupIcon()->swim(), nullptr);
        EXPECT_EQ(controller().statusPopupMessage()->text(), "Refresh complete.");

        QTest::qWait(450);
        EXPECT_FALSE(popup.isNull()) << "still open 450 ms after the close";
        ASSERT_TRUE(waitUntil([&] { return popup.isNull(); }, 2000));
        EXPECT_GE(clock.elapsed(), 600);
        EXPECT_EQ(controller().statusPopupWindow(), nullptr);
        EXPECT_EQ(controller().statusPopupMessage(), nullptr);
    }
}

TEST_F(StatusSurfaces, APopupOpenedWithinTheCloseDelayIsTakenAwayByTheOlderClose)
{
    controller().showConnectionPopupWithTitle(QStringLiteral("Refreshing"), QStringLiteral("..."));
    QElapsedTimer clock;
    clock.start();
    controller().closeConnectionPopupWithMessage(QStringLiteral("Refresh complete."), true);
    QTest::qWait(200);
    controller().showConnectionPopupWithTitle(QStringLiteral("Connecting"), QStringLiteral("..."));
    QPointer<QWidget> second = controller().statusPopupWindow();

    ASSERT_TRUE(waitUntil([&] { return second.isNull(); }, 2000));
    EXPECT_LT(clock.elapsed(), 900) << "gone with the first close, not 600 ms after the second popup opened";
}

TEST_F(StatusSurfaces, ControlsFollowTheSessionsOwnAnswerEveryTime)
{
    installSession(true);
    controller().refreshControlState();
    app::PerchConnectButton* button = controller().connectButton();
    EXPECT_EQ(button->text(), "Disconnect");
    EXPECT_EQ(button->primaryColor(), app::systemRedColor());
    EXPECT_EQ(button->pulseColor(), app::systemRedColor());
    EXPECT_TRUE(controller().refreshButton()->isEnabled());
    EXPECT_TRUE(controller().uploadButton()->isEnabled());
    EXPECT_TRUE(controller().downloadButton()->isEnabled());
    EXPECT_FALSE(controller().disconnectButton()->isEnabled());
    EXPECT_EQ(controller().connectionStatusText()->text(), "Connected");
    EXPECT_EQ(controller().connectionStatusLight()->color(), app::systemGreenColor());

    button->click();
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("✅ Disconnected."))
        << "connected, the one button disconnects";
    EXPECT_EQ(controller().session(), nullptr);

    // A session that says it is no longer connected: the button connects again.
    installSession(false);
    controller().refreshControlState();
    EXPECT_EQ(button->text(), "Connect");
    EXPECT_EQ(button->pulseColor(), app::systemGreenColor());
    EXPECT_FALSE(controller().refreshButton()->isEnabled());
    EXPECT_EQ(controller().connectionStatusText()->text(), "Disconnected");
    EXPECT_EQ(controller().connectionStatusLight()->color(), app::systemRedColor());
    controller().hostField()->clear();
    button->click();
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("⚠️ Host and port are required to connect."));
}

TEST_F(StatusSurfaces, TheConnectButtonPulsesInBothStatesAndARestartReplacesThePulse)
{
    app::PerchConnectButton* button = controller().connectButton();
    QPointer<QAbstractAnimation> first = button->pulse();
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(first->state(), QAbstractAnimation::Running);
    EXPECT_EQ(first->objectName(), app::PerchConnectButton::kPulseName);
    EXPECT_EQ(first->loopCount(), -1);
    EXPECT_EQ(first->duration(), 2 * 850) << "0.85 s there and 0.85 s back";

    controller().updateConnectButtonAnimationForConnected(true);
    EXPECT_TRUE(first.isNull());
    ASSERT_NE(button->pulse(), nullptr);
    QTest::qWait(100);
    EXPECT_GE(button->borderAlpha(), 0.35);
    EXPECT_LE(button->borderAlpha(), 0.95);
}

TEST_F(StatusSurfaces, RefreshingWithoutASessionSaysNotConnectedAndClosesThePopup)
{
    controller().refreshSession();
    EXPECT_EQ(controller().statusLabel()->text(),
        QStringLiteral("✅ Not connected to remote session. Connect first."));
    ASSERT_NE(controller().statusPopupMessage(), nullptr);
    EXPECT_EQ(controller().statusPopupMessage()->text(), "Refresh complete.");
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Refreshing");
    ASSERT_FALSE(controller().remotePane()->entries().isEmpty());
    EXPECT_EQ(controller().remotePane()->entries().front().name, "Not connected.");
    EXPECT_TRUE(controller().remotePane()->entries().front().placeholder);
}

TEST_F(StatusSurfaces, TheRemoteListingShowsTheServersRowsInItsOrder)
{
    ScriptedSession* session = installSession(true);
    session->listings["/srv"] = {{"b.txt", false, 2048, "-rw-r--r--", "Jan 1 10:00"}, {"a", true, 4096, "", ""},
        {std::string("bad\xff", 4), false, 1, "", ""}};
    controller().remotePane()->setPathValue(QStringLiteral("/srv"));
    controller().refreshRemoteDirectory();

    app::PaneEntries const& rows = controller().remotePane()->entries();
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].name, "b.txt");
    EXPECT_EQ(rows[0].path, "/srv/b.txt");
    EXPECT_EQ(rows[0].size, "2048");
    EXPECT_EQ(rows[0].permissions, "-rw-r--r--");
    EXPECT_EQ(rows[0].modifiedAt, "Jan 1 10:00");
    EXPECT_TRUE(rows[1].dir);
    EXPECT_EQ(rows[1].size, "");
    EXPECT_EQ(rows[1].sizeValue, 4096u);
    EXPECT_EQ(rows[2].name, "") << "a name that is not UTF-8";
    EXPECT_EQ(rows[2].path, "/srv");
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("✅ Remote listing refreshed."));
}

TEST_F(StatusSurfaces, ARefusedRootIsTriedAgainAndAnOtherPathIsNot)
{
    ScriptedSession* session = installSession(true);
    session->listings[""] = {{"inbox", true, 0, "", ""}};
    controller().remotePane()->setPathValue(QStringLiteral("/"));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(session->listedPaths, (std::vector<std::string>{"/", "/", ""}));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/");
    ASSERT_EQ(controller().remotePane()->entries().size(), 1);
    EXPECT_EQ(controller().remotePane()->entries().front().path, "/inbox");

    session->listedPaths.clear();
    controller().remotePane()->setPathValue(QStringLiteral("/missing"));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(session->listedPaths, (std::vector<std::string>{"/missing"}));
    EXPECT_EQ(controller().remotePane()->entries().front().name, "List failed: ftp: list failed for '/missing'");
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("⚠️ Remote list failed: ftp: list failed for '/missing'"));
    EXPECT_TRUE(controller().queueLog()->toPlainText().contains("Remote list failed: ftp: list failed for '/missing'"));
}

} // namespace
} // namespace perchftp::test
