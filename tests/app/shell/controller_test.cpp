// The controller's status surfaces, queue view and pane requests, in the started shell with a
// session that lives in memory.
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/queue/queue_table_model.hpp"
#include "app/status/connect_button.hpp"
#include "app/status/connection_light.hpp"
#include "app/status/status_banner.hpp"
#include "app/status/status_popup.hpp"
#include "app/status/system_colours.hpp"
#include "support/scripted_session.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

#include <QAbstractAnimation>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QTableView>

namespace perchftp::test {
namespace {

class ShellController : public StartedShellTest {
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
    QString banner() { return controller().statusLabel()->text(); }
    app::PaneEntries const& remoteRows() { return controller().remotePane()->entries(); }

    transfer::TransferQueue& queue() { return controller().transferQueue().queue(); }
    std::uint64_t enqueue(std::string const& name)
    {
        return controller().transferQueue().enqueue(transfer::JobType::Upload, "ftp", "/tmp/" + name, "/srv/" + name, 1, 3);
    }
};

TEST_F(ShellController, TheBannerShowsItsPrefixAndChoosesThePaletteByTheFlag)
{
    struct Row {
        QString text;
        bool isError;
        QString shown;
    } const rows[] = {
        {"Transfer completed.", false, "✅ Transfer completed."},
        {"Remote list failed: ftp: nope", true, "⚠️ Remote list failed: ftp: nope"},
        {"", false, "✅ "},
    };
    for (Row const& row : rows) {
        controller().setStatusText(row.text, row.isError);
        EXPECT_EQ(banner(), row.shown);
        EXPECT_EQ(controller().statusBanner()->showsError(), row.isError) << row.shown.toStdString();
    }
}

TEST_F(ShellController, APopupOpensReplacesTheOpenOneAndGoesSixHundredMillisecondsAfterItsClose)
{
    QMainWindow* host = controller().hostWindow();
    ASSERT_TRUE(waitUntil([&] { return host->isVisible(); }));
    controller().showConnectionPopupWithTitle(QStringLiteral("Connecting"), QStringLiteral("Resolving host:21 via ftp..."));
    QPointer<QWidget> first = controller().statusPopupWindow();
    ASSERT_FALSE(first.isNull());
    EXPECT_TRUE(first->isVisible());
    // It floats inside the main window, above the content, and stays centred when the window
    // changes size: no window manager has to place it.
    EXPECT_EQ(first->window(), host);
    EXPECT_EQ(host->children().back(), first.data()) << "raised above the content";
    for (QSize size : {host->size(), host->size() + QSize(300, 120)}) {
        host->resize(size);
        EXPECT_LE((first->geometry().center() - host->rect().center()).manhattanLength(), 2) << size.width();
    }
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Connecting");
    EXPECT_EQ(controller().statusPopupMessage()->text(), "Resolving host:21 via ftp...");
    EXPECT_EQ(controller().statusPopupProgress()->maximum(), 0) << "indeterminate while the step runs";
    ASSERT_NE(controller().statusPopupIcon()->swim(), nullptr);
    EXPECT_EQ(controller().statusPopupIcon()->swim()->state(), QAbstractAnimation::Running);
    controller().updateConnectionPopupTitle(QString());
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Working...");
    controller().updateConnectionPopupMessage(QString());
    EXPECT_EQ(controller().statusPopupMessage()->text(), "");

    for (bool success : {true, false}) {
        controller().showConnectionPopupWithTitle(QStringLiteral("Refreshing"), QStringLiteral("..."));
        EXPECT_TRUE(first.isNull()) << "a new popup replaces the open one";
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

    // A popup opened within the close delay is taken away by the older close.
    controller().showConnectionPopupWithTitle(QStringLiteral("Refreshing"), QStringLiteral("..."));
    QElapsedTimer clock;
    clock.start();
    controller().closeConnectionPopupWithMessage(QStringLiteral("Refresh complete."), true);
    QTest::qWait(200);
    controller().showConnectionPopupWithTitle(QStringLiteral("Connecting"), QStringLiteral("..."));
    QPointer<QWidget> second = controller().statusPopupWindow();
    ASSERT_TRUE(waitUntil([&] { return second.isNull(); }, 2000));
    EXPECT_LT(clock.elapsed(), 900) << "gone with the first close, not 600 ms after the second popup opened";

    controller().updateConnectionPopupTitle(QStringLiteral("Nobody"));
    controller().updateConnectionPopupMessage(QStringLiteral("listens"));
    controller().closeConnectionPopupWithMessage(QStringLiteral("gone"), true);
    EXPECT_EQ(controller().statusPopupWindow(), nullptr) << "updates without a popup do nothing";
}

TEST_F(ShellController, ControlsFollowTheSessionsOwnAnswerAndTheConnectButtonPulsesInBothStates)
{
    app::PerchConnectButton* button = controller().connectButton();
    QPointer<QAbstractAnimation> first = button->pulse();
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(first->state(), QAbstractAnimation::Running);
    EXPECT_EQ(first->loopCount(), -1);
    EXPECT_EQ(first->duration(), 2 * 850) << "0.85 s there and 0.85 s back";
    controller().updateConnectButtonAnimationForConnected(true);
    EXPECT_TRUE(first.isNull()) << "a restart replaces the pulse";
    ASSERT_NE(button->pulse(), nullptr);
    QTest::qWait(100);
    EXPECT_GE(button->borderAlpha(), 0.35);
    EXPECT_LE(button->borderAlpha(), 0.95);

    installSession(true);
    controller().refreshControlState();
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
    EXPECT_EQ(banner(), QStringLiteral("✅ Disconnected.")) << "connected, the one button disconnects";
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
    EXPECT_EQ(banner(), QStringLiteral("⚠️ Host and port are required to connect."));
}

TEST_F(ShellController, TheRemotePaneShowsTheServersRowsAndTriesARefusedRootAgain)
{
    controller().refreshSession();
    EXPECT_EQ(banner(), QStringLiteral("✅ Not connected to remote session. Connect first."));
    ASSERT_NE(controller().statusPopupMessage(), nullptr);
    EXPECT_EQ(controller().statusPopupMessage()->text(), "Refresh complete.");
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Refreshing");
    ASSERT_FALSE(remoteRows().isEmpty());
    EXPECT_EQ(remoteRows().front().name, "Not connected.");
    EXPECT_TRUE(remoteRows().front().placeholder);

    ScriptedSession* session = installSession(true);
    session->listings["/srv"] = {{"b.txt", false, 2048, "-rw-r--r--", "Jan 1 10:00"}, {"a", true, 4096, "", ""},
        {std::string("bad\xff", 4), false, 1, "", ""}};
    session->listings[""] = {{"inbox", true, 0, "", ""}};
    controller().didRequestOpenPath(controller().remotePane(), QStringLiteral("/srv"), true);
    EXPECT_EQ(session->listedPaths, (std::vector<std::string>{"/srv"}));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/srv");
    ASSERT_EQ(remoteRows().size(), 3);
    EXPECT_EQ(remoteRows()[0].name, "b.txt") << "in the server's order";
    EXPECT_EQ(remoteRows()[0].path, "/srv/b.txt");
    EXPECT_EQ(remoteRows()[0].size, "2048");
    EXPECT_EQ(remoteRows()[0].permissions, "-rw-r--r--");
    EXPECT_EQ(remoteRows()[0].modifiedAt, "Jan 1 10:00");
    EXPECT_TRUE(remoteRows()[1].dir);
    EXPECT_EQ(remoteRows()[1].size, "");
    EXPECT_EQ(remoteRows()[1].sizeValue, 4096u);
    EXPECT_EQ(remoteRows()[2].name, "") << "a name that is not UTF-8";
    EXPECT_EQ(remoteRows()[2].path, "/srv");
    EXPECT_EQ(banner(), QStringLiteral("✅ Remote listing refreshed."));

    session->listedPaths.clear();
    controller().remotePane()->setPathValue(QStringLiteral("/"));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(session->listedPaths, (std::vector<std::string>{"/", "/", ""}));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/");
    ASSERT_EQ(remoteRows().size(), 1);
    EXPECT_EQ(remoteRows().front().path, "/inbox");

    session->listedPaths.clear();
    controller().remotePane()->setPathValue(QStringLiteral("/missing"));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(session->listedPaths, (std::vector<std::string>{"/missing"})) << "another path is not tried again";
    EXPECT_EQ(remoteRows().front().name, "List failed: ftp: list failed for '/missing'");
    EXPECT_EQ(banner(), QStringLiteral("⚠️ Remote list failed: ftp: list failed for '/missing'"));
    EXPECT_TRUE(controller().queueLog()->toPlainText().contains("Remote list failed: ftp: list failed for '/missing'"));
}

TEST_F(ShellController, LocalRequestsAreRememberedSelectionsKeptAndAnOpenSessionDisconnectedAtTheEnd)
{
    auto const storedLocalPath = [] {
        return QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).value("PerchFtpLastLocalPanePath").toString();
    };
    QString const folder = folders().home() + QStringLiteral("/projects");
    QDir().mkpath(folder);
    controller().didRequestOpenPath(controller().localPane(), folder, false);
    EXPECT_EQ(controller().localPane()->pathValue(), folder);
    EXPECT_EQ(storedLocalPath(), folder);
    controller().didRequestOpenPath(controller().localPane(), folder + QStringLiteral("/missing"), false);
    EXPECT_EQ(controller().localPane()->pathValue(), folders().home()) << "a missing folder falls back to home";
    EXPECT_EQ(storedLocalPath(), folders().home()) << "what is remembered is where the pane stands";

    controller().didChangeSelectionPath(controller().localPane(), QStringLiteral("/home/a/file.txt"), false);
    controller().didChangeSelectionPath(controller().remotePane(), QStringLiteral("/srv/file.txt"), true);
    EXPECT_EQ(controller().localTransferField()->text(), "/home/a/file.txt");
    EXPECT_EQ(controller().remoteTransferField()->text(), "/srv/file.txt");
    controller().didChangeSelectionPath(controller().remotePane(), QString(), true);
    EXPECT_EQ(controller().remoteTransferField()->text(), "");

    int disconnects = 0;
    installSession(true)->disconnectCount = &disconnects;
    stopShell();
    EXPECT_EQ(disconnects, 1);
}

TEST_F(ShellController, TheQueueCountsRunningCompletedAndFailedJobsAndClearingEmptiesIt)
{
    auto const running = enqueue("running");
    auto const completed = enqueue("completed");
    auto const failed = enqueue("failed");
    auto const skipped = enqueue("skipped");
    auto const canceled = enqueue("canceled");
    enqueue("queued");
    queue().simulateProgress(running, 10, 100);
    queue().complete(completed, true, "");
    queue().simulateProgress(failed, 30, 100);
    queue().complete(failed, false, "ftp: broken pipe");
    queue().skip(skipped, "exists");
    queue().cancel(canceled);
    controller().reloadQueueSummary();

    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 6 total | Running: 1 | Completed: 1 | Failed: 1");
    EXPECT_TRUE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 6);
    EXPECT_DOUBLE_EQ(controller().queueTableDataSource()->items()[2].progressValue, 30.0) << "a failed job keeps its progress";

    controller().clearQueueButton()->click();
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 0 total | Running: 0 | Completed: 0 | Failed: 0");
    EXPECT_FALSE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 0);
    EXPECT_EQ(banner(), QStringLiteral("✅ Transfer queue cleared."));
    controller().setStatusText(QStringLiteral("other"), true);
    controller().clearTransferQueue();
    EXPECT_EQ(banner(), QStringLiteral("✅ Transfer queue cleared.")) << "even when it was empty";
    EXPECT_EQ(enqueue("after"), 7u) << "ids go on after a clear";
}

TEST_F(ShellController, LogLinesGoToTheActivityLogInOrderAndMissingWidgetsAreSkipped)
{
    controller().logMessage("Connected to example.org");
    controller().logMessage("Remote list failed: ftp: denied");
    EXPECT_EQ(controller().queueLog()->toPlainText(), "Connected to example.org\nRemote list failed: ftp: denied");

    enqueue("one");
    controller().setQueueLog(nullptr);
    controller().setQueueSummary(nullptr);
    controller().setClearQueueButton(nullptr);
    controller().setQueueTable(nullptr);
    controller().logMessage("goes nowhere");
    controller().reloadQueueSummary();
    EXPECT_TRUE(controller().queueTableDataSource()->items().empty()) << "no table, no rows";
    controller().setQueueTableDataSource(nullptr);
    controller().clearTransferQueue();
    EXPECT_TRUE(queue().snapshot().empty());
    controller().setStatusLabel(nullptr);
    controller().setStatusText(QStringLiteral("nobody shows this"), true);
}

} // namespace
} // namespace perchftp::test
