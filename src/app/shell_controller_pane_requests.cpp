// What the two panes ask of the shell.
#include "app/shell_controller.hpp"

#include "app/pane/perch_file_pane_controller.hpp"

#include <QLineEdit>

namespace perchftp::app {

void PerchFtpShellController::didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote)
{
    if (isRemote) {
        remotePane_->setPathValue(path);
        refreshRemoteDirectory();
        return;
    }
    localPane_->loadLocalDirectory(path);
    persistLastLocalPanePath(localPane_->pathValue());
    (void)pane;
}

void PerchFtpShellController::didChangeSelectionPath(PerchFilePaneController*, QString const& path, bool isRemote)
{
    QLineEdit* field = isRemote ? remoteTransferField_ : localTransferField_;
    if (field) {
        field->setText(path.isNull() ? QString(QLatin1String("")) : path);
    }
}

void PerchFtpShellController::didDropPaths(PerchFilePaneController*, QStringList const&, QString const&, bool)
{
    notAvailableYet(QStringLiteral("Uploading dropped files"));
}

void PerchFtpShellController::didRequestContextTransferForPath(PerchFilePaneController*, QString const&, bool isRemote,
    bool)
{
    notAvailableYet(isRemote ? QStringLiteral("Downloading") : QStringLiteral("Uploading"));
}

void PerchFtpShellController::didRequestCreateFolder(PerchFilePaneController*, bool)
{
    notAvailableYet(QStringLiteral("Creating folders"));
}

void PerchFtpShellController::didRequestRenamePath(PerchFilePaneController*, QString const&, bool, bool)
{
    notAvailableYet(QStringLiteral("Renaming"));
}

void PerchFtpShellController::didRequestDeletePath(PerchFilePaneController*, QString const&, bool, bool)
{
    notAvailableYet(QStringLiteral("Deleting"));
}

void PerchFtpShellController::didRequestDeletePaths(PerchFilePaneController*, PaneEntries const&, bool)
{
    notAvailableYet(QStringLiteral("Deleting"));
}

void PerchFtpShellController::didRequestChangePermissions(PerchFilePaneController*, PaneEntries const&, bool)
{
    notAvailableYet(QStringLiteral("Changing permissions"));
}

} // namespace perchftp::app
