// The shell's start-up; the controller's status surfaces, control state and queue view, in the
// started shell with a session that lives in memory; and what a Linux desktop user expects of the main window without
// being told: Return connects, the wheel leaves an unfocused selector alone, words show as typed,
// the Edit menu works on the file lists, and every control has a name and a place in the Tab order.
#include "app/licence_gate.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_split_view.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "app/queue/queue_table_model.hpp"
#include "app/shell_startup.hpp"
#include "app/status/connect_button.hpp"
#include "app/status/status_popup.hpp"
#include "protocol/remote_session.hpp"
#include "support/pane_rows.hpp"
#include "support/qt_printers.hpp"
#include "support/started_shell.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractAnimation>
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QTableView>
#include <QTextDocument>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

namespace perchftp::test {
namespace {

// A session that only says whether it is connected; every other call fails with the empty result.
// The protocol layer has its own tests against real servers.
class ScriptedSession : public protocol::IRemoteSession {
public:
    explicit ScriptedSession(bool connected)
    {
        ON_CALL(*this, isConnected).WillByDefault(testing::Return(connected));
    }

    using Result = protocol::SessionResult;
    MOCK_METHOD(Result, connect, (std::string const&, int, std::string const&, std::string const&),
        (override));
    MOCK_METHOD(Result, disconnect, (), (override));
    MOCK_METHOD(Result, list, (std::string const&, std::vector<protocol::RemoteEntry>&), (override));
    MOCK_METHOD(Result, upload, (protocol::TransferParams const&, protocol::TransferCallback), (override));
    MOCK_METHOD(Result, download, (protocol::TransferParams const&, protocol::TransferCallback), (override));
    MOCK_METHOD(Result, rename, (std::string const&, std::string const&), (override));
    MOCK_METHOD(Result, remove, (std::string const&), (override));
    MOCK_METHOD(Result, mkdir, (std::string const&), (override));
    MOCK_METHOD(Result, chmod, (std::string const&, int), (override));
    MOCK_METHOD(bool, isConnected, (), (const, override));
};

class ShellController : public StartedShellTest {
protected:
    void SetUp() override { startShownShell(); }

    QMainWindow* window() { return controller().hostWindow(); }
    app::PerchFilePaneController& local() { return *controller().localPane(); }
    app::PerchFilePaneController& remote() { return *controller().remotePane(); }
    ScriptedSession* installSession(bool connected)
    {
        auto* session = new testing::NiceMock<ScriptedSession>(connected);
        controller().setSession(session);
        return session;
    }
    std::uint64_t enqueue(std::string const& name)
    {
        return controller().transferQueue().enqueue(transfer::JobType::Upload, "ftp", "/tmp/" + name, "/srv/" + name, 1, 3);
    }

    void focus(QWidget* widget)
    {
        widget->setFocus(Qt::OtherFocusReason);
        ASSERT_TRUE(waitUntil([&] { return QApplication::focusWidget() == widget; }));
    }

    // An item of the Edit menu, the third of the menu bar.
    QAction* editItem(QString const& title)
    {
        for (QAction* item : controller().mainMenu()->actions().value(2)->menu()->actions()) {
            if (item->text() == title) {
                return item;
            }
        }
        ADD_FAILURE() << "no Edit item " << title.toStdString();
        return nullptr;
    }
};

TEST_F(ShellController, APopupFloatsCentredAndGoesSixHundredMillisecondsAfterTheCloseThatCameFirst)
{
    QMainWindow* host = window();
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

TEST_F(ShellController, TheQueueSummaryCountsItsJobsAndTheControlsFollowTheSessionsOwnAnswer)
{
    // Skipped and queued jobs count in the total only.
    transfer::TransferQueue& queue = controller().transferQueue().queue();
    queue.simulateProgress(enqueue("running"), 10, 100);
    queue.complete(enqueue("failed"), false, "ftp: broken pipe");
    queue.skip(enqueue("skipped"), "exists");
    enqueue("queued");
    controller().reloadQueueSummary();
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 4 total | Running: 1 | Completed: 0 | Failed: 1");
    EXPECT_TRUE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 4);

    controller().clearQueueButton()->click();
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 0 total | Running: 0 | Completed: 0 | Failed: 0");
    EXPECT_FALSE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueTable()->model()->rowCount(), 0);
    EXPECT_EQ(banner(), QStringLiteral("✅ Transfer queue cleared."));

    controller().refreshSession();
    EXPECT_EQ(banner(), QStringLiteral("✅ Not connected to remote session. Connect first."));

    app::PerchConnectButton* button = controller().connectButton();
    installSession(true);
    controller().refreshControlState();
    EXPECT_EQ(button->text(), "Disconnect");
    EXPECT_TRUE(controller().refreshButton()->isEnabled() && controller().uploadButton()->isEnabled());
    EXPECT_EQ(controller().connectionStatusText()->text(), "Connected");
    ASSERT_NE(button->pulse(), nullptr);
    EXPECT_EQ(button->pulse()->state(), QAbstractAnimation::Running) << "it pulses in both states";

    // A session that says it is no longer connected: the button connects again.
    installSession(false);
    controller().refreshControlState();
    EXPECT_EQ(button->text(), "Connect");
    EXPECT_FALSE(controller().refreshButton()->isEnabled());
    EXPECT_EQ(controller().connectionStatusText()->text(), "Disconnected");

    // The program's end disconnects an open session.
    EXPECT_CALL(*installSession(true), disconnect());
    stopShell();
}

TEST_F(ShellController, ReturnConnectsTheWheelWaitsForTheFocusAndTabWalksTheWindowInReadingOrder)
{
    controller().hostField()->clear();
    focus(controller().hostField());
    QTest::keyClick(controller().hostField(), Qt::Key_Return);
    EXPECT_EQ(banner(), "⚠️ Host and port are required to connect.");
    EXPECT_EQ(controller().statusPopupWindow(), nullptr) << "nothing starts";

    QComboBox* protocol = controller().protocolField();
    controller().portField()->setText(QStringLiteral("2121"));
    focus(controller().hostField());
    auto const scroll = [&] {
        QPointF const centre = QRectF(protocol->rect()).center();
        QWheelEvent wheel(centre, protocol->mapToGlobal(centre), QPoint(), QPoint(0, -120), Qt::NoButton,
            Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(protocol, &wheel);
    };
    scroll();
    EXPECT_EQ(protocol->currentText(), "ftp");
    EXPECT_EQ(controller().portField()->text(), "2121") << "a typed port survives scrolling past";
    EXPECT_EQ(QApplication::focusWidget(), controller().hostField());

    focus(protocol);
    scroll();
    EXPECT_EQ(protocol->currentText(), "ftps") << "with the focus the wheel chooses";

    for (QWidget* widget : window()->findChildren<QWidget*>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisibleTo(window())) {
            continue;
        }
        auto* button = qobject_cast<QAbstractButton*>(widget);
        bool const named = !widget->accessibleName().isEmpty() || (button && !button->text().isEmpty());
        EXPECT_TRUE(named) << widget->metaObject()->className() << " " << widget->objectName().toStdString()
                           << " has no name";
    }

    // Tab from the host field back to it, as a keyboard user goes round.
    QLineEdit* host = controller().hostField();
    focus(host);
    QList<QWidget*> visited{host};
    for (int press = 0; press < 80; ++press) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (QApplication::focusWidget() == host) {
            break;
        }
        visited.append(QApplication::focusWidget());
    }
    ASSERT_EQ(QApplication::focusWidget(), host) << "Tab goes round the window";
    app::PerchPaneSplitView* split = controller().paneSplitView();
    QList<QWidget*> const readingOrder{host, controller().userField(), controller().secretField(),
        controller().portField(), controller().protocolField(), controller().openSavedConnectionButton(),
        controller().saveConnectionButton(), controller().reportBugButton(), local().pathField(),
        local().upButton(), local().deleteButton(), local().uploadButton(), local().tableView(),
        split->rightArrowButton(), split->leftArrowButton(), remote().pathField(), remote().upButton(),
        remote().downloadButton(), remote().tableView(), controller().queueTable()};
    qsizetype place = -1;
    for (QWidget* widget : readingOrder) {
        qsizetype const at = visited.indexOf(widget);
        EXPECT_GT(at, place) << widget->accessibleName().toStdString() << " " << widget->objectName().toStdString()
                             << " is out of order or not reached";
        place = std::max(place, at);
    }
}

TEST_F(ShellController, WordsShowAsTypedAndTheEditItemsCopyPathsAndSelectAllInAFileListAndAreQuietElsewhere)
{
    // Every line Qt logs meanwhile is recorded instead of printed.
    static QStringList logged;
    QtMessageHandler const previous =
        qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const& line) { logged.append(line); });
    controller().setStatusText(QStringLiteral("Deleted local item <b>x</b>"), false);
    EXPECT_EQ(banner(), QStringLiteral("✅ Deleted local item <b>x</b>"));
    QList<QLabel*> const labels = window()->findChildren<QLabel*>();
    ASSERT_GE(labels.size(), 10);
    for (QLabel* label : labels) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    }

    // A file name holds no "/": half the markup is enough to be read as bold. It sorts first.
    QString const folder = folders().workingDirectory() + QStringLiteral("/files");
    QDir().mkpath(folder);
    for (QString const name : {"<b>x", "a.txt", "b.txt", "c.txt"}) {
        QFile file(folder + "/" + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    local().loadLocalDirectory(folder);
    QTextDocument shown;
    shown.setHtml(local().model()->index(0, 0).data(Qt::ToolTipRole).toString());
    EXPECT_EQ(shown.toPlainText(), folder + "/<b>x") << "a tooltip reads markup; the name is escaped";

    QTableView* table = local().tableView();
    focus(table);
    ASSERT_EQ(selectPaneRowsNamed(local(), {"a.txt", "c.txt"}), 2);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), folder + "/a.txt\n" + folder + "/c.txt");
    editItem("Select All")->trigger();
    EXPECT_EQ(local().selectedItems().size(), 4);

    // The message row of an empty folder is no file: the clipboard keeps what it had.
    QString const empty = folders().workingDirectory() + QStringLiteral("/empty");
    QDir().mkpath(empty);
    local().loadLocalDirectory(empty);
    ASSERT_TRUE(local().entries().first().placeholder);
    editItem("Select All")->trigger();
    editItem("Copy")->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), folder + "/a.txt\n" + folder + "/c.txt");

    // Where the focus has nothing to edit, every item does nothing and says nothing.
    focus(controller().queueTable());
    for (QString const title : {"Undo", "Redo", "Cut", "Copy", "Paste", "Select All"}) {
        editItem(title)->trigger();
    }
    EXPECT_EQ(QApplication::clipboard()->text(), folder + "/a.txt\n" + folder + "/c.txt");

    // A field keeps its own editing.
    QLineEdit* host = controller().hostField();
    host->setText(QStringLiteral("example.org"));
    focus(host);
    editItem("Select All")->trigger();
    editItem("Cut")->trigger();
    EXPECT_EQ(host->text(), "");
    editItem("Paste")->trigger();
    editItem("Paste")->trigger();
    EXPECT_EQ(host->text(), "example.orgexample.org");
    qInstallMessageHandler(previous);
    EXPECT_EQ(logged, QStringList());
}

// Start-up: where the site data is read from and written back, what fills the form, the window
// that follows the splash, and the licence gate before any of it.
using StartUp = StartedShellTest;

TEST_F(StartUp, SiteDataIsReadFromTheBaseFolderFirstMigratedOrWrittenBackAndTheLastFillsTheForm)
{
    // Nothing saved: nothing is loaded and no database is made; the base folder is private.
    startShell();
    EXPECT_TRUE(controller().siteManager().listSites().empty());
    EXPECT_FALSE(QFile::exists(baseDatabase()));
    QFileInfo const base(folders().baseFolder());
    ASSERT_TRUE(base.isDir());
    EXPECT_EQ(base.permissions() & ~(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadUser
                                       | QFile::WriteUser | QFile::ExeUser),
        QFile::Permissions());
    EXPECT_TRUE(QFile::exists(folders().baseFolder() + QStringLiteral("/install-tracker.state")));
    stopShell();

    struct Row {
        char const* what;
        std::optional<std::vector<storage::SiteProfile>> inBase;
        std::size_t loaded;
        std::size_t storedInBase;
        std::size_t leftInWorkingDirectory;
    } const rows[] = {
        {"an older file in the working directory is migrated", std::nullopt, 1, 1, 1},
        {"the base folder's database wins even without profiles", std::vector<storage::SiteProfile>{}, 0, 0, 1},
        {"a load that drops entries is written back at once",
            std::vector{siteProfile("One", "ftp", "same.example", 21), siteProfile("Two", "ftp", "same.example", 2121)},
            1, 1, 1},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        QFile::remove(baseDatabase());
        if (row.inBase) {
            writeSites(baseDatabase(), *row.inBase);
        }
        writeSites(workingDirectoryDatabase(), {siteProfile("Old", "ftp", "old.example", 21)});
        startShell();
        EXPECT_EQ(controller().siteManager().listSites().size(), row.loaded);
        EXPECT_EQ(readSites(baseDatabase()).size(), row.storedInBase);
        EXPECT_EQ(readSites(workingDirectoryDatabase()).size(), row.leftInWorkingDirectory);
        stopShell();
    }

    // Without a mark the last connection fills the form; what a marked one fills in is pinned by
    // the saved connections' restart.
    writeSites(baseDatabase(), {siteProfile("A", "ftp", "a.example", 21), siteProfile("B", "ftps", "b.example", 990)});
    startShell();
    EXPECT_EQ(controller().hostField()->text(), "b.example");
    EXPECT_EQ(controller().portField()->text(), "21") << "ftps has the default port of ftp";
}

TEST_F(StartUp, TheSplashGivesWayToAMainWindowWithItsMenusAndItsDivider)
{
    QElapsedTimer clock;
    clock.start();
    startShell();
    ASSERT_TRUE(splash()->isVisible());
    QMainWindow* window = controller().hostWindow();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "PerchFtp");

    QStringList menus;
    std::map<QString, QStringList> items;
    for (QAction* menu : controller().mainMenu()->actions()) {
        menus << menu->text();
        for (QAction* item : menu->menu()->actions()) {
            items[menu->text()] << (item->isSeparator()
                    ? QStringLiteral("-")
                    : item->text() + u' ' + item->shortcut().toString(QKeySequence::PortableText));
        }
    }
    EXPECT_EQ(menus, (QStringList{"PerchFtp", "File", "Edit", "Connection", "Transfer"}));
    EXPECT_EQ(items["PerchFtp"], (QStringList{"About PerchFtp ", "-", "Quit PerchFtp Ctrl+Q"}));
    EXPECT_EQ(items["File"], (QStringList{"Open Local Folder Ctrl+O", "Save Connection Ctrl+S",
                                 "Open Saved Connection Ctrl+Shift+O", "-", "Refresh Panes Ctrl+R"}));
    EXPECT_EQ(items["Edit"], (QStringList{"Undo Ctrl+Z", "Redo Ctrl+Shift+Z", "-", "Cut Ctrl+X", "Copy Ctrl+C",
                                 "Paste Ctrl+V", "Select All Ctrl+A"}));
    EXPECT_EQ(items["Connection"], (QStringList{"Connect Ctrl+Shift+C", "Disconnect Ctrl+Shift+D"}));
    EXPECT_EQ(items["Transfer"], (QStringList{"Upload Ctrl+U", "Download Ctrl+Shift+U"}));

    // Once the loop turns, the divider gives the local pane ten pixels more than half, and
    // showing the window keeps that placement.
    app::PerchPaneSplitView* split = controller().paneSplitView();
    ASSERT_TRUE(waitUntil([&] { return split->sizes().value(0) > 0 && split->width() > 1000; }));
    QList<int> const sizes = split->sizes();
    EXPECT_NEAR(sizes[0] - (sizes[0] + sizes[1]) / 2, 10, 1);
    ASSERT_TRUE(waitUntil([&] { return window->isVisible(); }, 4000));
    EXPECT_GE(clock.elapsed(), 1250);
    EXPECT_FALSE(splash()->isVisible());
    EXPECT_EQ(split->sizes(), sizes);

    // Closing the main window ends the event loop.
    QTimer::singleShot(0, [&] { window->close(); });
    QTimer::singleShot(8000, [] { QCoreApplication::exit(7); });
    EXPECT_EQ(QApplication::exec(), 0) << "the loop ended through the window, not through the guard";
}

// The gate runs before the controller, so this test starts the shell by hand.
TEST(LicenceGate, DecliningBuildsNothingAndTheNextStartsAskUntilAccepted)
{
    IsolatedUserFolders folders;
    ScriptedShellDialogs script; // every copy handed to the shell answers from this script
    script.expectLicence(false);
    auto& application = *static_cast<QApplication*>(QCoreApplication::instance());
    EXPECT_FALSE(app::startDesktopShell(application, std::make_unique<ScriptedShellDialogs>(script)).has_value());
    ASSERT_EQ(script.questions().size(), 1u);
    EXPECT_TRUE(script.questions().front().text.contains("PerchFtp Licence Agreement"));
    EXPECT_FALSE(QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).contains(app::kLicenceAcceptedKey));
    EXPECT_FALSE(QFile::exists(folders.baseFolder())) << "no controller was made";

    script.expectLicence(true);
    EXPECT_TRUE(app::startDesktopShell(application, std::make_unique<ScriptedShellDialogs>(script)).has_value());
    EXPECT_TRUE(app::startDesktopShell(application, std::make_unique<ScriptedShellDialogs>(script)).has_value());
    EXPECT_EQ(script.questions().size(), 2u) << "asked again once, then the acceptance is kept";
}

} // namespace
} // namespace perchftp::test
