#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/shell_controller.hpp"
#include "app/status/connect_button.hpp"
#include "support/qt_printers.hpp"
#include "support/started_shell.hpp"

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStringList>

#include <memory>
#include <string>

namespace perchftp::test {

// Records what the user is shown while the controller works: each message the popup's label is
// painted with, in order, and the banner's text at the same moments and when a listing reaches
// the remote pane. A session call blocks the main thread, so a message that is not painted
// before its call begins is never painted at all: it is missing from the record.
class WhatTheUserSees : public QObject {
public:
    explicit WhatTheUserSees(app::PerchFtpShellController& controller)
        : controller_(controller)
    {
        qApp->installEventFilter(this);
        connect(controller.remotePane()->model(), &QAbstractItemModel::modelAboutToBeReset, this,
            [this] { append(bannerTexts_, controller_.statusLabel()->text(), bannerBaseline_); });
        forget();
    }

    // What was seen since the last forget(), ending with what the banner shows now.
    QStringList const& popupMessages() const { return popupMessages_; }
    QStringList const& bannerTexts()
    {
        append(bannerTexts_, controller_.statusLabel()->text(), bannerBaseline_);
        return bannerTexts_;
    }
    // Starts a new record; the banner's present text does not count as seen.
    void forget()
    {
        popupMessages_.clear();
        bannerTexts_.clear();
        bannerBaseline_ = controller_.statusLabel()->text();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        QLabel* message = controller_.statusPopupMessage();
        if (event->type() == QEvent::Paint && message && watched == message) {
            append(popupMessages_, message->text(), QString());
            append(bannerTexts_, controller_.statusLabel()->text(), bannerBaseline_);
        }
        return false;
    }

private:
    static void append(QStringList& texts, QString const& text, QString const& baseline)
    {
        if (!text.isEmpty() && text != (texts.isEmpty() ? baseline : texts.back())) {
            texts.push_back(text);
        }
    }

    app::PerchFtpShellController& controller_;
    QStringList popupMessages_;
    QStringList bannerTexts_;
    QString bannerBaseline_;
};

// The started shell with the means to type into its connection form and watch what the user is
// shown.
class SessionShellTest : public StartedShellTest {
protected:
    void SetUp() override { startWatchedShell(); }
    void TearDown() override
    {
        seen_.reset();
        StartedShellTest::TearDown();
    }
    void startWatchedShell()
    {
        startShell();
        // Let the start-up's own popup go, so that each test sees only its own, and wait for the
        // main window that the popups float in.
        ASSERT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));
        ASSERT_TRUE(waitUntil([&] { return controller().hostWindow()->isVisible(); }));
        seen_ = std::make_unique<WhatTheUserSees>(controller());
    }
    // Ends the shell as the program's end would and starts it again on the same folders.
    void restartShell()
    {
        seen_.reset();
        stopShell();
        startWatchedShell();
    }

    void fillForm(QString const& protocol, QString const& host, QString const& port, std::string const& user = {},
        std::string const& password = {})
    {
        controller().protocolField()->setCurrentText(protocol);
        controller().hostField()->setText(host);
        controller().portField()->setText(port);
        controller().userField()->setText(QString::fromStdString(user));
        controller().secretField()->setText(QString::fromStdString(password));
    }
    // The popup's messages, in order, of a connect to 127.0.0.1 up to the step that failed, or to
    // the end when `failure` is empty.
    static QStringList connectingSteps(QString const& protocol, int port, QString const& failure = {})
    {
        QStringList steps{QStringLiteral("Resolving 127.0.0.1:%1 via %2...").arg(QString::number(port), protocol),
            QStringLiteral("Preparing protocol adapter..."), QStringLiteral("Opening session for 127.0.0.1...")};
        return steps << (failure.isEmpty() ? QStringList{QStringLiteral("Session opened. Loading remote directory..."),
                                                 QStringLiteral("Connected to 127.0.0.1.")}
                                           : QStringList{failure});
    }

    QString banner() { return controller().statusLabel()->text(); }
    QStringList remoteNames()
    {
        QStringList names;
        for (app::PaneEntry const& entry : controller().remotePane()->entries()) {
            names.push_back(entry.placeholder ? "(" + entry.name + ")" : entry.name);
        }
        return names;
    }
    WhatTheUserSees& seen() { return *seen_; }

private:
    std::unique_ptr<WhatTheUserSees> seen_;
};

} // namespace perchftp::test
