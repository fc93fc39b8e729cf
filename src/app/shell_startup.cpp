#include "app/shell_startup.hpp"

#include "app/app_icons.hpp"
#include "app/dark_appearance.hpp"
#include "app/licence_gate.hpp"

#include <QApplication>
#include <QMainWindow>
#include <QPointer>
#include <QStyle>
#include <QTimer>

namespace perchftp::app {

namespace {

QIcon applicationIcon()
{
    QIcon icon = appIconImage();
    return icon.isNull() ? QApplication::style()->standardIcon(QStyle::SP_DesktopIcon) : icon;
}

} // namespace

std::optional<RunningShell> startDesktopShell(QApplication& application, std::unique_ptr<ShellDialogs> dialogs)
{
    if (!dialogs) {
        dialogs = createDesktopDialogs();
    }
    QIcon const icon = applicationIcon();
    application.setWindowIcon(icon);
    application.setApplicationDisplayName(QStringLiteral("PerchFtp"));
    application.setDesktopFileName(QStringLiteral("org.perchftp.PerchFtp"));
    applyDarkAppearance(application);

    if (!passLicenceGate(*dialogs, icon)) {
        return std::nullopt;
    }

    RunningShell shell;
    shell.controller = std::make_unique<PerchFtpShellController>(std::move(dialogs));
    shell.controller->createMenuBar();
    shell.controller->createMainWindow(appIconImage());

    shell.splash = std::make_unique<PerchSplashWindow>(icon);
    shell.splash->showCentred();

    shell.controller->assembleMainWindow();

    QPointer<PerchSplashWindow> splash = shell.splash.get();
    PerchFtpShellController* controller = shell.controller.get();
    QTimer::singleShot(kSplashMilliseconds, controller, [splash, controller] {
        if (splash) {
            splash->hide();
            splash->close();
        }
        if (QMainWindow* window = controller->hostWindow()) {
            window->show();
            window->raise();
            window->activateWindow();
        }
    });
    return shell;
}

} // namespace perchftp::app
