// The user's connection to a server: connecting from the form, disconnecting, refreshing both
// panes and listing the remote one. Every session call blocks the main thread; the popup draws
// itself at once whenever it opens or its words change, since no event loop turn comes until
// the call returns.
#include "app/shell_controller.hpp"

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/remote_rows.hpp"
#include "app/shell_text.hpp"
#include "protocol/protocol_factory.hpp"
#include "protocol/remote_session.hpp"

#include <QComboBox>
#include <QLineEdit>

namespace perchftp::app {

namespace {

bool isRootLike(QString const& path)
{
    return path.isEmpty() || path == QLatin1String("/") || path == QLatin1String(".");
}

QString messageOf(protocol::SessionResult const& result)
{
    return QString::fromUtf8(result.message.data(), static_cast<qsizetype>(result.message.size()));
}

} // namespace

QString PerchFtpShellController::selectedProtocolTitle() const
{
    return protocolField_ && protocolField_->currentIndex() >= 0 ? protocolField_->currentText() : QString();
}

std::string PerchFtpShellController::selectedProtocolName() const
{
    QString const title = selectedProtocolTitle();
    std::string name = detail::lowerAscii(detail::trim(detail::qtToCpp(title.isNull() ? QStringLiteral("ftp") : title)));
    return name.empty() ? std::string("ftp") : name;
}

void PerchFtpShellController::endSession()
{
    if (session_) {
        (void)session_->disconnect();
        delete session_;
        session_ = nullptr;
    }
}

// A connect always replaces the session there is, without asking. The port has no upper bound
// here and the host is taken as typed, blanks included: the server's answer judges them.
void PerchFtpShellController::connectSession()
{
    std::string const protocolName = selectedProtocolName();
    QString const protocolText = QString::fromStdString(protocolName);
    QString const host = hostField_->text();
    int const port = detail::leadingIntValue(portField_->text());
    if (host.isEmpty() || port <= 0) {
        setStatusText(QStringLiteral("Host and port are required to connect."), true);
        return;
    }

    showConnectionPopupWithTitle(QStringLiteral("Connecting"),
        QStringLiteral("Resolving %1:%2 via %3...").arg(host, QString::number(port), protocolText));
    if (session_) {
        updateConnectionPopupMessage(QStringLiteral("Closing previous session..."));
        endSession();
    }

    updateConnectionPopupMessage(QStringLiteral("Preparing protocol adapter..."));
    session_ = protocol::ProtocolFactory::create(protocolName.c_str());
    if (!session_) {
        QString const text = QStringLiteral("Protocol adapter not available in this build.");
        setStatusText(text, true);
        closeConnectionPopupWithMessage(text, false);
        return;
    }

    std::string const user = detail::qtToCpp(userField_->text());
    std::string const password = detail::qtToCpp(secretField_->text());
    updateConnectionPopupMessage(QStringLiteral("Opening session for %1...").arg(host));
    protocol::SessionResult const result = session_->connect(detail::qtToCpp(host), port, user, password);
    if (!result.ok) {
        // The controls keep their look: after a replaced session they may still offer "Disconnect".
        QString const text = QStringLiteral("Connect failed: ") + messageOf(result);
        setStatusText(text, true);
        endSession();
        closeConnectionPopupWithMessage(text, false);
        return;
    }

    updateConnectionPopupMessage(QStringLiteral("Session opened. Loading remote directory..."));
    setStatusText(QStringLiteral("Connected (%1)").arg(protocolText), false);
    refreshControlState();
    // The empty path lists the login folder, with the root ladder behind it should that fail.
    remotePane_->setPathValue(QString(QLatin1String("")));
    remotePane_->refresh();
    logMessage("Connected to " + detail::qtToCpp(host));
    refreshRemoteDirectory();
    closeConnectionPopupWithMessage(QStringLiteral("Connected to %1.").arg(host), true);
}

// Cannot fail as far as the user can tell: the server's answer to the goodbye is not read.
void PerchFtpShellController::disconnectSession()
{
    if (!session_) {
        QString const text = QStringLiteral("Session already disconnected.");
        showConnectionPopupWithTitle(QStringLiteral("Disconnecting"), text);
        setStatusText(text, false);
        closeConnectionPopupWithMessage(text, true);
        return;
    }

    showConnectionPopupWithTitle(
        QStringLiteral("Disconnecting"), QStringLiteral("Disconnecting from %1...").arg(hostField_->text()));
    endSession();
    setStatusText(QStringLiteral("Disconnected."), false);
    refreshControlState();
    remotePane_->showPlaceholder(QStringLiteral("Not connected."));
    reloadQueueSummary();
    closeConnectionPopupWithMessage(QStringLiteral("Disconnected successfully."), true);
}

void PerchFtpShellController::refreshSession()
{
    showConnectionPopupWithTitle(QStringLiteral("Refreshing"), QStringLiteral("Refreshing local and remote panes..."));
    refreshLocalDirectory();
    refreshRemoteDirectory();
    refreshControlState();
    reloadQueueSummary();
    closeConnectionPopupWithMessage(QStringLiteral("Refresh complete."), true);
}

void PerchFtpShellController::refreshLocalDirectory()
{
    if (localPane_) {
        localPane_->refresh();
    }
}

void PerchFtpShellController::refreshRemoteDirectory()
{
    if (!isConnected() || !remotePane_) {
        if (remotePane_) {
            remotePane_->showPlaceholder(QStringLiteral("Not connected."));
        }
        setStatusText(QStringLiteral("Not connected to remote session. Connect first."), false);
        reloadQueueSummary();
        return;
    }

    QString path = remotePane_->pathValue();
    remotePane_->setPathValue(path);
    std::vector<protocol::RemoteEntry> entries;
    protocol::SessionResult result = session_->list(detail::qtToCpp(path), entries);

    // The root ladder: a refused root is tried as "/" and then as the empty path.
    if (!result.ok && isRootLike(path)) {
        for (char const* attempt : {"/", ""}) {
            entries.clear();
            protocol::SessionResult retry = session_->list(attempt, entries);
            if (retry.ok) {
                result = std::move(retry);
                path = path.isEmpty() ? QString(QLatin1String("")) : QStringLiteral("/");
                remotePane_->setPathValue(QString(QLatin1String("")));
                remotePane_->setPathValue(path);
                break;
            }
        }
    }

    if (!result.ok) {
        QString const message = messageOf(result);
        remotePane_->showPlaceholder(QStringLiteral("List failed: %1").arg(message));
        logMessage("Remote list failed: " + result.message);
        setStatusText(QStringLiteral("Remote list failed: %1").arg(message), true);
        return;
    }

    QString base = remotePane_->pathValue();
    if (base.isEmpty()) {
        base = QStringLiteral("/");
    }
    remotePane_->showRemoteEntries(remotePaneRows(entries, base), base);
    setStatusText(QStringLiteral("Remote listing refreshed."), false);
}

} // namespace perchftp::app
