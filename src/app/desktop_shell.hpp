#pragma once

namespace perchftp::app {

// Runs the desktop shell's event loop; returns the process exit status.
int run_desktop_shell();

} // namespace perchftp::app
