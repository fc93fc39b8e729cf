// The local folder picker of the window and the menu: the desktop's chooser as a child process,
// and every way it can end told in its own words.
#include "app/desktop/folder_chooser.hpp"
#include "app/pane/pane_paths.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_controller.hpp"
#include "app/shell_text.hpp"

#include <QMainWindow>

#include <cstdio>

namespace perchftp::app {
namespace {

void systemLog(QString const& line)
{
    std::fprintf(stderr, "[PerchFtp] %s\n", detail::qtToCpp(line).c_str());
}

AlertRequest warning(QString const& message, QString const& informative)
{
    AlertRequest request;
    request.messageText = message;
    request.informativeText = informative;
    request.buttons = {QStringLiteral("OK")};
    request.style = AlertRequest::Style::Warning;
    return request;
}

} // namespace

void PerchFtpShellController::openLocalFolder()
{
    systemLog(QStringLiteral("Open Local Folder triggered"));
    setStatusText(QStringLiteral("Opening local folder picker..."), false);
    if (QMainWindow* window = hostWindow()) {
        window->raise();
        window->activateWindow();
    }

    QString start = localPane() ? localPane()->pathValue() : QString();
    start = start.isEmpty() ? detail::homeFolder() : detail::standardizePath(start);

    FolderChooserRun const run = dialogs().runFolderChooser(start, QStringLiteral("Select a local folder"));
    if (!run.started) {
        systemLog(QStringLiteral("Open Local Folder launch failed: %1").arg(run.launchError));
        dialogs().runAlert(hostWindow(),
            warning(QStringLiteral("Unable to open folder picker"),
                QStringLiteral("PerchFtp could not start the desktop folder chooser. Please check system "
                               "permissions and try again.")));
        setStatusText(QStringLiteral("Unable to open local folder picker."), true);
        return;
    }

    FolderChooserVerdict const verdict = judgeFolderChooserRun(run);
    systemLog(QStringLiteral("Open Local Folder exit=%1 path='%2' error='%3'")
                  .arg(run.crashed ? -1 : run.exitStatus)
                  .arg(verdict.path, verdict.errorText));

    switch (verdict.choice) {
    case FolderChoice::Opened:
        if (localPane()) {
            localPane()->loadLocalDirectory(verdict.path);
            persistLastLocalPanePath(localPane()->pathValue());
            setStatusText(QStringLiteral("Opened local folder: %1").arg(localPane()->pathValue()), false);
        }
        return;
    case FolderChoice::PermissionBlocked:
        dialogs().runAlert(hostWindow(),
            warning(QStringLiteral("Folder access permission required"),
                QStringLiteral("The desktop blocked folder access or automation for the folder chooser. Check "
                               "Privacy & Security settings and try again.")));
        setStatusText(QStringLiteral("The desktop blocked folder chooser access."), true);
        return;
    case FolderChoice::Canceled:
        setStatusText(QStringLiteral("Folder selection canceled."), false);
        return;
    case FolderChoice::Failed:
        break;
    }
    dialogs().runAlert(hostWindow(),
        warning(QStringLiteral("Folder chooser failed"),
            verdict.errorText.isEmpty() ? QStringLiteral("The desktop folder chooser did not return a folder.")
                                        : verdict.errorText));
    setStatusText(QStringLiteral("Folder chooser failed."), true);
}

} // namespace perchftp::app
