#pragma once

class QCoreApplication;

namespace perchftp::app {

// Runs the desktop shell's event loop; returns the process exit status.
int run_desktop_shell();

// Names the application as the desktop and the about panel see it: its organisation, its name
// and the version this build was made from.
void describeApplication(QCoreApplication& application);

} // namespace perchftp::app
