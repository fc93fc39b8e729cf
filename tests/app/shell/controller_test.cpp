// The controller's status surfaces, control state and queue view, in the started shell with a
// session that lives in memory.
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/queue/queue_table_model.hpp"
#include "app/status/connect_button.hpp"
#include "app/status/status_banner.hpp"
#include "app/status/status_popup.hpp"
#include "support/scripted_session.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

#include <QAbstractAnimation>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
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
    std::uint64_t enqueue(std::string const& name)
    {
        return controller().transferQueue().enqueue(transfer::JobType::Upload, "ftp", "/tmp/" + name, "/srv/" + name, 1, 3);
    }
};

TEST_F(ShellController, APopupFloatsCentredAndGoesSixHundredMillisecondsAfterTheCloseThatCameFirst)
{
    QMainWindow* host = controller().hostWindow();
    ASSERT_TRUE(waitUntil([&] { return host->isVisible(); }));
    controller().showConnectionPopupWithTitle(QStringLiteral("Connecting"), QStringLiteral("Resolving host:21 via ftp..."));
    QPointer<QWidget> first = controller().statusPopupWindow();
    ASSERT_FALSE(first.isNull());
    // It floats inside the main window, above the content, and stays centred when the window
    // changes size: no window manager has to place it.
    EXPECT_EQ(first->window(), host);
    EXPECT_EQ(host->children().back(), first.data()) << "raised above the content";
    host->resize(host->size() + QSize(300, 120));
    EXPECT_LE((first->geometry().center() - host->rect().center()).manhattanLength(), 2);
    EXPECT_EQ(controller().statusPopupProgress()->maximum(), 0) << "indeterminate while the step runs";
    EXPECT_EQ(controller().statusPopupIcon()->swim()->state(), QAbstractAnimation::Running);
    controller().updateConnectionPopupTitle(QString());
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Working...");

    controller().showConnectionPopupWithTitle(QStringLiteral("Refreshing"), QStringLiteral("..."));
    EXPECT_TRUE(first.isNull()) << "a new popup replaces the open one";
    QPointer<QWidget> popup = controller().statusPopupWindow();
    QElapsedTimer clock;
    clock.start();
    controller().closeConnectionPopupWithMessage(QStringLiteral("Refresh complete."), false);
    EXPECT_EQ(controller().statusPopupProgress()->value(), 100);
    EXPECT_EQ(controller().statusPopupIcon()->swim(), nullptr);
    EXPECT_EQ(controller().statusPopupMessage()->text(), "Refresh complete.");
    QTest::qWait(200);
    // A popup opened within the close delay is taken away by the older close.
    controller().showConnectionPopupWithTitle(QStringLiteral("Connecting"), QStringLiteral("..."));
    QPointer<QWidget> second = controller().statusPopupWindow();
    QTest::qWait(250);
    EXPECT_FALSE(second.isNull()) << "still open 450 ms after the close";
    ASSERT_TRUE(waitUntil([&] { return second.isNull(); }, 2000));
    EXPECT_GE(clock.elapsed(), 600);
    EXPECT_LT(clock.elapsed(), 900) << "gone with the first close, not 600 ms after the second popup opened";
    EXPECT_TRUE(popup.isNull());

    controller().updateConnectionPopupMessage(QStringLiteral("nobody listens"));
    controller().closeConnectionPopupWithMessage(QStringLiteral("gone"), true);
    EXPECT_EQ(controller().statusPopupWindow(), nullptr) << "updates without a popup do nothing";
}

TEST_F(ShellController, ControlsAndTheOneConnectButtonFollowTheSessionsOwnAnswer)
{
    controller().setStatusText(QStringLiteral("Remote list failed: ftp: nope"), true);
    EXPECT_EQ(banner(), "⚠️ Remote list failed: ftp: nope");
    EXPECT_TRUE(controller().statusBanner()->showsError());
    controller().refreshSession();
    EXPECT_EQ(banner(), QStringLiteral("✅ Not connected to remote session. Connect first."));
    EXPECT_FALSE(controller().statusBanner()->showsError());
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Refreshing");
    EXPECT_EQ(controller().statusPopupMessage()->text(), "Refresh complete.");
    EXPECT_EQ(controller().remotePane()->entries().value(0).name, "Not connected.");

    app::PerchConnectButton* button = controller().connectButton();
    installSession(true);
    controller().refreshControlState();
    EXPECT_EQ(button->text(), "Disconnect");
    EXPECT_TRUE(controller().refreshButton()->isEnabled() && controller().uploadButton()->isEnabled());
    EXPECT_EQ(controller().connectionStatusText()->text(), "Connected");
    ASSERT_NE(button->pulse(), nullptr);
    EXPECT_EQ(button->pulse()->state(), QAbstractAnimation::Running) << "it pulses in both states";
    button->click();
    EXPECT_EQ(banner(), QStringLiteral("✅ Disconnected."));
    EXPECT_EQ(controller().session(), nullptr);

    // A session that says it is no longer connected: the button connects again.
    installSession(false);
    controller().refreshControlState();
    EXPECT_EQ(button->text(), "Connect");
    EXPECT_FALSE(controller().refreshButton()->isEnabled());
    EXPECT_EQ(controller().connectionStatusText()->text(), "Disconnected");
    controller().hostField()->clear();
    button->click();
    EXPECT_EQ(banner(), QStringLiteral("⚠️ Host and port are required to connect."));

    // The program's end disconnects an open session.
    int disconnects = 0;
    installSession(true)->disconnectCount = &disconnects;
    stopShell();
    EXPECT_EQ(disconnects, 1);
}

TEST_F(ShellController, TheQueueSummaryCountsRunningCompletedAndFailedJobsAndClearingEmptiesIt)
{
    transfer::TransferQueue& queue = controller().transferQueue().queue();
    queue.simulateProgress(enqueue("running"), 10, 100);
    queue.complete(enqueue("completed"), true, "");
    queue.complete(enqueue("failed"), false, "ftp: broken pipe");
    queue.skip(enqueue("skipped"), "exists");
    enqueue("queued");
    controller().reloadQueueSummary();
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 5 total | Running: 1 | Completed: 1 | Failed: 1");
    EXPECT_TRUE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 5);

    controller().clearQueueButton()->click();
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 0 total | Running: 0 | Completed: 0 | Failed: 0");
    EXPECT_FALSE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 0);
    EXPECT_EQ(banner(), QStringLiteral("✅ Transfer queue cleared."));
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
    EXPECT_TRUE(controller().transferQueue().queue().snapshot().empty());
    controller().setStatusLabel(nullptr);
    controller().setStatusText(QStringLiteral("nobody shows this"), true);
}

} // namespace
} // namespace perchftp::test
