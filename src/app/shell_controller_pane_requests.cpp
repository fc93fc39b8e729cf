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

} // namespace perchftp::app
