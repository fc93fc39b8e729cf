#include "app/dialogs/saved_connection_picker.hpp"
#include "app/dialogs/saved_connection_table.hpp"
#include "app/shell_dialogs.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>

namespace perchftp::app {
namespace {

// Runs the step on the modal dialog as soon as it is up.
void whenModalAppears(std::function<void(QWidget*)> step)
{
    auto* poll = new QTimer;
    QObject::connect(poll, &QTimer::timeout, poll, [poll, step] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            poll->stop();
            poll->deleteLater();
            step(dialog);
        }
    });
    poll->start(10);
}

void click(QWidget* dialog, QString const& title)
{
    for (auto* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == title) {
            return button->click();
        }
    }
    ADD_FAILURE() << "no button " << title.toStdString();
}

// Presses the row with the mouse, as a user picks it; row -1 is the empty space under the rows.
void pressRow(PerchSavedConnectionTableView* table, int row, Qt::MouseButton button = Qt::LeftButton)
{
    QPoint const where = row < 0 ? QPoint(10, 170) : table->visualRect(table->model()->index(row, 0)).center();
    QTest::mouseClick(table->viewport(), button, {}, where);
}

TEST(SavedConnectionPicker, AnswersWithTheButtonAndTheRowLastPressedWithTheMouse)
{
    struct Row {
        char const* what;
        std::function<void(QWidget*, PerchSavedConnectionTableView*)> step;
        int button;
        int row;
    } const rows[] = {
        {"Escape is Cancel",
            [](QWidget* dialog, PerchSavedConnectionTableView*) { QTest::keyClick(dialog, Qt::Key_Escape); },
            kFirstAlertButton + 3, -1},
        {"the keyboard moves the highlight but Open acts on row 0",
            [](QWidget* dialog, PerchSavedConnectionTableView* table) {
                table->setFocus();
                QTest::keyClick(table, Qt::Key_Down);
                QTest::keyClick(table, Qt::Key_Down);
                EXPECT_EQ(table->selectedRow(), 2);
                click(dialog, QStringLiteral("Open"));
            },
            kFirstAlertButton, 0},
        {"a left press chooses the row for every button; empty space changes nothing",
            [](QWidget* dialog, PerchSavedConnectionTableView* table) {
                pressRow(table, 1);
                pressRow(table, -1);
                click(dialog, QStringLiteral("Delete"));
            },
            kFirstAlertButton + 2, 1},
        {"a right press chooses the row too",
            [](QWidget* dialog, PerchSavedConnectionTableView* table) {
                pressRow(table, 2, Qt::RightButton);
                EXPECT_EQ(table->selectedRow(), 2);
                click(dialog, QStringLiteral("Edit"));
            },
            kFirstAlertButton + 1, 2},
        {"a double click opens that row",
            [](QWidget*, PerchSavedConnectionTableView* table) {
                pressRow(table, 2);
                QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(table->model()->index(2, 0)).center());
            },
            kFirstAlertButton, 2},
    };
    std::vector<SavedConnectionItem> const items{{1, "Home", "ftp", "home.example", "ada", "", 21, "", ""},
        {2, "Work", "sftp", "work.example", "", "", 22, "", ""}, {3, "Backup", "ftp", "backup.example", "", "", 21, "", ""}};
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        whenModalAppears([&](QWidget* dialog) { row.step(dialog, dialog->findChild<PerchSavedConnectionTableView*>()); });
        SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, items, QIcon());
        EXPECT_EQ(answer.button, row.button);
        if (row.row >= 0) {
            EXPECT_EQ(answer.row, row.row);
        }
    }
}

TEST(DesktopDialogs, AlertsTextPromptsAndTheLicenceAnswerWithWhatWasPressed)
{
    auto dialogs = createDesktopDialogs();
    whenModalAppears([](QWidget* dialog) { click(dialog, QStringLiteral("Skip")); });
    AlertRequest request;
    request.messageText = QStringLiteral("File exists");
    request.buttons = {QStringLiteral("Replace"), QStringLiteral("Skip"), QStringLiteral("Cancel")};
    EXPECT_EQ(dialogs->runAlert(nullptr, request), kFirstAlertButton + 1) << "counted from 1000";

    whenModalAppears([](QWidget* dialog) {
        auto* field = dialog->findChild<QLineEdit*>();
        EXPECT_EQ(field->text(), "example.org");
        EXPECT_EQ(field->placeholderText(), "My Server");
        field->setText(QStringLiteral("  Production  "));
        click(dialog, QStringLiteral("OK"));
    });
    EXPECT_EQ(dialogs->askForText(nullptr, QStringLiteral("Save Connection"), QStringLiteral("Enter a saved connection name."),
                  QStringLiteral("example.org"), QStringLiteral("My Server"), QIcon()),
        std::optional<QString>(QStringLiteral("  Production  ")));
    whenModalAppears([](QWidget* dialog) { click(dialog, QStringLiteral("Cancel")); });
    EXPECT_EQ(dialogs->askForText(nullptr, QStringLiteral("Rename"), QString(), QStringLiteral("a"), QString(), QIcon()),
        std::nullopt);

    whenModalAppears([](QWidget* dialog) { click(dialog, QStringLiteral("Decline")); });
    EXPECT_FALSE(dialogs->acceptLicence(QStringLiteral("terms"), QIcon()));
    whenModalAppears([](QWidget* dialog) { click(dialog, QStringLiteral("Accept")); });
    EXPECT_TRUE(dialogs->acceptLicence(QStringLiteral("terms"), QIcon()));
}

// Every label of the dialog reads its text as it stands; the words under test are there as typed.
void expectPlainTextLabels(QWidget* dialog, bool showsWordsUnderTest)
{
    bool shown = false;
    for (auto* label : dialog->findChildren<QLabel*>()) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
        shown = shown || label->text().contains(QStringLiteral("<b>x</b>"));
    }
    EXPECT_EQ(shown, showsWordsUnderTest);
}

// Declines the dialog as a user does, with Escape in whatever has the focus or with the window's
// close button. A dialog that stays up is answered with its first button, so that the test fails
// and does not hang.
void decline(QWidget* dialog, bool withEscape)
{
    QPointer<QWidget> const alive = dialog;
    if (withEscape) {
        QTest::keyClick(dialog->focusWidget() ? dialog->focusWidget() : dialog, Qt::Key_Escape);
    } else {
        dialog->close();
    }
    QTimer::singleShot(500, [alive] {
        if (alive && alive->isVisible()) {
            ADD_FAILURE() << (alive->windowTitle().toStdString()) << " stayed open";
            alive->findChildren<QPushButton*>().first()->click();
        }
    });
}

TEST(DesktopDialogs, EscapeAndTheCloseButtonDeclineEveryQuestionWhoseWordsStayPlainText)
{
    auto dialogs = createDesktopDialogs();
    QString const markup = QStringLiteral("<b>x</b>");
    auto const alert = [&](QStringList buttons) {
        AlertRequest request;
        request.messageText = markup;
        request.informativeText = QStringLiteral("Delete \"%1\"?").arg(markup);
        request.buttons = std::move(buttons);
        return request;
    };
    std::vector<SavedConnectionItem> const items{{1, markup, "ftp", "home.example", "", "", 21, "", ""}};
    struct Question {
        char const* what;
        std::function<int()> ask;
        int declined;
    } const questions[] = {
        {"delete confirmation",
            [&] { return dialogs->runAlert(nullptr, alert({QStringLiteral("Delete"), QStringLiteral("Cancel")})); },
            kFirstAlertButton + 1},
        {"alert with Cancel last of three",
            [&] {
                return dialogs->runAlert(nullptr,
                    alert({QStringLiteral("Replace"), QStringLiteral("Skip"), QStringLiteral("Cancel")}));
            },
            kFirstAlertButton + 2},
        {"alert with Close alone", [&] { return dialogs->runAlert(nullptr, alert({QStringLiteral("Close")})); },
            kFirstAlertButton},
        {"conflict alert with its box",
            [&] {
                bool checked = true;
                int const answer = dialogs->runAlertWithCheckBox(nullptr,
                    alert({QStringLiteral("Replace"), QStringLiteral("Skip"), QStringLiteral("Cancel")}),
                    QStringLiteral("Remember this decision for next conflict"), checked);
                EXPECT_FALSE(checked);
                return answer;
            },
            kFirstAlertButton + 2},
        {"text prompt",
            [&] {
                auto const text = dialogs->askForText(nullptr, markup, markup, QStringLiteral("a"), QString(), QIcon());
                return text ? kFirstAlertButton : 0;
            },
            0},
        {"saved connections", [&] { return runSavedConnectionPicker(nullptr, items, QIcon()).button; },
            kFirstAlertButton + 3},
    };
    for (Question const& question : questions) {
        for (bool const withEscape : {true, false}) {
            SCOPED_TRACE(std::string(question.what) + (withEscape ? ", Escape" : ", close button"));
            whenModalAppears([&](QWidget* dialog) {
                auto* first = dialog->findChildren<QPushButton*>().value(0);
                ASSERT_NE(first, nullptr);
                EXPECT_TRUE(first->isDefault()) << "the first button stays the default one";
                expectPlainTextLabels(dialog, std::string(question.what) != "saved connections");
                decline(dialog, withEscape);
            });
            EXPECT_EQ(question.ask(), question.declined);
        }
    }

    // The bug report and the licence show only their own words; they decline all the same.
    for (bool const withEscape : {true, false}) {
        SCOPED_TRACE(withEscape ? "Escape" : "close button");
        whenModalAppears([&](QWidget* dialog) {
            expectPlainTextLabels(dialog, false);
            decline(dialog, withEscape);
        });
        EXPECT_EQ(dialogs->editBugReport(nullptr, QStringLiteral("What happened?"), QIcon()), std::nullopt);
        whenModalAppears([&](QWidget* dialog) { decline(dialog, withEscape); });
        EXPECT_FALSE(dialogs->acceptLicence(QStringLiteral("terms"), QIcon()));
    }
}

} // namespace
} // namespace perchftp::app
