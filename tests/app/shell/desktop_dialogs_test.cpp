// The real Qt dialogs behind the shell's questions: what each answers when a user presses its
// buttons or declines it with Escape or the window's close button, and words shown as typed.
#include "app/shell_dialogs.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
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

// The message box and the alert with an accessory are the two dialogs behind every question. The
// text prompt, the bug report and the saved connections' picker are accessory alerts with Cancel
// among their buttons, as the conflict alert is; the licence's Decline is the other way out.
TEST(DesktopDialogs, EscapeAndTheCloseButtonDeclineEveryKindOfQuestionWithItsCancellingAnswer)
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
    QStringList const replaceSkipCancel{QStringLiteral("Replace"), QStringLiteral("Skip"), QStringLiteral("Cancel")};
    struct Question {
        char const* what;
        std::function<int()> ask;
        int declined;
    } const questions[] = {
        {"alert with Cancel last of three", [&] { return dialogs->runAlert(nullptr, alert(replaceSkipCancel)); },
            kFirstAlertButton + 2},
        {"conflict alert with its box",
            [&] {
                bool checked = true;
                int const answer = dialogs->runAlertWithCheckBox(nullptr, alert(replaceSkipCancel),
                    QStringLiteral("Remember this decision for next conflict"), checked);
                EXPECT_FALSE(checked);
                return answer;
            },
            kFirstAlertButton + 2},
        {"licence", [&] { return dialogs->acceptLicence(QStringLiteral("terms"), QIcon()) ? 1 : 0; }, 0},
    };
    for (Question const& question : questions) {
        for (bool const withEscape : {true, false}) {
            SCOPED_TRACE(std::string(question.what) + (withEscape ? ", Escape" : ", close button"));
            whenModalAppears([&](QWidget* dialog) {
                for (auto* label : dialog->findChildren<QLabel*>()) {
                    EXPECT_EQ(label->textFormat(), Qt::PlainText) << "shows its words as typed: " << label->text().toStdString();
                }
                decline(dialog, withEscape);
            });
            EXPECT_EQ(question.ask(), question.declined);
        }
    }

    // Pressed, the buttons answer from 1000 on and the licence is accepted.
    whenModalAppears([](QWidget* dialog) { click(dialog, QStringLiteral("Skip")); });
    EXPECT_EQ(dialogs->runAlert(nullptr, alert(replaceSkipCancel)), kFirstAlertButton + 1);
    whenModalAppears([](QWidget* dialog) { click(dialog, QStringLiteral("Accept")); });
    EXPECT_TRUE(dialogs->acceptLicence(QStringLiteral("terms"), QIcon()));
}

} // namespace
} // namespace perchftp::app
