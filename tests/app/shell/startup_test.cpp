#include "app/licence_gate.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_split_view.hpp"
#include "app/status/connect_button.hpp"
#include "app/shell_startup.hpp"
#include "support/isolated_user_folders.hpp"
#include "support/scripted_shell_dialogs.hpp"
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

TEST_F(StartUp, TheDatabaseInTheBaseFolderWinsOverTheWorkingDirectoryEvenWithoutProfiles)
{
    writeSites(baseDatabase(), {});
    writeSites(workingDirectoryDatabase(), {siteProfile("Old", "ftp", "old.example", 21)});
    startShell();

    EXPECT_TRUE(controller().siteManager().listSites().empty());
    auto const older = readSites(workingDirectoryDatabase());
    ASSERT_TRUE(older);
    EXPECT_EQ(older->size(), 1u) << "the older file is not read, so nothing is written back to it";
}

TEST_F(StartUp, AnOlderFileInTheWorkingDirectoryIsMigratedIntoTheBaseFolderOnTheSameStart)
{
    writeSites(workingDirectoryDatabase(), {siteProfile("Old", "ftp", "old.example", 21)});
    startShell();

    ASSERT_EQ(controller().siteManager().listSites().size(), 1u);
    auto const migrated = readSites(baseDatabase());
    ASSERT_TRUE(migrated);
    ASSERT_EQ(migrated->size(), 1u);
    EXPECT_EQ(migrated->front().host, "old.example");
}

TEST_F(StartUp, ALoadThatDropsEntriesIsWrittenBackAtOnce)
{
    writeSites(baseDatabase(),
        {siteProfile("One", "ftp", "same.example", 21), siteProfile("Two", "ftp", "same.example", 2121)});
    startShell();

    EXPECT_EQ(controller().siteManager().listSites().size(), 1u);
    auto const stored = readSites(baseDatabase());
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->size(), 1u);
}

TEST_F(StartUp, WithNoSavedDataTheManagerStaysEmptyAndNoDatabaseIsMade)
{
    startShell();
    EXPECT_TRUE(controller().siteManager().listSites().empty());
    EXPECT_FALSE(QFile::exists(baseDatabase()));
}

TEST_F(StartUp, TheLastUsedConnectionFillsTheFormButThePortShowsTheProtocolsDefault)
{
    auto first = siteProfile("First", "ftp", "first.example", 21);
    auto used = siteProfile("Used", "sftp", "used.example", 2222);
    used.user = "ada";
    used.secretRef = "s3cret";
    used.remoteRoot = "/srv/files";
    used.quickConnect = true;
    auto last = siteProfile("Last", "ftps", "last.example", 990);
    writeSites(baseDatabase(), {first, used, last});
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
    EXPECT_TRUE(stored->at(1).quickConnect) << "a start marks nothing";
    EXPECT_FALSE(stored->at(2).quickConnect);
}

TEST_F(StartUp, WithoutAMarkTheLastConnectionOfTheListIsLoaded)
{
    writeSites(baseDatabase(), {siteProfile("A", "ftp", "a.example", 21), siteProfile("B", "ftps", "b.example", 990)});
    startShell();
    EXPECT_EQ(controller().hostField()->text(), "b.example");
    EXPECT_EQ(controller().portField()->text(), "21") << "ftps has the default port of ftp";
}

TEST_F(StartUp, TheLocalPaneOpensAtTheSavedConnectionsLocalRootRatherThanTheStoredPath)
{
    QString const stored = folders().home() + QStringLiteral("/stored");
    QString const root = folders().home() + QStringLiteral("/root");
    QDir().mkpath(stored);
    QDir().mkpath(root);
    QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).setValue("PerchFtpLastLocalPanePath", stored);
    auto profile = siteProfile("Site", "ftp", "site.example", 21);
    profile.localRoot = root.toStdString();
    writeSites(baseDatabase(), {profile});
    startShell();

    EXPECT_EQ(controller().localPane()->pathValue(), root);
}

TEST_F(StartUp, ASavedConnectionWithoutALocalRootOpensTheHomeFolder)
{
    QString const stored = folders().home() + QStringLiteral("/stored");
    QDir().mkpath(stored);
    QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).setValue("PerchFtpLastLocalPanePath", stored);
    writeSites(baseDatabase(), {siteProfile("Site", "ftp", "site.example", 21)});
    startShell();

    EXPECT_EQ(controller().localPane()->pathValue(), folders().home());
}

TEST_F(StartUp, WithoutSavedConnectionsTheLocalPaneOpensAtTheStoredPathWhenItIsAFolder)
{
    QString const stored = folders().home() + QStringLiteral("/stored");
    QDir().mkpath(stored);
    QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).setValue("PerchFtpLastLocalPanePath", stored);
    startShell();
    EXPECT_EQ(controller().localPane()->pathValue(), stored);
}

TEST_F(StartUp, AStoredPathThatIsNoFolderLeavesTheLocalPaneAtHome)
{
    QString const file = folders().home() + QStringLiteral("/file.txt");
    QFile(file).open(QIODevice::WriteOnly);
    QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).setValue("PerchFtpLastLocalPanePath", file);
    startShell();
    EXPECT_EQ(controller().localPane()->pathValue(), folders().home());
}

TEST_F(StartUp, TheBaseFolderIsPrivateAndHoldsTheTrackerState)
{
    startShell();
    QFileInfo const base(folders().baseFolder());
    ASSERT_TRUE(base.isDir());
    EXPECT_EQ(base.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
                                       | QFile::WriteOther | QFile::ExeOther),
        QFile::Permissions());
    EXPECT_TRUE(QFile::exists(folders().baseFolder() + QStringLiteral("/install-tracker.state")));
}

TEST_F(StartUp, TheSplashGivesWayToTheMainWindowOneAndAQuarterSecondsLater)
{
    QElapsedTimer clock;
    clock.start();
    startShell();
    ASSERT_TRUE(splash()->isVisible());
    EXPECT_FALSE(controller().hostWindow()->isVisible());
    EXPECT_EQ(splash()->size(), QSize(420, 240));

    ASSERT_TRUE(waitUntil([&] { return controller().hostWindow()->isVisible(); }, 4000));
    EXPECT_GE(clock.elapsed(), 1250);
    EXPECT_FALSE(splash()->isVisible());
}

TEST_F(StartUp, TheMainWindowStartsWithItsAreasAndControlsInTheirFirstState)
{
    startShell();
    QMainWindow* window = controller().hostWindow();
    EXPECT_EQ(window->windowTitle(), "PerchFtp");
    EXPECT_EQ(window->size(), QSize(1360, 740));
    EXPECT_EQ(window->minimumSize(), QSize(840, 520));

    QStringList protocols;
    for (int index = 0; index < controller().protocolField()->count(); ++index) {
        protocols << controller().protocolField()->itemText(index);
    }
    EXPECT_EQ(protocols, (QStringList{"ftp", "ftps", "sftp"}));
    EXPECT_EQ(controller().userField()->placeholderText(), "optional");
    EXPECT_EQ(controller().secretField()->echoMode(), QLineEdit::Password);

    EXPECT_EQ(controller().connectButton()->text(), "Connect");
    EXPECT_FALSE(controller().disconnectButton()->isVisibleTo(window));
    EXPECT_FALSE(controller().disconnectButton()->isEnabled());
    EXPECT_FALSE(controller().refreshButton()->isEnabled());
    EXPECT_FALSE(controller().clearQueueButton()->isEnabled());
    EXPECT_EQ(controller().queueSummary()->text(), "Queue: 0 total | Running: 0 | Completed: 0 | Failed: 0");
    EXPECT_EQ(controller().connectionStatusText()->text(), "Disconnected");

    QTableView* table = controller().queueTable();
    EXPECT_TRUE(table->horizontalHeader()->isHidden());
    EXPECT_EQ(table->columnWidth(0), 360);
    EXPECT_EQ(table->columnWidth(1), 160);
    EXPECT_EQ(table->columnWidth(2), 120);
    EXPECT_EQ(table->columnWidth(3), 170);

    // Storage for the transfer workflow, never on screen.
    EXPECT_EQ(controller().localTransferField()->placeholderText(), "/tmp/file.txt");
    EXPECT_EQ(controller().remoteTransferField()->placeholderText(), "/destination/file.txt");
    for (QWidget* hidden : {static_cast<QWidget*>(controller().localTransferField()),
             static_cast<QWidget*>(controller().remoteTransferField()),
             static_cast<QWidget*>(controller().uploadButton()), static_cast<QWidget*>(controller().downloadButton())}) {
        EXPECT_NE(hidden->window(), window);
    }
    EXPECT_FALSE(controller().uploadButton()->isEnabled());
    EXPECT_FALSE(controller().downloadButton()->isEnabled());
    ASSERT_NE(controller().queueLog(), nullptr);
    EXPECT_TRUE(controller().queueLog()->isReadOnly());
}

TEST_F(StartUp, OnceTheLoopTurnsTheDividerGivesTheLocalPaneTenPixelsMore)
{
    startShell();
    app::PerchPaneSplitView* split = controller().paneSplitView();
    ASSERT_TRUE(waitUntil([&] { return split->sizes().value(0) > 0 && split->width() > 1000; }));
    QList<int> const sizes = split->sizes();
    EXPECT_EQ(sizes[0] + sizes[1], split->width() - 40) << "the lane between the panes is 40 wide";
    EXPECT_NEAR(sizes[0] - (sizes[0] + sizes[1]) / 2, 10, 1);

    ASSERT_TRUE(waitUntil([&] { return controller().hostWindow()->isVisible(); }, 4000));
    EXPECT_EQ(split->sizes(), sizes) << "showing the window keeps the placement";
}

TEST_F(StartUp, TheMenuBarHoldsEveryItemWithItsKey)
{
    startShell();
    std::map<QString, QStringList> items;
    for (QAction* menuAction : controller().mainMenu()->actions()) {
        for (QAction* item : menuAction->menu()->actions()) {
            items[menuAction->text()] << (item->isSeparator()
                    ? QStringLiteral("-")
                    : item->text() + u' ' + item->shortcut().toString(QKeySequence::PortableText));
        }
    }
    QStringList menus;
    for (QAction* menuAction : controller().mainMenu()->actions()) {
        menus << menuAction->text();
    }
    EXPECT_EQ(menus, (QStringList{"PerchFtp", "File", "Edit", "Connection", "Transfer"}));
    EXPECT_EQ(items["PerchFtp"], (QStringList{"About PerchFtp ", "-", "Quit PerchFtp Ctrl+Q"}));
    EXPECT_EQ(items["File"], (QStringList{"Open Local Folder Ctrl+O", "Save Connection Ctrl+S",
                                 "Open Saved Connection Ctrl+Shift+O", "-", "Refresh Panes Ctrl+R"}));
    EXPECT_EQ(items["Edit"], (QStringList{"Undo Ctrl+Z", "Redo Ctrl+Shift+Z", "-", "Cut Ctrl+X", "Copy Ctrl+C",
                                 "Paste Ctrl+V", "Select All Ctrl+A"}));
    EXPECT_EQ(items["Connection"], (QStringList{"Connect Ctrl+Shift+C", "Disconnect Ctrl+Shift+D"}));
    EXPECT_EQ(items["Transfer"], (QStringList{"Upload Ctrl+U", "Download Ctrl+Shift+U"}));
}

TEST_F(StartUp, EditMenuItemsActOnTheFocusedField)
{
    startShell();
    ASSERT_TRUE(waitUntil([&] { return controller().hostWindow()->isVisible(); }, 4000));
    QLineEdit* host = controller().hostField();
    host->setText("example.org");
    host->setFocus();
    QApplication::setActiveWindow(controller().hostWindow());
    ASSERT_TRUE(waitUntil([&] { return QApplication::focusWidget() == host; }));
    for (QAction* menuAction : controller().mainMenu()->actions()) {
        for (QAction* item : menuAction->menu()->actions()) {
            if (item->text() == "Select All") {
                item->trigger();
            }
        }
    }
    EXPECT_EQ(host->selectedText(), "example.org");
}

TEST_F(StartUp, ClosingTheMainWindowEndsTheEventLoop)
{
    startShell();
    bool closed = false;
    QTimer::singleShot(1500, [&] { closed = controller().hostWindow()->close(); });
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, [] { QCoreApplication::exit(7); });
    guard.start(8000);
    int const status = QApplication::exec();
    EXPECT_TRUE(closed);
    EXPECT_EQ(status, 0) << "the loop ended through the window, not through the guard";
}

// The gate runs before the controller, so these tests start the shell by hand.
TEST(LicenceGate, DecliningBuildsNothingAndTheNextStartAsksAgain)
{
    IsolatedUserFolders folders;
    auto dialogs = std::make_unique<ScriptedShellDialogs>();
    auto* script = dialogs.get();
    script->expectLicence(false);
    auto shell = app::startDesktopShell(application(), std::move(dialogs));
    EXPECT_FALSE(shell.has_value());
    ASSERT_EQ(script->questions().size(), 1u);
    EXPECT_TRUE(script->questions().front().text.contains("PerchFtp Licence Agreement"));
    EXPECT_FALSE(QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp")).contains(app::kLicenceAcceptedKey));
    EXPECT_FALSE(QFile::exists(folders.baseFolder())) << "no controller was made";
}

TEST(LicenceGate, AnAcceptanceIsKeptSoThatLaterStartsDoNotAsk)
{
    IsolatedUserFolders folders;
    {
        auto dialogs = std::make_unique<ScriptedShellDialogs>();
        dialogs->expectLicence(true);
        auto shell = app::startDesktopShell(application(), std::move(dialogs));
        ASSERT_TRUE(shell.has_value());
    }
    auto dialogs = std::make_unique<ScriptedShellDialogs>();
    auto* script = dialogs.get();
    auto shell = app::startDesktopShell(application(), std::move(dialogs));
    ASSERT_TRUE(shell.has_value());
    EXPECT_TRUE(script->questions().empty());
}

} // namespace
} // namespace perchftp::test
