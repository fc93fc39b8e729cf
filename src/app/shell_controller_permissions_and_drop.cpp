// Two remote-pane requests: changing the permissions of remote items, and a local item dropped
// on the remote pane.
#include "app/shell_controller.hpp"

#include "app/pane/pane_paths.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_prompts.hpp"
#include "app/transfers/permission_modes.hpp"
#include "app/transfers/transfer_paths.hpp"

#include <QLineEdit>

namespace perchftp::app {

void PerchFtpShellController::didRequestChangePermissions(PerchFilePaneController*, PaneEntries const& items,
    bool isRemote)
{
    changePermissionsForItems(items, isRemote);
}

// The first item proposes the mode; the change goes to every item and does not descend into
// folders. The first failure ends it, and the items before keep their new mode.
void PerchFtpShellController::changePermissionsForItems(PaneEntries const& items, bool isRemote)
{
    if (items.isEmpty()) {
        setStatusText(QStringLiteral("Select one or more remote items to change permissions."), true);
        return;
    }
    if (!isRemote) {
        setStatusText(QStringLiteral("Remote-only operation."), true);
        return;
    }
    if (!isConnected()) {
        setStatusText(QStringLiteral("Connect before changing permissions."), true);
        return;
    }
    QString proposal = detail::permissionDisplayFromModeString(detail::orEmpty(items.first().permissions));
    if (proposal.isEmpty()) {
        proposal = QStringLiteral("755");
    }
    std::optional<QString> const typed = promptForText(dialogs(), hostWindow_, QStringLiteral("Change Permissions"),
        QStringLiteral("Enter numeric octal (644) or symbolic (rwxr-xr-x)."), proposal,
        QStringLiteral("644 or rwxr-xr-x"));
    if (!typed) {
        setStatusText(QStringLiteral("Permission update canceled."), false);
        return;
    }
    int const mode = detail::parsePermissionMode(*typed);
    if (mode < 0) {
        setStatusText(QStringLiteral("Invalid permission format. Use octal (644) or symbolic (rwxr-xr-x)."), true);
        return;
    }
    QString const display = QString::number(mode, 8);
    showConnectionPopupWithTitle(QStringLiteral("Changing Permissions"),
        QStringLiteral("Applying permissions to selected remote item(s)..."));
    for (PaneEntry const& item : items) {
        if (item.path.isEmpty()) {
            continue;
        }
        protocol::SessionResult const changed = session_->chmod(detail::pathBytes(item.path), mode);
        if (!changed.ok) {
            failFileOperation(QStringLiteral("Remote permission change failed: %1")
                                  .arg(detail::messageText(changed.message)));
            return;
        }
    }
    QString const done = QStringLiteral("Updated permissions of %1 remote item(s) to %2.").arg(items.size()).arg(display);
    finishFileOperation(done, done, true);
}

// One local item dropped on the remote pane goes into the folder it was dropped on. The pane
// hands over its current folder for a drop on a file row or below the rows, so that path is a
// folder whatever its rows hold (an empty folder's only row is a file-like placeholder of that
// path). runTransfer() checks everything else.
void PerchFtpShellController::didDropPaths(PerchFilePaneController*, QStringList const& paths,
    QString const& targetPath, bool isRemote)
{
    if (!isRemote || paths.isEmpty()) {
        return;
    }
    if (paths.size() > 1) {
        setStatusText(QStringLiteral("Multi-file drag upload is not implemented yet. Drop one item at a time."), true);
        return;
    }
    QString const dropped = paths.first();
    if (dropped.isEmpty()) {
        setStatusText(QStringLiteral("Dropped item path is invalid."), true);
        return;
    }
    QString target = targetPath.isEmpty() ? QStringLiteral("/") : targetPath;
    bool isFolder = target == QLatin1String("/") || target.endsWith(u'/')
        || (remotePane_ && target == remotePane_->pathValue());
    if (!isFolder && remotePane_) {
        for (PaneEntry const& entry : remotePane_->entries()) {
            if (entry.path == target) {
                isFolder = entry.dir;
                break;
            }
        }
    }
    if (isFolder) {
        target = detail::pathText(
            detail::joinRemotePath(detail::pathBytes(target), detail::pathBytes(detail::lastPathComponent(dropped))));
    }
    if (localTransferField_) {
        localTransferField_->setText(dropped);
    }
    if (remoteTransferField_) {
        remoteTransferField_->setText(target);
    }
    runTransfer(transfer::JobType::Upload);
}

} // namespace perchftp::app
