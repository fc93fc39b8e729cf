#pragma once

#include "app/shell_controller.hpp"
#include "app/splash_window.hpp"

#include <memory>
#include <optional>

class QApplication;

namespace perchftp::app {

// The shell once it stands: the controller with its hidden main window, and the splash, which a
// timer replaces by the main window 1.25 seconds after start-up scheduled it.
struct RunningShell {
    std::unique_ptr<PerchFtpShellController> controller;
    std::unique_ptr<PerchSplashWindow> splash;
};

inline constexpr int kSplashMilliseconds = 1250;

// Everything of the start-up short of the event loop, in its order: the application icon, the
// dark appearance, the licence gate, the controller, the menus, the main window, the splash, the
// window's contents and the splash timer. Empty when the licence is declined; nothing is built
// then. The dialogs answer the gate and then go to the controller.
std::optional<RunningShell> startDesktopShell(QApplication& application, std::unique_ptr<ShellDialogs> dialogs);

} // namespace perchftp::app
