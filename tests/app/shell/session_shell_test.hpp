#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/status/connect_button.hpp"
#include "support/started_shell.hpp"
#include "what_the_user_sees.hpp"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

#include <memory>
#include <ostream>
#include <string>

// Texts read as texts in the failures of these tests.
inline void PrintTo(QString const& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace perchftp::test {

// The started shell with the means to type into its connection form, use its menus, and watch
// what the user is shown.
class SessionShellTest : public StartedShellTest {
protected:
    void SetUp() override { startWatchedShell(); }
    void startWatchedShell()
    {
        seen_.reset();
        startShell();
        // Let the start-up's own popup go, so that each test sees only its own.
        ASSERT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));
        seen_ = std::make_unique<WhatTheUserSees>(controller());
    }
    void TearDown() override
    {
        seen_.reset();
        StartedShellTest::TearDown();
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

    void useMenuItem(QString const& menuTitle, QString const& itemTitle)
    {
        for (QAction* menuAction : controller().mainMenu()->actions()) {
            if (menuAction->menu() && menuAction->text() == menuTitle) {
                for (QAction* item : menuAction->menu()->actions()) {
                    if (item->text() == itemTitle) {
                        item->trigger();
                        return;
                    }
                }
            }
        }
        ADD_FAILURE() << "no menu item " << itemTitle.toStdString();
    }

    // The popup's messages, in order, of a connect to 127.0.0.1 that works.
    static QStringList connectingSteps(QString const& protocol, int port)
    {
        return {QStringLiteral("Resolving 127.0.0.1:%1 via %2...").arg(QString::number(port), protocol),
            QStringLiteral("Preparing protocol adapter..."), QStringLiteral("Opening session for 127.0.0.1..."),
            QStringLiteral("Session opened. Loading remote directory..."), QStringLiteral("Connected to 127.0.0.1.")};
    }

    QString banner() { return controller().statusLabel()->text(); }
    QString popupMessage()
    {
        return controller().statusPopupMessage() ? controller().statusPopupMessage()->text() : QString();
    }
    QStringList remoteNames()
    {
        QStringList names;
        for (app::PaneEntry const& entry : controller().remotePane()->entries()) {
            names.push_back(entry.name);
        }
        return names;
    }
    QStringList remotePaths()
    {
        QStringList paths;
        for (app::PaneEntry const& entry : controller().remotePane()->entries()) {
            paths.push_back(entry.path);
        }
        return paths;
    }
    bool remotePaneShowsPlaceholder(QString const& text)
    {
        auto const& entries = controller().remotePane()->entries();
        return entries.size() == 1 && entries.front().placeholder && entries.front().name == text;
    }

    WhatTheUserSees& seen() { return *seen_; }

private:
    std::unique_ptr<WhatTheUserSees> seen_;
};

} // namespace perchftp::test
