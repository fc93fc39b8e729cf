#include "started_shell.hpp"

#include "storage/persistent_store.hpp"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>

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

void StartedShellTest::startShownShell()
{
    startShell();
    QMainWindow* window = controller().hostWindow();
    ASSERT_TRUE(waitUntil([&] { return controller().statusPopupWindow() == nullptr; }));
    ASSERT_TRUE(waitUntil([&] { return window->isVisible(); }));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    QApplication::setActiveWindow(window);
    ASSERT_TRUE(waitUntil([&] { return window->isActiveWindow(); }));
}

QString StartedShellTest::banner()
{
    return controller().statusLabel()->text();
}

QString StartedShellTest::popupMessage()
{
    QLabel* message = controller().statusPopupMessage();
    return message ? message->text() : QStringLiteral("");
}

void StartedShellTest::fillForm(QString const& protocol, QString const& host, QString const& port,
    std::string const& user, std::string const& password)
{
    controller().protocolField()->setCurrentText(protocol);
    controller().hostField()->setText(host);
    controller().portField()->setText(port);
    controller().userField()->setText(QString::fromStdString(user));
    controller().secretField()->setText(QString::fromStdString(password));
}

void StartedShellTest::stopShell()
{
    if (shell_) {
        EXPECT_TRUE(dialogs_->scriptIsUsedUp()) << "the shell asked fewer questions than the script expects";
    }
    shell_.reset();
}

} // namespace perchftp::test
