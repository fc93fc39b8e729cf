// The real program on a Wayland session of its own: run under a headless weston
// (tests/support/run_under_weston.sh), the program started there as a desktop would start it (no
// X display, no platform forced), and what the compositor shows read back from its screenshots.
#include "support/servers/child_process.hpp"
#include "support/temp_dir.hpp"
#include "support/weston_screen.hpp"

#include <gtest/gtest.h>

#include <QImage>
#include <QRect>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <sstream>
#include <thread>

namespace perchftp::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

QSize const kOutput(kWestonWidth, kWestonHeight);
QSize const kSplash(420, 240);
QSize const kMainWindowMinimum(840, 520);

std::string describe(QRect const& rect)
{
    std::ostringstream out;
    out << rect.width() << "x" << rect.height() << " at " << rect.x() << "," << rect.y();
    return out.str();
}

bool near(QSize const& size, QSize const& wanted)
{
    return std::abs(size.width() - wanted.width()) <= 2 && std::abs(size.height() - wanted.height()) <= 2;
}

bool waitFor(std::function<bool()> const& condition, std::chrono::milliseconds limit)
{
    auto const deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(50ms);
    }
    return true;
}

class WaylandSession : public testing::Test {
protected:
    void SetUp() override
    {
        if (!onTestWeston()) {
            GTEST_FAIL() << "run it under tests/support/run_under_weston.sh, as CTest does";
        }
        for (char const* folder : {"home", "data", "config/PerchFtp", "runtime"}) {
            fs::create_directories(root_.path() / folder);
        }
        fs::permissions(root_.path() / "runtime", fs::perms::owner_all, fs::perm_options::replace);
        ::setenv("HOME", root_.file("home").c_str(), 1);
        ::setenv("XDG_DATA_HOME", root_.file("data").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", root_.file("config").c_str(), 1);
        ::setenv("XDG_CACHE_HOME", root_.file("home/.cache").c_str(), 1);
        ::setenv("XDG_RUNTIME_DIR", root_.file("runtime").c_str(), 1);
        ::setenv("PERCHFTP_INSTALL_TRACKING_URL", "http://127.0.0.1:9/api/install-events.php", 1);
        // A Wayland session as a desktop hands it to its programs: Qt picks its platform from it.
        ::setenv("XDG_SESSION_TYPE", "wayland", 1);
        for (char const* variable : {"DISPLAY", "QT_QPA_PLATFORM", "XDG_CURRENT_DESKTOP", "XDG_SESSION_DESKTOP"}) {
            ::unsetenv(variable);
        }
        writeFile(root_.path() / "config/PerchFtp/PerchFtp.conf", "[General]\nLicenceAccepted=true\n");
        ASSERT_TRUE(waitFor([&] { return westonContent(screenshot()).isEmpty(); }, 20s))
            << "weston never showed its empty desktop";
    }

    fs::path programLog() const { return root_.path() / "perchftp.log"; }
    static QImage screenshot() { return westonScreen(); }

    TempDir root_;
};

TEST_F(WaylandSession, TheProgramRunsNativelyWithItsSplashCentredOnTheScreenThenStaysUpWithItsMainWindow)
{
    ChildProcess program({PERCHFTP_PROGRAM}, programLog());

    // The first thing on screen is the splash, alone once the start-up's connection popup has
    // gone. The compositor decides where top-levels go, and its choice is not the middle.
    std::optional<QRect> splash;
    QRect seen;
    ASSERT_TRUE(waitFor(
        [&] {
            seen = westonContent(screenshot());
            if (near(seen.size(), kSplash)) {
                splash = seen;
            }
            return splash || seen.width() >= kMainWindowMinimum.width() || !program.running();
        },
        20s))
        << "nothing but " << describe(seen) << " appeared:\n" << readFile(programLog());
    ASSERT_TRUE(splash) << "the splash was never seen alone; last seen " << describe(seen) << "\n"
                        << readFile(programLog());
    QPointF const middle = QRectF(*splash).center();
    EXPECT_NEAR(middle.x(), kOutput.width() / 2.0, 2.0) << describe(*splash);
    EXPECT_NEAR(middle.y(), kOutput.height() / 2.0, 2.0) << describe(*splash);

    ASSERT_TRUE(waitFor(
        [&] {
            seen = westonContent(screenshot());
            return (seen.width() >= kMainWindowMinimum.width() && seen.height() >= kMainWindowMinimum.height())
                || !program.running();
        },
        10s))
        << "the main window never appeared; last seen " << describe(seen) << "\n" << readFile(programLog());
    std::this_thread::sleep_for(1s);
    ASSERT_TRUE(program.running()) << readFile(programLog());
    QRect const window = westonContent(screenshot());
    EXPECT_GE(window.width(), kMainWindowMinimum.width()) << describe(window);
    EXPECT_GE(window.height(), kMainWindowMinimum.height()) << describe(window);
}

} // namespace
} // namespace perchftp::test
