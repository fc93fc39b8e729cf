// The connection form and the saved connections: loading a profile into the form and the panes,
// remembering the connection and the local folder used last, and the protocol's default port.
#include "app/shell_controller.hpp"

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_text.hpp"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QSettings>

namespace perchftp::app {

namespace {

constexpr char const* kLastLocalPanePathKey = "PerchFtpLastLocalPanePath";

QSettings userDefaults()
{
    return QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp"));
}

QString readable(std::string const& text, QString const& replacement)
{
    return detail::fromUtf8Or(text, replacement);
}

} // namespace

void PerchFtpShellController::applySavedSiteProfile(storage::SiteProfile const& profile)
{
    QString const home = QDir::homePath();
    QString const protocol = readable(profile.protocol, QStringLiteral("ftp"));
    QString const localRoot = readable(profile.localRoot, home);
    QString const remoteRoot = readable(profile.remoteRoot, QStringLiteral("/"));

    if (int const index = protocolField_->findText(protocol, Qt::MatchExactly); index >= 0) {
        protocolField_->setCurrentIndex(index);
    }
    hostField_->setText(readable(profile.host, QString()));
    portField_->setText(QString::number(profile.port));
    userField_->setText(readable(profile.user, QString()));
    secretField_->setText(readable(profile.secretRef, QString()));

    localPane_->setPathValue(localRoot.isEmpty() ? home : localRoot);
    remotePane_->setPathValue(remoteRoot.isEmpty() ? QStringLiteral("/") : remoteRoot);
    localTransferField_->clear();
    remoteTransferField_->clear();
    refreshLocalDirectory();
    if (isConnected()) {
        refreshRemoteDirectory();
    } else {
        remotePane_->showPlaceholder(QStringLiteral("Saved remote path loaded. Connect to browse."));
    }
}

// The connection used last is the one profile whose quickConnect is set; names decide.
void PerchFtpShellController::persistLastUsedConnectionNamed(std::string const& name)
{
    if (name.empty()) {
        return;
    }
    storage::Snapshot snapshot = siteManager_.snapshot();
    bool matched = false;
    for (auto& profile : snapshot.profiles) {
        profile.quickConnect = profile.name == name;
        matched = matched || profile.quickConnect;
    }
    if (!matched) {
        return;
    }
    siteManager_.loadFromSnapshot(snapshot);
    if (siteStore_) {
        (void)siteStore_->save(siteManager_.snapshot());
    }
}

// Marks nothing, so that a start changes nothing in the store.
void PerchFtpShellController::loadLastUsedConnectionIntoForm()
{
    std::vector<storage::SiteProfile> const sites = siteManager_.listSites();
    if (sites.empty()) {
        return;
    }
    storage::SiteProfile const* chosen = &sites.back();
    for (auto const& site : sites) {
        if (site.quickConnect) {
            chosen = &site;
        }
    }
    applySavedSiteProfile(*chosen);
}

void PerchFtpShellController::persistLastLocalPanePath(QString const& path)
{
    if (path.isEmpty()) {
        return;
    }
    userDefaults().setValue(QString::fromLatin1(kLastLocalPanePathKey), path);
}

void PerchFtpShellController::restoreLastLocalPanePath()
{
    QString const path = userDefaults().value(QString::fromLatin1(kLastLocalPanePathKey)).toString();
    if (!path.isEmpty() && QFileInfo(path).isDir()) {
        localPane_->setPathValue(path);
    }
}

// Writes the protocol's default port on every call, whatever port was typed before.
void PerchFtpShellController::protocolSelectionDidChange()
{
    QString title = protocolField_->currentIndex() >= 0 ? protocolField_->currentText() : QString();
    if (title.isNull()) {
        title = QStringLiteral("ftp");
    }
    std::string protocol = detail::lowerAscii(detail::trim(detail::qtToCpp(title)));
    if (protocol.empty()) {
        protocol = "ftp";
    }
    int const port = detail::defaultPortForProtocol(protocol);
    portField_->setText(QString::number(port));
    setStatusText(QStringLiteral("Protocol set to %1, default port %2.").arg(title).arg(port), false);
}

} // namespace perchftp::app
