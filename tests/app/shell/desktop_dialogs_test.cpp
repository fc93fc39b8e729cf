#include "app/dialogs/saved_connection_picker.hpp"
#include "app/shell_dialogs.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
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

// Presses the row with the mouse, as a user picks it.
void pressRow(QListWidget* list, int row, bool twice = false)
{
    QPoint const centre = list->visualItemRect(list->item(row)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre);
    if (twice) {
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, centre);
    }
}

TEST(SavedConnectionPicker, AnswersWithTheButtonAndTheRowLastPressedWithTheMouse)
{
    struct Row {
        char const* what;
        std::function<void(QWidget*, QListWidget*)> step;
        int button;
        int row;
    } const rows[] = {
        {"Escape is Cancel", [](QWidget* dialog, QListWidget*) { QTest::keyClick(dialog, Qt::Key_Escape); },
            kFirstAlertButton + 3, -1},
        {"the keyboard moves the highlight but Open acts on row 0",
            [](QWidget* dialog, QListWidget* list) {
                list->setFocus();
                QTest::keyClick(list, Qt::Key_Down);
                QTest::keyClick(list, Qt::Key_Down);
                EXPECT_EQ(list->currentRow(), 2);
                click(dialog, QStringLiteral("Open"));
            },
            kFirstAlertButton, 0},
        {"a mouse press chooses the row for every button",
            [](QWidget* dialog, QListWidget* list) {
                pressRow(list, 1);
                click(dialog, QStringLiteral("Delete"));
            },
            kFirstAlertButton + 2, 1},
        {"a double click opens that row", [](QWidget*, QListWidget* list) { pressRow(list, 2, true); }, kFirstAlertButton, 2},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        whenModalAppears([&](QWidget* dialog) { row.step(dialog, dialog->findChild<QListWidget*>()); });
        SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr,
            {QStringLiteral("Home    ada    home.example"), QStringLiteral("Work    work.example"),
                QStringLiteral("Backup    backup.example")},
            QIcon());
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

} // namespace
} // namespace perchftp::app
