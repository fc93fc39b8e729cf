#pragma once

#include "app/shell_startup.hpp"
#include "isolated_user_folders.hpp"
#include "scripted_shell_dialogs.hpp"
#include "storage/site_profile.hpp"

#include <gtest/gtest.h>

#include <QTest>

#include <functional>
#include <optional>
#include <vector>

namespace perchftp::test {

// Spins the event loop until the condition holds or the time is up; true when it held.
inline bool waitUntil(std::function<bool()> const& condition, int timeoutMs = 3000)
{
    return QTest::qWaitFor(condition, timeoutMs);
}

// A saved connection with the fields a test usually cares about.
storage::SiteProfile siteProfile(std::string name, std::string protocol, std::string host, int port);

// Writes the profiles into a site database at the path, through the real store.
void writeSites(QString const& databasePath, std::vector<storage::SiteProfile> const& profiles);

// The profiles a site database holds now; none when it gives no snapshot.
std::vector<storage::SiteProfile> readSites(QString const& databasePath);

// A test that starts the real shell in fresh user folders, with the licence accepted and the
// dialogs answered from a script.
class StartedShellTest : public testing::Test {
protected:
    void startShell();
    // Starts the shell and waits until the start-up's own popup has gone, so that a test sees only
    // its own, and the main window is exposed and active: until then a popup is painted nowhere.
    void startShownShell();
    // Destroys the shell as the program's end would; also done after every test.
    void stopShell();
    void TearDown() override { stopShell(); }

    app::PerchFtpShellController& controller() { return *shell_->controller; }
    // The banner with its marker, and the open popup's message ("" without a popup).
    QString banner();
    QString popupMessage();
    // Types into the connection form as a user does.
    void fillForm(QString const& protocol, QString const& host, QString const& port,
        std::string const& user = {}, std::string const& password = {});
    app::PerchSplashWindow* splash() { return shell_->splash.get(); }
    ScriptedShellDialogs& dialogs() { return *dialogs_; }
    IsolatedUserFolders const& folders() const { return folders_; }
    QString baseDatabase() const { return folders_.baseFolder() + QStringLiteral("/perchftp-sites.db"); }
    QString workingDirectoryDatabase() const
    {
        return folders_.workingDirectory() + QStringLiteral("/perchftp-sites.db");
    }

private:
    IsolatedUserFolders folders_;
    ScriptedShellDialogs* dialogs_ = nullptr;
    std::optional<app::RunningShell> shell_;
};

} // namespace perchftp::test
