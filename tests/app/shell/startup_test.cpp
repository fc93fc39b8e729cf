#include "app/licence_gate.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_split_view.hpp"
#include "app/status/connect_button.hpp"
#include "app/shell_startup.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTableView>
#include <QTimer>

namespace perchftp::test {
namespace {

using StartUp = StartedShellTest;

QApplication& application()
{
    return *static_cast<QApplication*>(QCoreApplication::instance());
}

QSettings settings()
{
    return QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp"));
}

TEST_F(StartUp, SiteDataIsReadFromTheBaseFolderFirstAndMigratedOrWrittenBackThere)
{
    // Nothing saved: nothing is loaded and no database is made; the base folder is private.
    startShell();
    EXPECT_TRUE(controller().siteManager().listSites().empty());
    EXPECT_FALSE(QFile::exists(baseDatabase()));
    QFileInfo const base(folders().baseFolder());
    ASSERT_TRUE(base.isDir());
    EXPECT_EQ(base.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
                                       | QFile::WriteOther | QFile::ExeOther),
        QFile::Permissions());
    EXPECT_TRUE(QFile::exists(folders().baseFolder() + QStringLiteral("/install-tracker.state")));
    stopShell();

    // An older file in the working directory is migrated into the base folder on the same start.
    writeSites(workingDirectoryDatabase(), {siteProfile("Old", "ftp", "old.example", 21)});
    startShell();
    ASSERT_EQ(controller().siteManager().listSites().size(), 1u);
    auto const migrated = readSites(baseDatabase());
    ASSERT_TRUE(migrated && migrated->size() == 1u);
    EXPECT_EQ(migrated->front().host, "old.example");
    stopShell();

    // The base folder's database wins even without profiles; the older file is not even read.
    writeSites(baseDatabase(), {});
    writeSites(workingDirectoryDatabase(), {siteProfile("Old", "ftp", "old.example", 21)});
    startShell();
    EXPECT_TRUE(controller().siteManager().listSites().empty());
    auto const older = readSites(workingDirectoryDatabase());
    ASSERT_TRUE(older);
    EXPECT_EQ(older->size(), 1u);
    stopShell();

    // A load that drops entries is written back at once.
    writeSites(baseDatabase(),
        {siteProfile("One", "ftp", "same.example", 21), siteProfile("Two", "ftp", "same.example", 2121)});
    startShell();
    EXPECT_EQ(controller().siteManager().listSites().size(), 1u);
    auto const stored = readSites(baseDatabase());
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->size(), 1u);
}

TEST_F(StartUp, TheLastUsedConnectionFillsTheFormButThePortShowsTheProtocolsDefault)
{
    auto used = siteProfile("Used", "sftp", "used.example", 2222);
    used.user = "ada";
    used.secretRef = "s3cret";
    used.remoteRoot = "/srv/files";
    used.quickConnect = true;
    writeSites(baseDatabase(), {siteProfile("First", "ftp", "first.example", 21), used, siteProfile("Last", "ftps", "last.example", 990)});
    startShell();
    EXPECT_EQ(controller().hostField()->text(), "used.example");
    EXPECT_EQ(controller().userField()->text(), "ada");
    EXPECT_EQ(controller().secretField()->text(), "s3cret");
    EXPECT_EQ(controller().protocolField()->currentText(), "sftp");
    EXPECT_EQ(controller().portField()->text(), "22");
    EXPECT_EQ(controller().remotePane()->pathValue(), "/srv/files");
    EXPECT_EQ(controller().statusLabel()->text(), QStringLiteral("✅ Protocol set to sftp, default port 22."));
    auto const stored = readSites(baseDatabase());
    ASSERT_TRUE(stored);
    EXPECT_TRUE(stored->at(1).quickConnect && !stored->at(2).quickConnect) << "a start marks nothing";
    stopShell();

    // Without a mark the last connection of the list is loaded.
    writeSites(baseDatabase(), {siteProfile("A", "ftp", "a.example", 21), siteProfile("B", "ftps", "b.example", 990)});
    startShell();
    EXPECT_EQ(controller().hostField()->text(), "b.example");
    EXPECT_EQ(controller().portField()->text(), "21") << "ftps has the default port of ftp";
}

TEST_F(StartUp, TheLocalPaneOpensAtTheLocalRootOrTheStoredFolderOrHome)
{
    QString const stored = folders().home() + QStringLiteral("/stored");
    QString const root = folders().home() + QStringLiteral("/root");
    QString const file = folders().home() + QStringLiteral("/file.txt");
    QDir().mkpath(stored);
    QDir().mkpath(root);
    QFile(file).open(QIODevice::WriteOnly);
    auto site = siteProfile("Site", "ftp", "site.example", 21);
    struct Row {
        char const* what;
        QString storedPath;
        std::optional<std::string> localRoot; // no saved connection without one
        QString expected;
    } const rows[] = {
        {"no connection, the stored folder", stored, std::nullopt, stored},
        {"no connection, a stored path that is no folder", file, std::nullopt, folders().home()},
        {"a connection without a local root", stored, "", folders().home()},
        {"a connection's local root over the stored path", stored, root.toStdString(), root},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        if (row.localRoot) {
            site.localRoot = *row.localRoot;
            writeSites(baseDatabase(), {site});
        }
        settings().setValue(QStringLiteral("PerchFtpLastLocalPanePath"), row.storedPath);
        startShell();
        EXPECT_EQ(controller().localPane()->pathValue(), row.expected);
        stopShell();
    }
}

TEST_F(StartUp, TheSplashGivesWayToAMainWindowWithEveryAreaMenuAndItsDivider)
{
    QElapsedTimer clock;
    clock.start();
    startShell();
    ASSERT_TRUE(splash()->isVisible());
    EXPECT_EQ(splash()->size(), QSize(420, 240));
    QMainWindow* window = controller().hostWindow();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "PerchFtp");
    EXPECT_EQ(window->size(), QSize(1360, 740));
    EXPECT_EQ(window->minimumSize(), QSize(840, 520));

    QStringList protocols;
    for (int index = 0; index < controller().protocolField()->count(); ++index) {
        protocols << controller().protocolField()->itemText(index);
    }
    EXPECT_EQ(protocols, (QStringList{"ftp", "ftps", "sftp"}));
    EXPECT_EQ(controller().secretField()->echoMode(), QLineEdit::Password);
    EXPECT_EQ(controller().connectButton()->text(), "Connect");
    EXPECT_FALSE(controller().disconnectButton()->isVisibleTo(window) || controller().disconnectButton()->isEnabled());
    EXPECT_FALSE(controller().refreshButton()->isEnabled());
    EXPECT_FALSE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 0 total | Running: 0 | Completed: 0 | Failed: 0");
    EXPECT_EQ(controller().connectionStatusText()->text(), "Disconnected");
    EXPECT_TRUE(controller().queueTable()->horizontalHeader()->isHidden());
    ASSERT_NE(controller().queueLog(), nullptr);
    EXPECT_TRUE(controller().queueLog()->isReadOnly());

    // Storage for the transfer workflow, never on screen.
    for (QWidget* hidden : std::initializer_list<QWidget*>{controller().localTransferField(),
             controller().remoteTransferField(), controller().uploadButton(), controller().downloadButton()}) {
        EXPECT_NE(hidden->window(), window);
    }
    EXPECT_FALSE(controller().uploadButton()->isEnabled() || controller().downloadButton()->isEnabled());

    QStringList menus;
    std::map<QString, QStringList> items;
    for (QAction* menu : controller().mainMenu()->actions()) {
        menus << menu->text();
        for (QAction* item : menu->menu()->actions()) {
            items[menu->text()] << (item->isSeparator()
                    ? QStringLiteral("-")
                    : item->text() + u' ' + item->shortcut().toString(QKeySequence::PortableText));
        }
    }
    EXPECT_EQ(menus, (QStringList{"PerchFtp", "File", "Edit", "Connection", "Transfer"}));
    EXPECT_EQ(items["PerchFtp"], (QStringList{"About PerchFtp ", "-", "Quit PerchFtp Ctrl+Q"}));
    EXPECT_EQ(items["File"], (QStringList{"Open Local Folder Ctrl+O", "Save Connection Ctrl+S",
                                 "Open Saved Connection Ctrl+Shift+O", "-", "Refresh Panes Ctrl+R"}));
    EXPECT_EQ(items["Edit"], (QStringList{"Undo Ctrl+Z", "Redo Ctrl+Shift+Z", "-", "Cut Ctrl+X", "Copy Ctrl+C",
                                 "Paste Ctrl+V", "Select All Ctrl+A"}));
    EXPECT_EQ(items["Connection"], (QStringList{"Connect Ctrl+Shift+C", "Disconnect Ctrl+Shift+D"}));
    EXPECT_EQ(items["Transfer"], (QStringList{"Upload Ctrl+U", "Download Ctrl+Shift+U"}));

    // Once the loop turns, the divider gives the local pane ten pixels more than half.
    app::PerchPaneSplitView* split = controller().paneSplitView();
    ASSERT_TRUE(waitUntil([&] { return split->sizes().value(0) > 0 && split->width() > 1000; }));
    QList<int> const sizes = split->sizes();
    EXPECT_EQ(sizes[0] + sizes[1], split->width() - 40) << "the lane between the panes is 40 wide";
    EXPECT_NEAR(sizes[0] - (sizes[0] + sizes[1]) / 2, 10, 1);

    ASSERT_TRUE(waitUntil([&] { return window->isVisible(); }, 4000));
    EXPECT_GE(clock.elapsed(), 1250);
    EXPECT_FALSE(splash()->isVisible());
    EXPECT_EQ(split->sizes(), sizes) << "showing the window keeps the placement";

    // Edit items act on the focused field.
    QLineEdit* host = controller().hostField();
    host->setText("example.org");
    host->setFocus();
    QApplication::setActiveWindow(window);
    ASSERT_TRUE(waitUntil([&] { return QApplication::focusWidget() == host; }));
    for (QAction* item : controller().mainMenu()->actions()[2]->menu()->actions()) {
        if (item->text() == "Select All") {
            item->trigger();
        }
    }
    EXPECT_EQ(host->selectedText(), "example.org");

    // Closing the main window ends the event loop.
    bool closed = false;
    QTimer::singleShot(0, [&] { closed = window->close(); });
    QTimer::singleShot(8000, [] { QCoreApplication::exit(7); });
    EXPECT_EQ(QApplication::exec(), 0) << "the loop ended through the window, not through the guard";
    EXPECT_TRUE(closed);
}

// The gate runs before the controller, so this test starts the shell by hand.
TEST(LicenceGate, DecliningBuildsNothingAndTheNextStartsAskUntilAccepted)
{
    IsolatedUserFolders folders;
    ScriptedShellDialogs script; // every copy handed to the shell answers from this script
    script.expectLicence(false);
    EXPECT_FALSE(app::startDesktopShell(application(), std::make_unique<ScriptedShellDialogs>(script)).has_value());
    ASSERT_EQ(script.questions().size(), 1u);
    EXPECT_TRUE(script.questions().front().text.contains("PerchFtp Licence Agreement"));
    EXPECT_FALSE(settings().contains(app::kLicenceAcceptedKey));
    EXPECT_FALSE(QFile::exists(folders.baseFolder())) << "no controller was made";

    script.expectLicence(true);
    EXPECT_TRUE(app::startDesktopShell(application(), std::make_unique<ScriptedShellDialogs>(script)).has_value());
    EXPECT_TRUE(app::startDesktopShell(application(), std::make_unique<ScriptedShellDialogs>(script)).has_value());
    EXPECT_EQ(script.questions().size(), 2u) << "asked again once, then the acceptance is kept";
}

} // namespace
} // namespace perchftp::test
