#include "app/desktop_shell.hpp"

#include <iostream>

namespace perchftp::app {

int run_desktop_shell()
{
    std::cerr << "PerchFtp: the desktop shell is not part of this build; only --smoke is available.\n";
    return 1;
}

} // namespace perchftp::app
