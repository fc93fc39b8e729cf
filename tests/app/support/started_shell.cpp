#include "started_shell.hpp"

#include "storage/persistent_store.hpp"

#include <QApplication>
#include <QDir>

namespace perchftp::test {

storage::SiteProfile siteProfile(std::string name, std::string protocol, std::string host, int port)
{
    storage::SiteProfile profile;
    profile.name = std::move(name);
    profile.protocol = std::move(protocol);
    profile.host = std::move(host);
    profile.port = port;
    return profile;
}

void writeSites(QString const& databasePath, std::vector<storage::SiteProfile> const& profiles)
{
    QDir().mkpath(QFileInfo(databasePath).absolutePath());
    storage::Snapshot snapshot;
    snapshot.profiles = profiles;
    for (std::size_t at = 0; at < snapshot.profiles.size(); ++at) {
        snapshot.profiles[at].id = snapshot.profiles[at].id != 0 ? snapshot.profiles[at].id : static_cast<int>(at) + 1;
    }
    ASSERT_TRUE(storage::createFileStore(databasePath.toStdString())->save(snapshot)) << databasePath.toStdString();
}

std::vector<storage::SiteProfile> readSites(QString const& databasePath)
{
    auto snapshot = storage::createFileStore(databasePath.toStdString())->load();
    return snapshot ? snapshot->profiles : std::vector<storage::SiteProfile>{};
}

void StartedShellTest::startShell()
{
    folders_.acceptLicence();
    auto dialogs = std::make_unique<ScriptedShellDialogs>();
    dialogs_ = dialogs.get();
    auto* application = static_cast<QApplication*>(QCoreApplication::instance());
    shell_ = app::startDesktopShell(*application, std::move(dialogs));
    ASSERT_TRUE(shell_.has_value());
}

void StartedShellTest::stopShell()
{
    if (shell_) {
        EXPECT_TRUE(dialogs_->scriptIsUsedUp()) << "the shell asked fewer questions than the script expects";
    }
    shell_.reset();
}

} // namespace perchftp::test
