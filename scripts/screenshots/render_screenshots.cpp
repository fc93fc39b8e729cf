// Starts the real shell the way the program does and saves what the screen shows: the splash
// while it is up, the main window connected to a loopback FTP server after a few real transfers,
// the connection popup over it and the list of saved connections. Before all that, the licence
// question of a first start.
// Run it through scripts/render-screenshots, which gives it an X server and fresh user folders.
#include "app/app_icons.hpp"
#include "app/dark_appearance.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_paths.hpp"
#include "app/shell_startup.hpp"
#include "app/support/ftp_connection_form.hpp"
#include "app/support/pane_rows.hpp"
#include "storage/persistent_store.hpp"
#include "support/servers/ftp_test_server.hpp"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <QPixmap>
#include <QScreen>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

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

void writeBytes(std::filesystem::path const& path, std::size_t size)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << std::string(size, 'x');
}

// What the loopback server holds before the window connects to it.
void fillServer(perchftp::test::FtpTestServer const& server)
{
    for (char const* folder : {"/public_html/assets", "/public_html/css", "/backups", "/logs"}) {
        std::filesystem::create_directories(server.local(folder));
    }
    writeBytes(server.local("/public_html/index.html"), 14'336);
    writeBytes(server.local("/public_html/robots.txt"), 68);
    writeBytes(server.local("/public_html/visitors-2026-10.csv"), 2'621'440);
    writeBytes(server.local("/backups/site-2026-11-01.tar.gz"), 48'234'496);
    writeBytes(server.local("/logs/access.log"), 905'216);
}

// Two saved connections; the one used last points at the loopback server and has the demo folder
// as its local root, so that start-up loads it.
void saveDemoConnection(perchftp::test::FtpTestServer const& server, QString const& localRoot)
{
    perchftp::storage::SiteProfile profile;
    profile.id = 1;
    profile.name = "Website (staging)";
    profile.protocol = "ftp";
    profile.host = "127.0.0.1";
    profile.port = server.port();
    profile.user = server.user();
    profile.localRoot = localRoot.toStdString();
    profile.remoteRoot = "/public_html";
    profile.quickConnect = true;
    perchftp::storage::Snapshot snapshot;
    snapshot.profiles.push_back(profile);
    profile.id = 2;
    profile.name = "Backups";
    profile.protocol = "sftp";
    profile.host = "backup.example.org";
    profile.port = 22;
    profile.user = "archive";
    profile.remoteRoot = "/srv/backups";
    profile.quickConnect = false;
    snapshot.profiles.push_back(profile);
    QString const base = perchftp::app::shellBaseFolder();
    perchftp::app::makePrivateFolder(base);
    perchftp::storage::createFileStore(QDir(base).filePath(QStringLiteral("perchftp-sites.db")).toStdString())->save(snapshot);
}

// Saves the next modal dialog once it is up, then presses its button of that title.
void grabNextModalThenPress(QString const& path, QString const& buttonTitle, bool& saved)
{
    auto* poll = new QTimer;
    QObject::connect(poll, &QTimer::timeout, poll, [poll, path, buttonTitle, &saved] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible()) {
            return;
        }
        poll->stop();
        poll->deleteLater();
        saved = dialog->grab().save(path);
        for (auto* button : dialog->findChildren<QPushButton*>()) {
            if (button->text() == buttonTitle) {
                button->click();
            }
        }
    });
    poll->start(200);
}

// Shows the licence question the first start asks, saves it and declines it.
bool renderLicenceGate(QString const& path)
{
    perchftp::app::ensureShellResources();
    QFile licence(QStringLiteral(":/perchftp/licence.txt"));
    licence.open(QIODevice::ReadOnly);
    bool saved = false;
    grabNextModalThenPress(path, QStringLiteral("Decline"), saved);
    perchftp::app::createDesktopDialogs()->acceptLicence(QString::fromUtf8(licence.readAll()), perchftp::app::appIconImage());
    return saved;
}

void selectRows(perchftp::app::PerchFilePaneController& pane, QStringList const& names)
{
    pane.refresh();
    perchftp::test::selectPaneRowsNamed(pane, names);
}

// Connects through the form as a user does, opens the site's folder and moves a few files both
// ways; one upload is refused by the server so that the queue shows a failure too.
void connectAndTransfer(perchftp::app::PerchFtpShellController& controller, perchftp::test::FtpTestServer& server)
{
    perchftp::test::fillFtpConnectionForm(controller, server);
    controller.connectSession();
    waitFor(900);
    controller.remotePane()->setPathValue(QStringLiteral("/public_html/"));
    controller.refreshRemoteDirectory();

    selectRows(*controller.localPane(), {QStringLiteral("about.html"), QStringLiteral("contact.html")});
    controller.centerUploadAction();
    selectRows(*controller.remotePane(), {QStringLiteral("visitors-2026-10.csv")});
    controller.centerDownloadAction();
    server.setReply("STOR", "553 Could not create file.");
    selectRows(*controller.localPane(), {QStringLiteral("sitemap.xml")});
    controller.centerUploadAction();
    server.clearReplies();
    selectRows(*controller.localPane(), {QStringLiteral("index.html")});
    controller.refreshRemoteDirectory();
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
    perchftp::test::FtpTestServer server;
    fillServer(server);
    saveDemoConnection(server, QString::fromLocal8Bit(argv[2]));
    perchftp::app::applyDarkAppearance(application);
    bool ok = renderLicenceGate(output + QStringLiteral("/licence.png"));

    auto shell = perchftp::app::startDesktopShell(application, perchftp::app::createDesktopDialogs());
    if (!shell) {
        std::fprintf(stderr, "the licence gate did not pass\n");
        return 1;
    }
    waitFor(500);
    ok = shell->splash->grab().save(output + QStringLiteral("/splash.png")) && ok;

    waitFor(1500);
    auto& controller = *shell->controller;
    connectAndTransfer(controller, server);
    waitFor(900);
    ok = saveScreenArea(controller.hostWindow(), output + QStringLiteral("/main-window.png")) && ok;

    controller.showConnectionPopupWithTitle(
        QStringLiteral("Connecting"), QStringLiteral("Resolving 127.0.0.1:%1 via ftp...").arg(server.port()));
    waitFor(400);
    ok = saveScreenArea(controller.hostWindow(), output + QStringLiteral("/connection-popup.png")) && ok;

    bool pickerSaved = false;
    grabNextModalThenPress(output + QStringLiteral("/saved-connections.png"), QStringLiteral("Cancel"), pickerSaved);
    controller.openSavedConnection();
    ok = pickerSaved && ok;
    return ok ? 0 : 1;
}
