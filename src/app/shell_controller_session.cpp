// The session as the panes see it: refreshing both panes and listing the remote one.
#include "app/shell_controller.hpp"

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/remote_rows.hpp"
#include "app/shell_text.hpp"
#include "protocol/remote_session.hpp"

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
