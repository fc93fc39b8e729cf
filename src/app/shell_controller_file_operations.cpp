// File operations started from a pane: create a folder, rename, delete one or several items.
// Each asks first, checks, opens the popup, does the work and reports in banner and popup.
#include "app/shell_controller.hpp"

#include "app/pane/pane_paths.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_prompts.hpp"
#include "app/transfers/local_file_operations.hpp"
#include "app/transfers/transfer_paths.hpp"

namespace perchftp::app {

void PerchFtpShellController::failFileOperation(QString const& text)
{
    setStatusText(text, true);
    closeConnectionPopupWithMessage(text, false);
}

// In a remote operation the refresh sets the banner to its own words at once: the popup tells of
// the operation and the banner of the last step.
void PerchFtpShellController::finishFileOperation(QString const& banner, QString const& popup, bool isRemote)
{
    setStatusText(banner, false);
    if (isRemote) {
        refreshRemoteDirectory();
    } else {
        refreshLocalDirectory();
    }
    closeConnectionPopupWithMessage(popup, true);
}

void PerchFtpShellController::didRequestCreateFolder(PerchFilePaneController*, bool isRemote)
{
    createFolderInPane(isRemote);
}

void PerchFtpShellController::didRequestRenamePath(PerchFilePaneController*, QString const& path, bool isRemote,
    bool isDirectory)
{
    renamePanePath(path, isRemote, isDirectory);
}

void PerchFtpShellController::didRequestDeletePath(PerchFilePaneController*, QString const& path, bool isRemote,
    bool isDirectory)
{
    deletePanePath(path, isRemote, isDirectory);
}

void PerchFtpShellController::didRequestDeletePaths(PerchFilePaneController*, PaneEntries const& items, bool isRemote)
{
    deleteSelectedItems(items, isRemote);
}

// The name is asked for first and the connection checked after.
void PerchFtpShellController::createFolderInPane(bool isRemote)
{
    std::optional<QString> const name = promptForText(dialogs(), hostWindow_, QStringLiteral("Create Folder"),
        isRemote ? QStringLiteral("Enter a new remote folder name.") : QStringLiteral("Enter a new local folder name."),
        QStringLiteral(""), QStringLiteral("New Folder"));
    if (!name) {
        setStatusText(QStringLiteral("Folder creation canceled."), false);
        return;
    }
    if (isRemote) {
        createRemoteFolder(*name);
    } else {
        createLocalFolder(*name);
    }
}

void PerchFtpShellController::createLocalFolder(QString const& name)
{
    showConnectionPopupWithTitle(QStringLiteral("Creating Folder"), QStringLiteral("Creating local folder..."));
    QString const folder = localPane_ && !localPane_->pathValue().isNull() ? localPane_->pathValue()
                                                                            : detail::homeFolder();
    QString const error = detail::createLocalFolder(detail::appendingPathComponent(folder, name));
    if (!error.isNull()) {
        failFileOperation(QStringLiteral("Local folder create failed: %1").arg(error));
        return;
    }
    finishFileOperation(QStringLiteral("Created local folder %1").arg(name),
        QStringLiteral("Created local folder %1.").arg(name), false);
}

// Only a null pane path falls back to "/": an empty one gives the bare name.
void PerchFtpShellController::createRemoteFolder(QString const& name)
{
    if (!isConnected()) {
        setStatusText(QStringLiteral("Connect before creating a remote folder."), true);
        return;
    }
    showConnectionPopupWithTitle(QStringLiteral("Creating Folder"), QStringLiteral("Creating remote folder..."));
    QString folder = remotePane_ ? remotePane_->pathValue() : QString();
    if (folder.isNull()) {
        folder = QStringLiteral("/");
    }
    QString const target = folder == QLatin1String("/") ? QStringLiteral("/") + name
                                                        : detail::appendingPathComponent(folder, name);
    protocol::SessionResult const made = session_->mkdir(detail::pathBytes(target));
    if (!made.ok) {
        // Unlike in a folder upload, a folder that is already there is a failure here.
        failFileOperation(QStringLiteral("Remote folder create failed: %1").arg(detail::messageText(made.message)));
        return;
    }
    finishFileOperation(QStringLiteral("Created remote folder %1").arg(name),
        QStringLiteral("Created remote folder %1.").arg(name), true);
}

// A new name holding "/" is taken as it stands, which moves the item into a subfolder.
void PerchFtpShellController::renamePanePath(QString const& path, bool isRemote, bool)
{
    if (path.isEmpty()) {
        setStatusText(QStringLiteral("Select an item to rename."), true);
        return;
    }
    QString const current = detail::lastPathComponent(path);
    std::optional<QString> const name = promptForText(
        dialogs(), hostWindow_, QStringLiteral("Rename Item"), QStringLiteral("Enter the new name."), current, current);
    if (!name) {
        setStatusText(QStringLiteral("Rename canceled."), false);
        return;
    }
    if (*name == current) {
        setStatusText(QStringLiteral("Rename skipped because the name did not change."), false);
        return;
    }
    QString const target = detail::appendingPathComponent(detail::deletingLastPathComponent(path), *name);
    if (!isRemote) {
        showConnectionPopupWithTitle(QStringLiteral("Renaming"), QStringLiteral("Renaming local item..."));
        QString const error = detail::moveLocalItem(path, target);
        if (!error.isNull()) {
            failFileOperation(QStringLiteral("Local rename failed: %1").arg(error));
            return;
        }
        finishFileOperation(QStringLiteral("Renamed local item to %1").arg(*name),
            QStringLiteral("Renamed local item to %1.").arg(*name), false);
        return;
    }
    if (!isConnected()) {
        setStatusText(QStringLiteral("Connect before renaming a remote item."), true);
        return;
    }
    showConnectionPopupWithTitle(QStringLiteral("Renaming"), QStringLiteral("Renaming remote item..."));
    protocol::SessionResult const renamed = session_->rename(detail::pathBytes(path), detail::pathBytes(target));
    if (!renamed.ok) {
        failFileOperation(QStringLiteral("Remote rename failed: %1").arg(detail::messageText(renamed.message)));
        return;
    }
    finishFileOperation(QStringLiteral("Renamed remote item to %1").arg(*name),
        QStringLiteral("Renamed remote item to %1.").arg(*name), true);
}

void PerchFtpShellController::deletePanePath(QString const& path, bool isRemote, bool isDirectory)
{
    if (path.isEmpty()) {
        setStatusText(QStringLiteral("Select an item to delete."), true);
        return;
    }
    QString const name = detail::lastPathComponent(path);
    if (!confirmAction(dialogs(), hostWindow_, QStringLiteral("Delete Item"), QStringLiteral("Delete \"%1\"?").arg(name))) {
        setStatusText(QStringLiteral("Delete canceled."), false);
        return;
    }
    if (!isRemote) {
        showConnectionPopupWithTitle(QStringLiteral("Deleting"), QStringLiteral("Deleting local item..."));
        QString const error = detail::removeLocalItem(path);
        if (!error.isNull()) {
            failFileOperation(QStringLiteral("Local delete failed: %1").arg(error));
            return;
        }
        finishFileOperation(QStringLiteral("Deleted local item %1").arg(name),
            QStringLiteral("Deleted local item %1.").arg(name), false);
        return;
    }
    if (!isConnected()) {
        setStatusText(QStringLiteral("Connect before deleting a remote item."), true);
        return;
    }
    showConnectionPopupWithTitle(QStringLiteral("Deleting"), QStringLiteral("Deleting remote item..."));
    protocol::SessionResult const removed = removeRemoteItem(detail::pathBytes(path), isDirectory);
    if (!removed.ok) {
        failFileOperation(QStringLiteral("Remote delete failed: %1").arg(detail::messageText(removed.message)));
        return;
    }
    finishFileOperation(QStringLiteral("Deleted remote item %1").arg(name),
        QStringLiteral("Deleted remote item %1.").arg(name), true);
}

// The first failure ends the loop without a refresh; what was deleted before stays deleted.
void PerchFtpShellController::deleteSelectedItems(PaneEntries const& items, bool isRemote)
{
    if (items.isEmpty()) {
        setStatusText(QStringLiteral("Select one or more items to delete."), true);
        return;
    }
    if (!confirmAction(dialogs(), hostWindow_, QStringLiteral("Delete Items"),
            QStringLiteral("Delete %1 selected item(s)?").arg(items.size()))) {
        setStatusText(QStringLiteral("Delete canceled."), false);
        return;
    }
    if (isRemote && !isConnected()) {
        setStatusText(QStringLiteral("Connect before deleting remote items."), true);
        return;
    }
    showConnectionPopupWithTitle(QStringLiteral("Deleting"),
        isRemote ? QStringLiteral("Deleting selected remote items...") : QStringLiteral("Deleting selected local items..."));
    for (PaneEntry const& item : items) {
        if (item.path.isEmpty()) {
            continue;
        }
        if (!isRemote) {
            if (QString const error = detail::removeLocalItem(item.path); !error.isNull()) {
                failFileOperation(QStringLiteral("Local delete failed: %1").arg(error));
                return;
            }
            continue;
        }
        protocol::SessionResult const removed = removeRemoteItem(detail::pathBytes(item.path), item.dir);
        if (!removed.ok) {
            failFileOperation(QStringLiteral("Remote delete failed: %1").arg(detail::messageText(removed.message)));
            return;
        }
    }
    // The count is that of the selection, items without a path included.
    QString const done = isRemote ? QStringLiteral("Deleted %1 remote item(s).").arg(items.size())
                                  : QStringLiteral("Deleted %1 local item(s).").arg(items.size());
    finishFileOperation(done, done, isRemote);
}

// A folder goes through the recursive delete, whose cause of failure goes to the log; the banner
// gets only the general words.
protocol::SessionResult PerchFtpShellController::removeRemoteItem(std::string const& path, bool isDirectory)
{
    if (!isDirectory) {
        return session_->remove(path);
    }
    if (deleteRemotePathRecursive(path)) {
        return {true, 0, "remote delete"};
    }
    return {false, 5, "recursive remote delete failed"};
}

bool PerchFtpShellController::deleteRemotePathRecursive(std::string const& path)
{
    return isConnected()
        && protocol::deleteRemoteTree(*session_, path, [this](std::string const& line) { logMessage(line); });
}

} // namespace perchftp::app
