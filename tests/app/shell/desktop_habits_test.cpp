// What a Linux desktop user expects of the main window without being told: Return connects, the
// wheel leaves an unfocused selector alone, words show as typed, the Edit menu works on the file
// lists, and every control has a name and a place in the Tab order.
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_split_view.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "support/pane_rows.hpp"
#include "support/qt_printers.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

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
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTextDocument>
#include <QToolButton>
#include <QWheelEvent>

namespace perchftp::test {
namespace {

QStringList loggedLines;

void recordMessage(QtMsgType, QMessageLogContext const&, QString const& message)
{
    loggedLines.append(message);
}

// Every line Qt logs while it lives is recorded instead of printed.
class RecordedQtMessages {
public:
    RecordedQtMessages() : previous_(qInstallMessageHandler(recordMessage)) { loggedLines.clear(); }
    ~RecordedQtMessages() { qInstallMessageHandler(previous_); }
    RecordedQtMessages(RecordedQtMessages const&) = delete;
    RecordedQtMessages& operator=(RecordedQtMessages const&) = delete;
    QStringList const& lines() const { return loggedLines; }

private:
    QtMessageHandler previous_;
};

class DesktopHabits : public StartedShellTest {
protected:
    void SetUp() override
    {
        startShell();
        ASSERT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));
        window()->show();
        QApplication::setActiveWindow(window());
        ASSERT_TRUE(waitUntil([&] { return window()->isActiveWindow(); }));
    }

    QMainWindow* window() { return controller().hostWindow(); }
    app::PerchFilePaneController& local() { return *controller().localPane(); }
    app::PerchFilePaneController& remote() { return *controller().remotePane(); }
    QString banner() { return controller().statusLabel()->text(); }

    void focus(QWidget* widget)
    {
        widget->setFocus(Qt::OtherFocusReason);
        ASSERT_TRUE(waitUntil([&] { return QApplication::focusWidget() == widget; }));
    }

    QAction* editItem(QString const& title)
    {
        for (QAction* menu : controller().mainMenu()->actions()) {
            if (menu->text() == "Edit") {
                for (QAction* item : menu->menu()->actions()) {
                    if (item->text() == title) {
                        return item;
                    }
                }
            }
        }
        ADD_FAILURE() << "no Edit item " << title.toStdString();
        return nullptr;
    }

    // A local folder with these files, shown in the local pane.
    QString showLocalFolder(QStringList const& names)
    {
        QString const folder = folders().workingDirectory() + QStringLiteral("/files");
        QDir().mkpath(folder);
        for (QString const& name : names) {
            QFile file(folder + "/" + name);
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        }
        local().loadLocalDirectory(folder);
        return folder;
    }
};

TEST_F(DesktopHabits, ReturnInAnyFieldOfTheFormConnectsAsConnectDoes)
{
    controller().hostField()->clear();
    for (QWidget* field : std::initializer_list<QWidget*>{controller().hostField(), controller().userField(),
             controller().secretField(), controller().portField(), controller().protocolField()}) {
        SCOPED_TRACE(field->accessibleName().toStdString());
        controller().setStatusText(QStringLiteral("before"), false);
        focus(field);
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_EQ(banner(), "⚠️ Host and port are required to connect.");
    }
}

TEST_F(DesktopHabits, TheWheelChangesTheProtocolOnlyOnceTheSelectorHasTheFocus)
{
    QComboBox* protocol = controller().protocolField();
    EXPECT_EQ(protocol->focusPolicy(), Qt::StrongFocus) << "the wheel must not take the focus";
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
}

TEST_F(DesktopHabits, EveryLabelOfTheWindowAndEveryFileTipShowsItsWordsAsTyped)
{
    QString const markup = QStringLiteral("<b>x</b>");
    controller().setStatusText(QStringLiteral("Deleted local item %1").arg(markup), false);
    EXPECT_EQ(banner(), QStringLiteral("✅ Deleted local item <b>x</b>"));
    QList<QLabel*> const labels = window()->findChildren<QLabel*>();
    ASSERT_GE(labels.size(), 10);
    for (QLabel* label : labels) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    }

    // A file name holds no "/": half the markup is enough to be read as bold.
    QString const name = QStringLiteral("<b>x");
    QString const folder = showLocalFolder({name});
    ASSERT_EQ(local().entries().size(), 1);
    QString const tip = local().model()->index(0, 0).data(Qt::ToolTipRole).toString();
    QTextDocument shown;
    shown.setHtml(tip);
    EXPECT_EQ(shown.toPlainText(), folder + "/" + name) << "a tooltip reads markup; the name is escaped";
}

TEST_F(DesktopHabits, EditItemsCopyPathsAndSelectAllInAFileListWorkInFieldsAndAreQuietElsewhere)
{
    RecordedQtMessages const messages;
    QString const folder = showLocalFolder({"a.txt", "b.txt", "c.txt"});
    QTableView* table = local().tableView();
    focus(table);
    ASSERT_EQ(selectPaneRowsNamed(local(), {"a.txt", "c.txt"}), 2);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), folder + "/a.txt\n" + folder + "/c.txt");
    editItem("Select All")->trigger();
    EXPECT_EQ(local().selectedItems().size(), 3);

    // The message row of an empty folder is no file: the clipboard keeps what it had.
    QString const empty = folders().workingDirectory() + QStringLiteral("/empty");
    QDir().mkpath(empty);
    local().loadLocalDirectory(empty);
    ASSERT_TRUE(local().entries().first().placeholder);
    editItem("Select All")->trigger();
    editItem("Copy")->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), folder + "/a.txt\n" + folder + "/c.txt");

    // Where the focus has nothing to edit, every item does nothing and says nothing.
    for (QWidget* target : std::initializer_list<QWidget*>{controller().protocolField(), controller().queueTable(),
             local().upButton()}) {
        focus(target);
        for (QString const title : {"Undo", "Redo", "Cut", "Copy", "Paste", "Select All"}) {
            editItem(title)->trigger();
        }
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
    editItem("Undo")->trigger();
    EXPECT_NE(host->text(), "example.orgexample.org");
    editItem("Redo")->trigger();
    EXPECT_EQ(host->text(), "example.orgexample.org");
    EXPECT_EQ(messages.lines(), QStringList());
}

TEST_F(DesktopHabits, EveryControlHasANameAndTabWalksTheWindowInReadingOrder)
{
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

    // Space presses the arrow that has the focus.
    focus(split->rightArrowButton());
    QTest::keyClick(split->rightArrowButton(), Qt::Key_Space);
    EXPECT_EQ(banner(), "⚠️ Select one or more local files or folders to upload.");
}

} // namespace
} // namespace perchftp::test
