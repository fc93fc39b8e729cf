#pragma once

#include <QImage>
#include <QRect>
#include <QString>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace perchftp::test {

// The desktop colour and screen size of the weston that tests/support/run_under_weston.sh starts.
inline constexpr QRgb kWestonDesktop = 0x00ff00u;
inline constexpr int kWestonWidth = 1920;
inline constexpr int kWestonHeight = 1200;

// The smallest rectangle of a picture of that weston holding every pixel that is not the desktop.
inline QRect westonContent(QImage const& shot)
{
    QImage const pixels = shot.convertToFormat(QImage::Format_RGB32);
    QRect content;
    for (int y = 0; y < pixels.height(); ++y) {
        QRgb const* line = reinterpret_cast<QRgb const*>(pixels.constScanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            if ((line[x] & 0xffffffu) != kWestonDesktop) {
                content |= QRect(x, y, 1, 1);
            }
        }
    }
    return content;
}

// What that weston shows now, as its screenshooter saves it; null when it could not be taken.
// Safe from any thread.
inline QImage westonScreen()
{
    char const* runtime = std::getenv("PERCHFTP_WESTON_RUNTIME");
    if (!runtime) {
        return {};
    }
    std::filesystem::path const shots = std::filesystem::path(runtime) / "shots";
    std::filesystem::remove_all(shots);
    std::filesystem::create_directories(shots);
    std::string const command = "cd '" + shots.string() + "' && XDG_RUNTIME_DIR='" + runtime
        + "' WAYLAND_DISPLAY=perchftp-test /usr/bin/weston-screenshooter >/dev/null 2>&1";
    QImage shot;
    if (std::system(command.c_str()) == 0) {
        for (auto const& entry : std::filesystem::directory_iterator(shots)) {
            shot.load(QString::fromStdString(entry.path().string()));
        }
    }
    return shot.convertToFormat(QImage::Format_RGB32);
}

} // namespace perchftp::test
