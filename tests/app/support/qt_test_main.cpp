#include <QApplication>
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

namespace {

// Everything a shell test could write lands in one temporary folder, never in the user's own.
void isolateUserFolders(QTemporaryDir const& root)
{
    auto const place = [&](char const* variable, char const* folder) {
        QByteArray const path = (root.path() + "/" + folder).toUtf8();
        QDir().mkpath(QString::fromUtf8(path));
        ::setenv(variable, path.constData(), 1);
    };
    place("HOME", "home");
    place("XDG_DATA_HOME", "data");
    place("XDG_CONFIG_HOME", "config");
    place("XDG_CACHE_HOME", "cache");
    place("XDG_RUNTIME_DIR", "runtime");
    QFile::setPermissions(root.path() + "/runtime", QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    if (!std::getenv("PERCHFTP_INSTALL_TRACKING_URL")) {
        ::setenv("PERCHFTP_INSTALL_TRACKING_URL", "http://127.0.0.1:9/api/install-events.php", 1);
    }
    // Tests that need a real display server are started on a virtual one of their own, with its
    // platform named. All others get no display, for child processes either: a folder chooser a
    // test did not replace must fail at once instead of waiting for a user.
    char const* platform = std::getenv("QT_QPA_PLATFORM");
    if (platform && std::string_view(platform) != "offscreen") {
        return;
    }
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir root;
    isolateUserFolders(root);
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
