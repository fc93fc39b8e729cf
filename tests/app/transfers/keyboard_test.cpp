// A whole session with the keyboard alone, against a real loopback FTP server: every key goes to
// the widget that has the focus, as it does for a user.
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_split_view.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "support/qt_printers.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/started_shell.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QToolButton>

#include <filesystem>

namespace perchftp::test {
namespace {

class KeyboardOnly : public StartedShellTest {
protected:
    void SetUp() override
    {
        startShell();
        ASSERT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));
        QMainWindow* window = controller().hostWindow();
        window->show();
        QApplication::setActiveWindow(window);
        ASSERT_TRUE(waitUntil([&] { return window->isActiveWindow() && QApplication::focusWidget(); }));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void type(QString const& text) { QTest::keyClicks(QApplication::focusWidget(), text); }

    // Presses Tab (Shift+Tab backwards) until the widget has the focus.
    void tabTo(QWidget* target, bool backwards = false)
    {
        for (int presses = 0; presses < 60 && QApplication::focusWidget() != target; ++presses) {
            press(Qt::Key_Tab, backwards ? Qt::ShiftModifier : Qt::NoModifier);
        }
        ASSERT_EQ(QApplication::focusWidget(), target) << target->accessibleName().toStdString() << " not reached";
    }

    // In the focused file list: Up to the first row, then Down until the row of that name is the
    // one selected.
    void arrowToRow(app::PerchFilePaneController& pane, QString const& name)
    {
        ASSERT_EQ(QApplication::focusWidget(), pane.tableView());
        int const rows = int(pane.entries().size());
        for (int presses = 0; presses < rows; ++presses) {
            press(Qt::Key_Up);
        }
        for (int presses = 0; presses < rows && !pane.selectedPath().endsWith("/" + name); ++presses) {
            press(Qt::Key_Down);
        }
        ASSERT_EQ(pane.selectedItems().size(), 1);
        ASSERT_TRUE(pane.selectedPath().endsWith("/" + name)) << pane.selectedPath().toStdString();
    }

    QString banner() { return controller().statusLabel()->text(); }

    FtpTestServer server;
    TempDir localFolder;
};

TEST_F(KeyboardOnly, ConnectChooseUploadDownloadAndDeleteWithoutTheMouse)
{
    writeFile(localFolder.path() / "up.txt", "going up");
    writeFile(server.local("/down.txt"), "coming down");
    writeFile(server.local("/gone.txt"), "to be deleted");
    app::PerchFilePaneController& local = *controller().localPane();
    app::PerchFilePaneController& remote = *controller().remotePane();
    app::PerchPaneSplitView* split = controller().paneSplitView();

    // The form, field after field; Return in the last one connects.
    tabTo(controller().hostField());
    type(QStringLiteral("127.0.0.1"));
    press(Qt::Key_Tab);
    type(QString::fromStdString(server.user()));
    press(Qt::Key_Tab);
    type(QString::fromStdString(server.password()));
    press(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), controller().portField());
    press(Qt::Key_A, Qt::ControlModifier);
    type(QString::number(server.port()));
    press(Qt::Key_Return);
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();

    // The local folder typed into its path field.
    tabTo(local.pathField());
    press(Qt::Key_A, Qt::ControlModifier);
    type(QString::fromStdString(localFolder.path().string()));
    press(Qt::Key_Return);
    ASSERT_EQ(local.pathValue(), QString::fromStdString(localFolder.path().string()));

    // Choose the file with the arrow keys; the right arrow, next in the Tab order, uploads it.
    tabTo(local.tableView());
    arrowToRow(local, QStringLiteral("up.txt"));
    press(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), split->rightArrowButton());
    press(Qt::Key_Space);
    EXPECT_EQ(readFile(server.local("/up.txt")), "going up");
    EXPECT_EQ(banner(), "✅ Transfer completed.");

    // A remote file, and back to the left arrow to download it.
    tabTo(remote.tableView());
    arrowToRow(remote, QStringLiteral("down.txt"));
    tabTo(split->leftArrowButton(), true);
    press(Qt::Key_Space);
    EXPECT_EQ(readFile(localFolder.path() / "down.txt"), "coming down");

    // The Delete key asks first; the question is answered "Delete".
    dialogs().expectAlertButton(app::kFirstAlertButton);
    tabTo(remote.tableView());
    arrowToRow(remote, QStringLiteral("gone.txt"));
    press(Qt::Key_Delete);
    ASSERT_FALSE(dialogs().questions().empty());
    EXPECT_EQ(dialogs().questions().back().text, "Delete \"gone.txt\"?");
    EXPECT_FALSE(std::filesystem::exists(server.local("/gone.txt")));
    EXPECT_TRUE(std::filesystem::exists(server.local("/down.txt")));
}

} // namespace
} // namespace perchftp::test
