#include "app/desktop_shell.hpp"
#include "core/bootstrap.hpp"

#include <cstring>
#include <iostream>

int main(int argc, char** argv)
{
    bool const smoke = argc > 1 && std::strcmp(argv[1], "--smoke") == 0;

    perchftp::core::bootstrap();

    std::cout << "PerchFtp bootstrap build target ready.\n"
              << "Version: " << perchftp::core::version() << "\n";

    if (smoke) {
        return 0;
    }
    return perchftp::app::run_desktop_shell();
}
