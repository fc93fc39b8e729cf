// Starts the real shell the way the program does and saves what the screen shows: the splash
// while it is up, the main window once the splash timer has brought it to the front, and the
// connection popup over it.
// Run it through scripts/render-screenshots, which gives it an X server and fresh user folders.
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_paths.hpp"
#include "app/shell_startup.hpp"
#include "storage/persistent_store.hpp"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPixmap>
#include <QScreen>
#include <QTimer>

#include <cstdio>

namespace {

void waitFor(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

bool saveScreenArea(QWidget const* window, QString const& path)
{
    QRect const area = window->frameGeometry();
    QPixmap const shot = window->screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    return shot.save(path);
}

// One saved connection whose local root is the demo folder, so that start-up loads it.
void saveDemoConnection(QString const& localRoot)
{
    perchftp::storage::SiteProfile profile;
    profile.id = 1;
    profile.name = "Demo server";
    profile.protocol = "sftp";
    profile.host = "demo.example.org";
    profile.port = 22;
    profile.user = "demo";
    profile.localRoot = localRoot.toStdString();
    profile.remoteRoot = "/var/www";
    profile.quickConnect = true;
    perchftp::storage::Snapshot snapshot;
    snapshot.profiles.push_back(profile);
    QString const base = perchftp::app::shellBaseFolder();
    perchftp::app::makePrivateFolder(base);
    perchftp::storage::createFileStore(QDir(base).filePath(QStringLiteral("perchftp-sites.db")).toStdString())->save(snapshot);
}

void fillDemoQueue(perchftp::app::PerchFtpShellController& controller)
{
    auto& service = controller.transferQueue();
    auto& queue = service.queue();
    using perchftp::transfer::JobType;
    auto const done = service.enqueue(JobType::Upload, "sftp", "/home/demo/site/index.html", "/var/www/index.html", 1, 3);
    queue.simulateProgress(done, 18432, 18432);
    queue.complete(done, true, "");
    auto const running = service.enqueue(JobType::Download, "sftp", "/home/demo/backup.tar.gz", "/srv/backup.tar.gz", 1, 3);
    queue.simulateProgress(running, 640, 1000);
    auto const failed = service.enqueue(JobType::Upload, "sftp", "/home/demo/photos/", "/srv/photos", 1, 3);
    queue.simulateProgress(failed, 150, 1000);
    queue.complete(failed, false, "sftp: connection reset");
    controller.reloadQueueSummary();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s <output folder> <demo folder>\n", argv[0]);
        return 2;
    }
    QApplication application(argc, argv);
    QString const output = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(output);
    saveDemoConnection(QString::fromLocal8Bit(argv[2]));

    auto shell = perchftp::app::startDesktopShell(application, perchftp::app::createDesktopDialogs());
    if (!shell) {
        std::fprintf(stderr, "the licence gate did not pass\n");
        return 1;
    }
    waitFor(500);
    bool ok = shell->splash->grab().save(output + QStringLiteral("/splash.png"));

    waitFor(1500);
    auto& controller = *shell->controller;
    fillDemoQueue(controller);
    waitFor(900);
    ok = saveScreenArea(controller.hostWindow(), output + QStringLiteral("/main-window.png")) && ok;

    controller.showConnectionPopupWithTitle(
        QStringLiteral("Connecting"), QStringLiteral("Resolving demo.example.org:22 via sftp..."));
    waitFor(400);
    ok = controller.statusPopupWindow()->grab().save(output + QStringLiteral("/connection-popup.png")) && ok;
    return ok ? 0 : 1;
}
