#include "app/dialogs/saved_connection_picker.hpp"
#include "app/shell_dialogs.hpp"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
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

QPushButton* buttonTitled(QWidget* dialog, QString const& title)
{
    for (auto* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == title) {
            return button;
        }
    }
    ADD_FAILURE() << "no button " << title.toStdString();
    return nullptr;
}

QStringList const kRows{QStringLiteral("Home    ada    home.example"), QStringLiteral("Work    work.example"),
    QStringLiteral("Backup    backup.example")};

TEST(SavedConnectionPicker, EscapeAnswersCancel)
{
    whenModalAppears([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kRows, QIcon());
    EXPECT_EQ(answer.button, kFirstAlertButton + 3);
}

TEST(SavedConnectionPicker, TheKeyboardMovesTheHighlightButOpenStillActsOnTheFirstRow)
{
    whenModalAppears([](QWidget* dialog) {
        auto* list = dialog->findChild<QListWidget*>();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Down);
        EXPECT_EQ(list->currentRow(), 2);
        buttonTitled(dialog, QStringLiteral("Open"))->click();
    });
    SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kRows, QIcon());
    EXPECT_EQ(answer.button, kFirstAlertButton);
    EXPECT_EQ(answer.row, 0);
}

TEST(SavedConnectionPicker, AMousePressChoosesTheRowForEveryButton)
{
    whenModalAppears([](QWidget* dialog) {
        auto* list = dialog->findChild<QListWidget*>();
        QRect const row = list->visualItemRect(list->item(1));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
        buttonTitled(dialog, QStringLiteral("Delete"))->click();
    });
    SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kRows, QIcon());
    EXPECT_EQ(answer.button, kFirstAlertButton + 2);
    EXPECT_EQ(answer.row, 1);
}

TEST(SavedConnectionPicker, ADoubleClickOpensThatRow)
{
    whenModalAppears([](QWidget* dialog) {
        auto* list = dialog->findChild<QListWidget*>();
        QPoint const centre = list->visualItemRect(list->item(2)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, centre);
    });
    SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kRows, QIcon());
    EXPECT_EQ(answer.button, kFirstAlertButton);
    EXPECT_EQ(answer.row, 2);
}

TEST(DesktopDialogs, AnAlertAnswersWithTheIndexOfTheButtonFromOneThousand)
{
    auto dialogs = createDesktopDialogs();
    whenModalAppears([](QWidget* dialog) { buttonTitled(dialog, QStringLiteral("Skip"))->click(); });
    AlertRequest request;
    request.messageText = QStringLiteral("File exists");
    request.buttons = {QStringLiteral("Replace"), QStringLiteral("Skip"), QStringLiteral("Cancel")};
    EXPECT_EQ(dialogs->runAlert(nullptr, request), kFirstAlertButton + 1);
}

TEST(DesktopDialogs, ATextPromptGivesTheTypedTextOnOkAndNothingOnCancel)
{
    auto dialogs = createDesktopDialogs();
    whenModalAppears([](QWidget* dialog) {
        auto* field = dialog->findChild<QLineEdit*>();
        EXPECT_EQ(field->text(), "example.org");
        EXPECT_EQ(field->placeholderText(), "My Server");
        field->setText(QStringLiteral("  Production  "));
        buttonTitled(dialog, QStringLiteral("OK"))->click();
    });
    EXPECT_EQ(dialogs->askForText(nullptr, QStringLiteral("Save Connection"), QStringLiteral("Enter a saved connection name."),
                  QStringLiteral("example.org"), QStringLiteral("My Server"), QIcon()),
        std::optional<QString>(QStringLiteral("  Production  ")));

    whenModalAppears([](QWidget* dialog) { buttonTitled(dialog, QStringLiteral("Cancel"))->click(); });
    EXPECT_EQ(dialogs->askForText(nullptr, QStringLiteral("Rename"), QString(), QStringLiteral("a"), QString(), QIcon()),
        std::nullopt);
}

TEST(DesktopDialogs, TheLicenceIsAcceptedOnlyWithAccept)
{
    auto dialogs = createDesktopDialogs();
    whenModalAppears([](QWidget* dialog) { buttonTitled(dialog, QStringLiteral("Decline"))->click(); });
    EXPECT_FALSE(dialogs->acceptLicence(QStringLiteral("terms"), QIcon()));
    whenModalAppears([](QWidget* dialog) { buttonTitled(dialog, QStringLiteral("Accept"))->click(); });
    EXPECT_TRUE(dialogs->acceptLicence(QStringLiteral("terms"), QIcon()));
}

} // namespace
} // namespace perchftp::app
