#include "app/dialogs/saved_connection_picker.hpp"
#include "app/dialogs/saved_connection_table.hpp"
#include "app/shell_dialogs.hpp"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
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

std::vector<SavedConnectionItem> const kItems{{1, "Home", "ftp", "home.example", "ada", "", 21, "", ""},
    {2, "Work", "sftp", "work.example", "", "", 22, "", ""}, {3, "Backup", "ftp", "backup.example", "", "", 21, "", ""}};

PerchSavedConnectionTableView* tableIn(QWidget* dialog)
{
    return dialog->findChild<PerchSavedConnectionTableView*>();
}

QPoint rowCentre(PerchSavedConnectionTableView* table, int row)
{
    return table->visualRect(table->model()->index(row, 0)).center();
}

TEST(SavedConnectionPicker, EscapeAnswersCancel)
{
    whenModalAppears([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kItems, QIcon());
    EXPECT_EQ(answer.button, kFirstAlertButton + 3);
}

TEST(SavedConnectionPicker, TheKeyboardMovesTheHighlightButOpenStillActsOnTheFirstRow)
{
    whenModalAppears([](QWidget* dialog) {
        auto* table = tableIn(dialog);
        EXPECT_EQ(table->model()->data(table->model()->index(0, 0)).toString(), "Home    ada    home.example");
        EXPECT_EQ(table->model()->data(table->model()->index(1, 0)).toString(), "Work    work.example");
        table->setFocus();
        QTest::keyClick(table, Qt::Key_Down);
        QTest::keyClick(table, Qt::Key_Down);
        EXPECT_EQ(table->selectedRow(), 2);
        buttonTitled(dialog, QStringLiteral("Open"))->click();
    });
    SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kItems, QIcon());
    EXPECT_EQ(answer.button, kFirstAlertButton);
    EXPECT_EQ(answer.row, 0);
}

TEST(SavedConnectionPicker, ALeftOrRightPressChoosesTheRowForEveryButtonAndEmptySpaceDoesNot)
{
    for (Qt::MouseButton const pressed : {Qt::LeftButton, Qt::RightButton}) {
        whenModalAppears([pressed](QWidget* dialog) {
            auto* table = tableIn(dialog);
            QTest::mouseClick(table->viewport(), pressed, {}, rowCentre(table, 1));
            EXPECT_EQ(table->selectedRow(), 1);
            QTest::mouseClick(table->viewport(), pressed, {}, QPoint(10, 170));
            buttonTitled(dialog, QStringLiteral("Delete"))->click();
        });
        SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kItems, QIcon());
        EXPECT_EQ(answer.button, kFirstAlertButton + 2);
        EXPECT_EQ(answer.row, 1) << "button " << int(pressed);
    }
}

TEST(SavedConnectionPicker, ADoubleClickOpensThatRow)
{
    whenModalAppears([](QWidget* dialog) {
        auto* table = tableIn(dialog);
        QPoint const centre = rowCentre(table, 2);
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, centre);
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, centre);
    });
    SavedConnectionAnswer const answer = runSavedConnectionPicker(nullptr, kItems, QIcon());
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
