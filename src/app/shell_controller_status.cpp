// The three surfaces that tell the user what is going on: the status banner, the connection
// popup and the state of the toolbar controls.
#include "app/shell_controller.hpp"

#include "app/app_icons.hpp"
#include "app/status/connect_button.hpp"
#include "app/status/connection_light.hpp"
#include "app/status/paint_now.hpp"
#include "app/status/status_banner.hpp"
#include "app/status/status_popup.hpp"
#include "app/status/system_colours.hpp"

#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

namespace perchftp::app {

namespace {

constexpr int kPopupCloseDelayMs = 600;

QString statusPrefix(bool isError)
{
    return isError ? QStringLiteral("⚠️ ") : QStringLiteral("✅ ");
}

// A popup floating inside the host window keeps itself centred there; only one of its own is
// placed here.
void centrePopup(QWidget* popup, QWidget* host)
{
    if (!popup->isWindow()) {
        return;
    }
    QRect frame = popup->frameGeometry();
    if (host && host->isVisible()) {
        frame.moveCenter(host->frameGeometry().center());
    } else if (QScreen* screen = popup->screen()) {
        frame.moveCenter(screen->availableGeometry().center());
    }
    popup->move(frame.topLeft());
}

} // namespace

void PerchFtpShellController::refreshControlState()
{
    bool const connected = isConnected();
    if (connectButton_) {
        connectButton_->setEnabled(true);
        connectButton_->setText(connected ? QStringLiteral("Disconnect") : QStringLiteral("Connect"));
        connectButton_->setIcon(themedIcon(connected ? QStringLiteral("xmark.octagon") : QStringLiteral("network")));
        connectButton_->setPrimaryColor(connected ? systemRedColor() : systemGreenColor());
        disconnect(connectButton_, &QPushButton::clicked, this, nullptr);
        if (connected) {
            connect(connectButton_, &QPushButton::clicked, this, &PerchFtpShellController::disconnectSession);
        } else {
            connect(connectButton_, &QPushButton::clicked, this, &PerchFtpShellController::connectSession);
        }
    }
    if (disconnectButton_) {
        disconnectButton_->setEnabled(false);
        disconnectButton_->setVisible(false);
    }
    for (QPushButton* button : {refreshButton_, uploadButton_, downloadButton_}) {
        if (button) {
            button->setEnabled(connected);
        }
    }
    updateConnectButtonAnimationForConnected(connected);
    if (connectionStatusText_) {
        connectionStatusText_->setText(connected ? QStringLiteral("Connected") : QStringLiteral("Disconnected"));
    }
    if (connectionStatusLight_) {
        connectionStatusLight_->setColor(connected ? systemGreenColor() : systemRedColor());
    }
}

void PerchFtpShellController::updateConnectButtonAnimationForConnected(bool connected)
{
    if (connectButton_) {
        connectButton_->restartPulse(connected ? systemRedColor() : systemGreenColor());
    }
}

void PerchFtpShellController::setStatusText(QString const& text, bool isError)
{
    if (!statusLabel_) {
        return;
    }
    statusLabel_->setText(statusPrefix(isError) + text);
    if (statusBanner_) {
        statusBanner_->applyPalette(isError);
    }
}

void PerchFtpShellController::showConnectionPopupWithTitle(QString const& title, QString const& message)
{
    takeAwayPopup();
    QWidget* window = createConnectionPopupWindow(appIconImage(), title, hostWindow_);
    if (!window) {
        return;
    }
    for (QObject* child : window->children()) {
        if (auto* label = qobject_cast<QLabel*>(child); label && widgetTag(label) == kPopupTitleTag) {
            statusPopupTitle_ = label;
        } else if (label && widgetTag(label) == kPopupMessageTag) {
            statusPopupMessage_ = label;
        } else if (auto* progress = qobject_cast<QProgressBar*>(child)) {
            statusPopupProgress_ = progress;
        } else if (auto* icon = qobject_cast<PerchSwimmingIcon*>(child)) {
            statusPopupIcon_ = icon;
            icon->startSwimming();
        }
    }
    updateConnectionPopupTitle(title);
    if (statusPopupMessage_) {
        statusPopupMessage_->setText(message);
        statusPopupMessage_->setTextInteractionFlags(Qt::NoTextInteraction);
    }
    if (statusPopupProgress_) {
        statusPopupProgress_->setRange(0, 0);
    }
    statusPopupWindow_ = window;
    centrePopup(window, hostWindow_);
    window->show();
    if (!hostWindow_) {
        window->raise();
        window->activateWindow();
    }
    centrePopup(window, hostWindow_);
    if (hostWindow_) {
        paintWindowAreaNow(hostWindow_, hostWindow_->rect());
    }
}

void PerchFtpShellController::updateConnectionPopupTitle(QString const& title)
{
    if (statusPopupTitle_) {
        statusPopupTitle_->setText(title.isNull() ? QStringLiteral("Working...") : title);
        drawConnectionPopupNow();
    }
}

void PerchFtpShellController::updateConnectionPopupMessage(QString const& message)
{
    if (statusPopupMessage_) {
        setConnectionPopupMessageText(message);
        drawConnectionPopupNow();
    }
}

// For the texts that a transfer posts while it runs: they arrive through the event loop, which
// draws them on its own, and repainting each of thousands at once would slow the queue down.
void PerchFtpShellController::setConnectionPopupMessageText(QString const& message)
{
    if (statusPopupMessage_) {
        statusPopupMessage_->setText(message.isNull() ? QString(QLatin1String("")) : message);
    }
}

// The workflows call the session right after a popup text changes, and the main thread sees no
// event loop turn until the call returns. So the popup is painted at once. Only painted: pumping
// events here would deliver user input and posted work (progress texts, the delayed close) in
// the middle of a step.
void PerchFtpShellController::drawConnectionPopupNow()
{
    if (QWidget* popup = statusPopupWindow_.data()) {
        QWidget* window = popup->window();
        paintWindowAreaNow(window, QRect(popup->mapTo(window, QPoint()), popup->size()));
    }
}

// The delayed close takes away whichever popup is open when it fires, not the one it was
// scheduled for, so a popup opened within the delay goes with it.
void PerchFtpShellController::closeConnectionPopupWithMessage(QString const& message, bool /*success*/)
{
    if (statusPopupProgress_) {
        statusPopupProgress_->setRange(0, 100);
        statusPopupProgress_->setValue(100);
    }
    if (statusPopupIcon_) {
        statusPopupIcon_->stopSwimming();
    }
    if (!message.isNull()) {
        updateConnectionPopupMessage(message);
    }
    QTimer::singleShot(kPopupCloseDelayMs, this, [this] {
        if (statusPopupWindow_) {
            takeAwayPopup();
        }
    });
}

void PerchFtpShellController::takeAwayPopup()
{
    QWidget* window = statusPopupWindow_.data();
    statusPopupWindow_ = nullptr;
    statusPopupTitle_ = nullptr;
    statusPopupMessage_ = nullptr;
    statusPopupProgress_ = nullptr;
    statusPopupIcon_ = nullptr;
    if (window) {
        window->hide();
        delete window;
    }
}

} // namespace perchftp::app
