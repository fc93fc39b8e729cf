// On a real display server, X (xvfb-run) or Wayland (a headless weston): while a session call
// blocks the main thread, the screen already shows the popup with its words. The picture is taken
// from another thread, over an X connection of its own or by the compositor, the way a user's
// eyes would see it, since the main thread can't look while it waits. On Wayland, where a window
// can't place itself, the splash is first seen in the middle of the screen.
#include "app/splash_window.hpp"
#include "app/status/connect_button.hpp"
#include "support/ftp_connection_form.hpp"
#include "support/qt_printers.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/started_shell.hpp"
#include "support/weston_screen.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QWindow>

#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

namespace perchftp::test {
namespace {

// The whole screen of the display named by DISPLAY; null when it can't be read as 24-bit colour.
QImage photographXScreen()
{
    int screenNumber = 0;
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(nullptr, &screenNumber), xcb_disconnect);
    if (xcb_connection_has_error(connection.get())) {
        return {};
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
    for (int skipped = 0; skipped < screenNumber; ++skipped) {
        xcb_screen_next(&screens);
    }
    xcb_screen_t const* screen = screens.data;
    int const width = screen->width_in_pixels;
    int const height = screen->height_in_pixels;
    xcb_get_image_cookie_t const cookie = xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, 0, 0,
        static_cast<uint16_t>(width), static_cast<uint16_t>(height), ~0u);
    std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(connection.get(), cookie, nullptr), std::free);
    if (!reply || reply->depth != 24
        || xcb_get_image_data_length(reply.get()) != width * height * 4) {
        return {};
    }
    return QImage(xcb_get_image_data(reply.get()), width, height, width * 4, QImage::Format_RGB32).copy();
}

// How much of the label's place in a picture of the screen agrees with a fresh rendering of its
// window there: the share of equal pixels, 0 when the place is not in the picture.
double shareDrawnAsRendered(QImage const& screen, QPoint windowOrigin, QLabel* label)
{
    QWidget* window = label->window();
    QRect const inWindow(label->mapTo(window, QPoint()), label->size());
    QImage const shown = screen.copy(inWindow.translated(windowOrigin)).convertToFormat(QImage::Format_RGB32);
    QImage const expected = window->grab(inWindow).toImage().convertToFormat(QImage::Format_RGB32);
    if (shown.isNull() || shown.size() != expected.size()) {
        return 0;
    }
    qsizetype same = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            same += shown.pixel(x, y) == expected.pixel(x, y) ? 1 : 0;
        }
    }
    return static_cast<double>(same) / static_cast<double>(shown.width() * shown.height());
}

// Where the window's own top-left corner stands on the screen. A Wayland client is not told its
// place: there it is found as the frame on the plain green desktop, inside its decorations.
QPoint windowOrigin(QImage const& screen, QWidget* window)
{
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        return window->mapToGlobal(QPoint());
    }
    QMargins const decorations = window->windowHandle()->frameMargins();
    return westonContent(screen).topLeft() + QPoint(decorations.left(), decorations.top());
}

class PopupOnScreen : public StartedShellTest {};

TEST_F(PopupOnScreen, APopupIsOnScreenWithItsWordsWhileAListingStalls)
{
    QString const platform = QGuiApplication::platformName();
    if (platform != QLatin1String("xcb") && platform != QLatin1String("wayland")) {
        GTEST_SKIP() << "needs a real display server: run under xvfb-run or run_under_weston.sh";
    }
    FtpTestServer server;
    startShell();
    QMainWindow* host = controller().hostWindow();
    if (platform == QLatin1String("wayland")) {
        // The splash's card, alone on the desktop until the main window comes. Once the splash
        // is drawn, the pictures are taken without running the event loop, so it can't go meanwhile.
        auto const splashShown = [] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (qobject_cast<app::PerchSplashWindow*>(widget) && widget->windowHandle()
                    && widget->windowHandle()->isExposed()) {
                    return true;
                }
            }
            return false;
        };
        ASSERT_TRUE(waitUntil(splashShown));
        QCoreApplication::processEvents();
        QRect seen;
        auto const cardSeen = [&] { return std::abs(seen.width() - 420) <= 2 && std::abs(seen.height() - 240) <= 2; };
        for (int attempt = 0; attempt < 50 && !cardSeen(); ++attempt) {
            seen = westonContent(westonScreen());
        }
        ASSERT_TRUE(cardSeen()) << "the splash was never seen alone; last seen " << seen.width() << "x" << seen.height();
        EXPECT_LE((seen.center() - QRect(0, 0, kWestonWidth, kWestonHeight).center()).manhattanLength(), 3);
    }
    ASSERT_TRUE(waitUntil([&] { return host->isVisible(); }));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(host));
    fillFtpConnectionForm(controller(), server);
    controller().connectButton()->click();
    ASSERT_TRUE(controller().isConnected());
    ASSERT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));

    // The server takes the listing command and never answers it; once the picture is taken it
    // goes away, and the listing fails at once.
    server.setReply("LIST", "STALL");
    server.clearReceivedCommands();
    QImage screen;
    std::thread photographer([&] {
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (server.receivedCommands({"LIST"}).empty() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        screen = platform == QLatin1String("xcb") ? photographXScreen() : westonScreen();
        server.kill();
    });
    controller().refreshSession();
    photographer.join();
    ASSERT_FALSE(screen.isNull()) << "no picture of a 24-bit screen";
    char const* folder = std::getenv("PERCHFTP_SCREENSHOT_DIR");
    if (folder && platform == QLatin1String("xcb")) {
        QRect const area(host->mapToGlobal(QPoint()), host->size());
        screen.copy(area).save(QString::fromLocal8Bit(folder) + QStringLiteral("/popup-during-stalled-listing.png"));
    }

    // The popup is still there: its close comes 600 ms after the call. Its title is as it was
    // during the call; its message is put back to what it said then to render the comparison.
    QLabel* title = controller().statusPopupTitle();
    QLabel* message = controller().statusPopupMessage();
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->text(), "Refreshing");
    message->setText(QStringLiteral("Refreshing local and remote panes..."));
    QPoint const origin = windowOrigin(screen, host);
    EXPECT_GT(shareDrawnAsRendered(screen, origin, title), 0.99);
    EXPECT_GT(shareDrawnAsRendered(screen, origin, message), 0.99);
}

} // namespace
} // namespace perchftp::test
