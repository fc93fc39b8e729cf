// Start-up: where the site data is read from and written back, what fills the form, the window
// that follows the splash, and the licence gate before any of it.
#include "app/licence_gate.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_split_view.hpp"
#include "app/shell_startup.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTimer>

namespace perchftp::test {
namespace {

using StartUp = StartedShellTest;

QSettings settings()
{
    return QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp"));
}

std::size_t storedCount(QString const& database)
{
    return readSites(database).value_or(std::vector<storage::SiteProfile>{}).size();
}

TEST_F(StartUp, SiteDataIsReadFromTheBaseFolderFirstAndMigratedOrWrittenBackThere)
{
    // Nothing saved: nothing is loaded and no database is made; the base folder is private.
    startShell();
    EXPECT_TRUE(controller().siteManager().listSites().empty());
    EXPECT_FALSE(QFile::exists(baseDatabase()));
    QFileInfo const base(folders().baseFolder());
    ASSERT_TRUE(base.isDir());
    EXPECT_EQ(base.permissions() & ~(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadUser
                                       | QFile::WriteUser | QFile::ExeUser),
        QFile::Permissions());
    EXPECT_TRUE(QFile::exists(folders().baseFolder() + QStringLiteral("/install-tracker.state")));
    stopShell();

    struct Row {
        char const* what;
        std::optional<std::vector<storage::SiteProfile>> inBase;
        std::size_t loaded;
        std::size_t storedInBase;
        std::size_t leftInWorkingDirectory;
    } const rows[] = {
        {"an older file in the working directory is migrated", std::nullopt, 1, 1, 1},
        {"the base folder's database wins even without profiles", std::vector<storage::SiteProfile>{}, 0, 0, 1},
        {"a load that drops entries is written back at once",
            std::vector{siteProfile("One", "ftp", "same.example", 21), siteProfile("Two", "ftp", "same.example", 2121)},
            1, 1, 1},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        QFile::remove(baseDatabase());
        if (row.inBase) {
            writeSites(baseDatabase(), *row.inBase);
        }
        writeSites(workingDirectoryDatabase(), {siteProfile("Old", "ftp", "old.example", 21)});
        startShell();
        EXPECT_EQ(controller().siteManager().listSites().size(), row.loaded);
        EXPECT_EQ(storedCount(baseDatabase()), row.storedInBase);
        EXPECT_EQ(storedCount(workingDirectoryDatabase()), row.leftInWorkingDirectory);
        stopShell();
    }
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

TEST_F(StartUp, TheSplashGivesWayToAMainWindowWithItsMenusAndItsDivider)
{
    QElapsedTimer clock;
    clock.start();
    startShell();
    ASSERT_TRUE(splash()->isVisible());
    QMainWindow* window = controller().hostWindow();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "PerchFtp");

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

    // Once the loop turns, the divider gives the local pane ten pixels more than half, and
    // showing the window keeps that placement.
    app::PerchPaneSplitView* split = controller().paneSplitView();
    ASSERT_TRUE(waitUntil([&] { return split->sizes().value(0) > 0 && split->width() > 1000; }));
    QList<int> const sizes = split->sizes();
    EXPECT_NEAR(sizes[0] - (sizes[0] + sizes[1]) / 2, 10, 1);
    ASSERT_TRUE(waitUntil([&] { return window->isVisible(); }, 4000));
    EXPECT_GE(clock.elapsed(), 1250);
    EXPECT_FALSE(splash()->isVisible());
    EXPECT_EQ(split->sizes(), sizes);

    // Closing the main window ends the event loop.
    QTimer::singleShot(0, [&] { window->close(); });
    QTimer::singleShot(8000, [] { QCoreApplication::exit(7); });
    EXPECT_EQ(QApplication::exec(), 0) << "the loop ended through the window, not through the guard";
}

// The gate runs before the controller, so this test starts the shell by hand.
TEST(LicenceGate, DecliningBuildsNothingAndTheNextStartsAskUntilAccepted)
{
    IsolatedUserFolders folders;
    ScriptedShellDialogs script; // every copy handed to the shell answers from this script
    script.expectLicence(false);
    auto& application = *static_cast<QApplication*>(QCoreApplication::instance());
    EXPECT_FALSE(app::startDesktopShell(application, std::make_unique<ScriptedShellDialogs>(script)).has_value());
    ASSERT_EQ(script.questions().size(), 1u);
    EXPECT_TRUE(script.questions().front().text.contains("PerchFtp Licence Agreement"));
    EXPECT_FALSE(settings().contains(app::kLicenceAcceptedKey));
    EXPECT_FALSE(QFile::exists(folders.baseFolder())) << "no controller was made";

    script.expectLicence(true);
    EXPECT_TRUE(app::startDesktopShell(application, std::make_unique<ScriptedShellDialogs>(script)).has_value());
    EXPECT_TRUE(app::startDesktopShell(application, std::make_unique<ScriptedShellDialogs>(script)).has_value());
    EXPECT_EQ(script.questions().size(), 2u) << "asked again once, then the acceptance is kept";
}

} // namespace
} // namespace perchftp::test
