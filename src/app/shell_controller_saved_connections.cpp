// The connection form and the saved connections: saving the form, loading a profile into the form
// and the panes, remembering the connection and the local folder used last, and the protocol's
// default port. Saved data changes in memory first and on disk second.
#include "app/shell_controller.hpp"

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_prompts.hpp"
#include "app/shell_text.hpp"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QSettings>

#include <algorithm>

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

// A name already saved is overwritten without a question and keeps its id. A new name for the same
// host, user and protocol is refused by the site manager whatever the port, so the form can edit a
// saved connection but not copy or rename it.
void PerchFtpShellController::saveConnection()
{
    QString const host = hostField_->text();
    QString protocolTitle = selectedProtocolTitle();
    if (protocolTitle.isNull()) {
        protocolTitle = QStringLiteral("ftp");
    }
    if (host.isEmpty()) {
        setStatusText(QStringLiteral("Host is required before saving a connection."), true);
        return;
    }
    int const port = detail::leadingIntValue(portField_->text());
    if (port < 1 || port > 65535) {
        setStatusText(QStringLiteral("Port must be between 1 and 65535 before saving."), true);
        return;
    }
    std::optional<QString> const answer = promptForText(*dialogs_, hostWindow_, QStringLiteral("Save Connection"),
        QStringLiteral("Enter a saved connection name."), host, QStringLiteral("My Server"));
    if (!answer) {
        setStatusText(QStringLiteral("Save connection canceled."), false);
        return;
    }

    std::string const name = detail::qtToCpp(*answer);
    storage::SiteProfile const profile = siteProfileFromForm(name, protocolTitle, port);
    std::vector<storage::SiteProfile> const sites = siteManager_.listSites();
    auto const existing = std::find_if(
        sites.begin(), sites.end(), [&](storage::SiteProfile const& site) { return site.name == name; });
    std::int32_t id = 0;
    QString message;
    if (existing != sites.end()) {
        if (!siteManager_.updateSite(existing->id, profile)) {
            setStatusText(QStringLiteral("Existing connection was found, but updating it failed."), true);
            return;
        }
        id = existing->id;
        message = QStringLiteral("Updated saved connection \"%1\".").arg(*answer);
    } else {
        id = siteManager_.addSite(profile);
        if (id == 0) {
            setStatusText(QStringLiteral("Connection details are invalid and could not be saved."), true);
            return;
        }
        message = QStringLiteral("Saved connection \"%1\".").arg(*answer);
    }
    if (siteStore_ && !siteStore_->save(siteManager_.snapshot())) {
        setStatusText(QStringLiteral("Connection updated in memory, but saving to disk failed."), true);
        return;
    }
    if (id != 0) {
        persistLastUsedConnectionNamed(name);
    }
    setStatusText(message, false);
}

// The form as a profile; every field the form does not hold keeps its default.
storage::SiteProfile PerchFtpShellController::siteProfileFromForm(
    std::string name, QString const& protocolTitle, int port) const
{
    QString const localRoot = localPane_->pathValue();
    QString const remoteRoot = remotePane_->pathValue();
    storage::SiteProfile profile;
    profile.name = std::move(name);
    profile.protocol = detail::lowerAscii(detail::qtToCpp(protocolTitle));
    profile.host = detail::qtToCpp(hostField_->text());
    profile.port = port;
    profile.user = detail::qtToCpp(userField_->text());
    profile.secretRef = detail::qtToCpp(secretField_->text());
    profile.localRoot = detail::qtToCpp(localRoot.isNull() ? QDir::homePath() : localRoot);
    profile.remoteRoot = detail::qtToCpp(remoteRoot.isNull() ? QStringLiteral("/") : remoteRoot);
    profile.group = "General";
    profile.quickConnect = false;
    return profile;
}

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
    QString title = selectedProtocolTitle();
    if (title.isNull()) {
        title = QStringLiteral("ftp");
    }
    int const port = detail::defaultPortForProtocol(selectedProtocolName());
    portField_->setText(QString::number(port));
    setStatusText(QStringLiteral("Protocol set to %1, default port %2.").arg(title).arg(port), false);
}

} // namespace perchftp::app
