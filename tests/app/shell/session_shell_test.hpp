#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_controller.hpp"
#include "app/status/connect_button.hpp"
#include "protocol/curl/curl_protocol.hpp"
#include "protocol/protocol_factory.hpp"
#include "support/qt_printers.hpp"
#include "support/screen_agreement.hpp"
#include "support/started_shell.hpp"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QStringList>

#include <memory>
#include <string>

namespace perchftp::test {

// Records what the user is shown while the controller works, in order: the popup's message when
// the popup appears and at the start of every blocking session call, and the banner's text at
// the same moments. What the popup says during a call is what the user reads while waiting, so
// at each call it also checks that the window system already holds the popup's words: no event
// loop turn comes to draw them before the call returns.
//
// Sessions are made by the real libcurl adapters, each wrapped in a witness that takes a look
// before passing the call on. Only one recorder may exist at a time.
class WhatTheUserSees : public QObject {
public:
    explicit WhatTheUserSees(app::PerchFtpShellController& controller)
        : controller_(controller)
    {
        current_ = this;
        qApp->installEventFilter(this);
        protocol::ensureDefaultProtocolAdapters(); // so that a first create() does not undo the witnesses
        installWitnesses();
        forget();
    }
    ~WhatTheUserSees() override
    {
        protocol::curl::registerCurlProtocolAdapters();
        current_ = nullptr;
    }

    // What was seen since the last forget(), ending with what is shown now.
    QStringList const& popupMessages()
    {
        look();
        return popupMessages_;
    }
    QStringList const& bannerTexts()
    {
        look();
        return bannerTexts_;
    }
    // The popup messages of the session calls that began with the popup not drawn as worded.
    QStringList const& undrawnPopupCalls() const { return undrawnPopupCalls_; }
    // Starts a new record; the banner's present text does not count as seen.
    void forget()
    {
        popupMessages_.clear();
        bannerTexts_.clear();
        undrawnPopupCalls_.clear();
        bannerBaseline_ = controller_.statusLabel()->text();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show && watched == controller_.statusPopupWindow()) {
            look();
        }
        return false;
    }

private:
    class WitnessedSession;

    void look()
    {
        if (QLabel* message = controller_.statusPopupMessage()) {
            append(popupMessages_, message->text(), QString());
        }
        append(bannerTexts_, controller_.statusLabel()->text(), bannerBaseline_);
    }
    void checkPopupDrawn()
    {
        QLabel* title = controller_.statusPopupTitle();
        QLabel* message = controller_.statusPopupMessage();
        if (title && message && !(drawnAsWorded(title) && drawnAsWorded(message))) {
            undrawnPopupCalls_.push_back(message->text());
        }
    }
    // What the screen shows at the label's place equals a fresh rendering of its window there.
    static bool drawnAsWorded(QLabel* label)
    {
        QWidget* window = label->window();
        QImage const screen = window->screen()->grabWindow(0).toImage();
        return label->isVisible() && shareDrawnAsRendered(screen, window->mapToGlobal(QPoint()), label) == 1.0;
    }
    static void append(QStringList& texts, QString const& text, QString const& baseline)
    {
        if (!text.isEmpty() && text != (texts.isEmpty() ? baseline : texts.back())) {
            texts.push_back(text);
        }
    }
    // A session may outlive its recorder: the controller's teardown disconnects it.
    static void lookIfWatched()
    {
        if (current_) {
            current_->look();
            current_->checkPopupDrawn();
        }
    }
    static void installWitnesses()
    {
        protocol::ProtocolFactory::registerProtocol("ftp", [] { return witnessed("ftp"); });
        protocol::ProtocolFactory::registerProtocol("ftps", [] { return witnessed("ftps"); });
        protocol::ProtocolFactory::registerProtocol("sftp", [] { return witnessed("sftp"); });
    }
    static protocol::IRemoteSession* witnessed(char const* name);

    static inline WhatTheUserSees* current_ = nullptr;
    app::PerchFtpShellController& controller_;
    QStringList popupMessages_;
    QStringList bannerTexts_;
    QStringList undrawnPopupCalls_;
    QString bannerBaseline_;
};

class WhatTheUserSees::WitnessedSession final : public protocol::IRemoteSession {
public:
    using Result = protocol::SessionResult;
    explicit WitnessedSession(protocol::IRemoteSession* real)
        : real_(real)
    {
    }

    Result connect(std::string const& host, int port, std::string const& user, std::string const& password) override
    {
        return lookIfWatched(), real_->connect(host, port, user, password);
    }
    Result disconnect() override { return lookIfWatched(), real_->disconnect(); }
    Result list(std::string const& path, std::vector<protocol::RemoteEntry>& entries) override
    {
        return lookIfWatched(), real_->list(path, entries);
    }
    Result upload(protocol::TransferParams const& params, protocol::TransferCallback callback) override
    {
        return lookIfWatched(), real_->upload(params, std::move(callback));
    }
    Result download(protocol::TransferParams const& params, protocol::TransferCallback callback) override
    {
        return lookIfWatched(), real_->download(params, std::move(callback));
    }
    Result rename(std::string const& from, std::string const& to) override { return lookIfWatched(), real_->rename(from, to); }
    Result remove(std::string const& path) override { return lookIfWatched(), real_->remove(path); }
    Result mkdir(std::string const& path) override { return lookIfWatched(), real_->mkdir(path); }
    Result chmod(std::string const& path, int mode) override { return lookIfWatched(), real_->chmod(path, mode); }
    bool isConnected() const override { return real_->isConnected(); }

private:
    std::unique_ptr<protocol::IRemoteSession> real_;
};

// The real adapter is made by putting the built-in makers back for a moment.
inline protocol::IRemoteSession* WhatTheUserSees::witnessed(char const* name)
{
    protocol::curl::registerCurlProtocolAdapters();
    protocol::IRemoteSession* real = protocol::ProtocolFactory::create(name);
    installWitnesses();
    lookIfWatched();
    return real ? new WitnessedSession(real) : nullptr;
}

// The started shell with the means to type into its connection form and watch what the user is
// shown.
class SessionShellTest : public StartedShellTest {
protected:
    void SetUp() override { startWatchedShell(); }
    void TearDown() override
    {
        if (seen_) {
            EXPECT_EQ(seen_->undrawnPopupCalls(), QStringList()) << "session calls that began before the popup was drawn";
        }
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
    }    // Ends the shell as the program's end would and starts it again on the same folders.
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
        for (QAction* menu : controller().mainMenu()->actions()) {
            for (QAction* item : menu->text() == menuTitle ? menu->menu()->actions() : QList<QAction*>{}) {
                if (item->text() == itemTitle) {
                    return item->trigger();
                }
            }
        }
        ADD_FAILURE() << "no menu item " << itemTitle.toStdString();
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
    QStringList remoteNames() { return remoteColumn(&app::PaneEntry::name); }
    QStringList remotePaths() { return remoteColumn(&app::PaneEntry::path); }
    bool remotePaneShowsPlaceholder(QString const& text)
    {
        auto const& entries = controller().remotePane()->entries();
        return entries.size() == 1 && entries.front().placeholder && entries.front().name == text;
    }

    WhatTheUserSees& seen() { return *seen_; }

private:
    QStringList remoteColumn(QString app::PaneEntry::*field)
    {
        QStringList texts;
        for (app::PaneEntry const& entry : controller().remotePane()->entries()) {
            texts.push_back(entry.*field);
        }
        return texts;
    }

    std::unique_ptr<WhatTheUserSees> seen_;
};

} // namespace perchftp::test
