// The bug report and the about panel.
#include "app/app_icons.hpp"
#include "app/desktop/bug_report_log.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_controller.hpp"
#include "app/shell_paths.hpp"

#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QLineEdit>

namespace perchftp::app {
namespace {

QString const kBugReportTemplate = QStringLiteral(
    "What happened?\n\nSteps to reproduce:\n1. \n2. \n\nExpected result:\nActual result:\n");

} // namespace

void PerchFtpShellController::reportBug()
{
    std::optional<QString> const edited = dialogs().editBugReport(hostWindow(), kBugReportTemplate, appIconImage());
    if (!edited) {
        setStatusText(QStringLiteral("Bug report canceled."), false);
        return;
    }
    QString const report = edited->trimmed();
    if (report.isEmpty()) {
        setStatusText(QStringLiteral("Bug report not saved because the message was empty."), true);
        return;
    }

    QString const folder = shellBaseFolder();
    makePrivateFolder(folder);
    BugReportState const state{
        hostField() ? hostField()->text() : QString(),
        protocolField() ? protocolField()->currentText() : QString(),
        isConnected(),
        localPane() ? localPane()->pathValue() : QString(),
        remotePane() ? remotePane()->pathValue() : QString(),
    };
    QString const logPath = QDir(folder).filePath(QStringLiteral("bug-reports.log"));
    if (!appendBugReportRecord(logPath, formatBugReportRecord(QDateTime::currentDateTime(), state, report))) {
        setStatusText(QStringLiteral("Bug report could not be saved to disk."), true);
        return;
    }
    setStatusText(QStringLiteral("Bug report saved to %1").arg(logPath), false);
}

void PerchFtpShellController::showAboutPanel()
{
    QString version = QCoreApplication::applicationVersion();
    if (version.isEmpty()) {
        version = QStringLiteral("0.1.0");
    }
    AlertRequest request;
    request.messageText = QStringLiteral("About PerchFtp");
    request.informativeText =
        QStringLiteral("Version %1\nPerchFtp is a desktop FTP client for local and remote file management.").arg(version);
    request.buttons = {QStringLiteral("Close")};
    request.icon = appIconImage();
    dialogs().runAlert(hostWindow(), request);
}

void PerchFtpShellController::openLinkedInProfile() {}

} // namespace perchftp::app
