#include "isolated_user_folders.hpp"

#include <QApplication>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

int main(int argc, char** argv)
{
    // Everything a shell test could write lands in temporary folders, never in the user's own.
    perchftp::test::IsolatedUserFolders const folders;
    if (!std::getenv("PERCHFTP_INSTALL_TRACKING_URL")) {
        ::setenv("PERCHFTP_INSTALL_TRACKING_URL", "http://127.0.0.1:9/api/install-events.php", 1);
    }
    // Tests that need a real display server are started on a virtual one of their own, with its
    // platform named. All others get no display, for child processes either: a folder chooser a
    // test did not replace must fail at once instead of waiting for a user.
    char const* platform = std::getenv("QT_QPA_PLATFORM");
    if (!platform || std::string_view(platform) == "offscreen") {
        ::unsetenv("DISPLAY");
        ::unsetenv("WAYLAND_DISPLAY");
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
