#include "app/desktop_shell.hpp"

#include "app/shell_startup.hpp"

#include <QApplication>

#include <cstdlib>
#include <iostream>

namespace perchftp::app {

namespace {

// Qt aborts when it finds no display; say so plainly instead when nothing names one.
bool displayIsNamed()
{
    for (char const* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        char const* value = std::getenv(variable);
        if (value && *value) {
            return true;
        }
    }
    return false;
}

} // namespace

void describeApplication(QCoreApplication& application)
{
    application.setOrganizationName(QStringLiteral("PerchFtp"));
    application.setApplicationName(QStringLiteral("PerchFtp"));
    application.setApplicationVersion(QStringLiteral(PERCHFTP_PROJECT_VERSION));
}

int run_desktop_shell()
{
    // What main printed must reach a pipe even if the toolkit aborts below.
    std::cout.flush();
    if (!displayIsNamed()) {
        std::cerr << "PerchFtp: no display to show the desktop shell on (DISPLAY and WAYLAND_DISPLAY are unset).\n";
        return 1;
    }
    static int argc = 1;
    static char name[] = "perchftp";
    static char* argv[] = {name, nullptr};
    QApplication application(argc, argv);
    describeApplication(application);
    application.setQuitOnLastWindowClosed(true);

    std::optional<RunningShell> shell = startDesktopShell(application, createDesktopDialogs());
    if (!shell) {
        return 0;
    }
    QApplication::exec();
    return 0;
}

} // namespace perchftp::app
