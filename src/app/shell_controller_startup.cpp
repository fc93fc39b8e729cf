// The controller's life: what it does before any window exists, and its teardown.
#include "app/shell_controller.hpp"

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_paths.hpp"
#include "app/shell_text.hpp"
#include "core/bootstrap.hpp"
#include "platform/install_tracker.hpp"
#include "protocol/remote_session.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QMainWindow>
#include <QMenuBar>
#include <QWidget>

#include <cstdio>

namespace perchftp::app {

PerchFtpShellController::PerchFtpShellController(std::unique_ptr<ShellDialogs> dialogs, QObject* parent)
    : QObject(parent)
    , dialogs_(dialogs ? std::move(dialogs) : createDesktopDialogs())
    , transferQueue_(transfer::TransferQueue())
{
    baseFolder_ = shellBaseFolder();
    makePrivateFolder(baseFolder_);
    runInstallTracker();
    loadSavedConnections();
}

PerchFtpShellController::~PerchFtpShellController()
{
    if (session_) {
        (void)session_->disconnect();
        delete session_;
        session_ = nullptr;
    }
    takeAwayPopup();
    delete hostWindow_.data();
    delete mainMenu_.data();
}

void PerchFtpShellController::setDialogs(std::unique_ptr<ShellDialogs> dialogs)
{
    if (dialogs) {
        dialogs_ = std::move(dialogs);
        for (PerchFilePaneController* pane : {localPane_, remotePane_}) {
            if (pane) {
                pane->setDialogs(dialogs_.get());
            }
        }
    }
}

void PerchFtpShellController::setSession(protocol::IRemoteSession* session)
{
    if (session_ != session) {
        delete session_;
        session_ = session;
    }
}

bool PerchFtpShellController::isConnected() const
{
    return session_ && session_->isConnected();
}

// Runs here, on the main thread, so that a slow endpoint delays the start before any window.
// Its one line goes to standard error and nowhere else.
void PerchFtpShellController::runInstallTracker() const
{
    platform::InstallTracker tracker(platform::installTrackerConfigFromEnvironment(
        detail::qtToCpp(QDir(baseFolder_).filePath(QString::fromLatin1(kTrackerStateName))), core::version()));
    std::string const line = tracker.sync() ? "Install tracking ready (" + tracker.installId() + ")"
                                            : "Install tracking skipped: " + tracker.lastError();
    std::fprintf(stderr, "[PerchFtp] %s\n", line.c_str());
}

// The database in the base folder wins whenever it yields a snapshot, even an empty one; the
// file in the working directory is read only when it yields nothing, and is then migrated.
void PerchFtpShellController::loadSavedConnections()
{
    siteStore_ = storage::createFileStore(
        detail::qtToCpp(QDir(baseFolder_).filePath(QString::fromLatin1(kSiteDatabaseName))));
    std::optional<storage::Snapshot> const loaded = siteStore_ ? siteStore_->load() : std::nullopt;
    if (loaded) {
        std::size_t const count = loaded->profiles.size();
        siteManager_.loadFromSnapshot(*loaded);
        if (siteStore_ && siteManager_.listSites().size() != count) {
            siteStore_->save(siteManager_.snapshot());
        }
        return;
    }

    std::unique_ptr<storage::IPersistentStore> olderStore = storage::createFileStore(kSiteDatabaseName);
    std::optional<storage::Snapshot> const older = olderStore ? olderStore->load() : std::nullopt;
    if (!older) {
        return;
    }
    std::size_t const count = older->profiles.size();
    siteManager_.loadFromSnapshot(*older);
    if (siteStore_) {
        siteStore_->save(siteManager_.snapshot());
    } else if (siteManager_.listSites().size() != count) {
        olderStore->save(siteManager_.snapshot());
    }
}

void PerchFtpShellController::windowWillClose()
{
    QCoreApplication::quit();
}

} // namespace perchftp::app
