// The list of saved connections: one modal dialog that opens, edits or deletes a connection. Opening
// and editing only fill the form and mark the connection as the one used last; nothing connects.
#include "app/shell_controller.hpp"

#include "app/app_icons.hpp"
#include "app/saved_connection_items.hpp"
#include "app/shell_text.hpp"

#include <QLineEdit>

namespace perchftp::app {

namespace {

constexpr int kEditButton = kFirstAlertButton + 1;
constexpr int kDeleteButton = kFirstAlertButton + 2;
constexpr int kCancelButton = kFirstAlertButton + 3;

} // namespace

void PerchFtpShellController::openSavedConnection()
{
    std::vector<SavedConnectionItem> const items = savedConnectionItems(siteManager_.listSites());
    if (items.empty()) {
        hostField_->clear();
        userField_->clear();
        secretField_->clear();
        setStatusText(QStringLiteral("No saved connections are available yet."), false);
        return;
    }

    SavedConnectionAnswer const answer = dialogs_->chooseSavedConnection(hostWindow_, items, appIconImage());
    if (answer.button == kCancelButton) {
        setStatusText(QStringLiteral("Open saved connection canceled."), false);
        return;
    }
    if (answer.row < 0 || static_cast<std::size_t>(answer.row) >= items.size()) {
        setStatusText(QStringLiteral("Saved connection selection is invalid."), true);
        return;
    }
    // The items are the dialog's snapshot; each action looks its profile up again by id.
    SavedConnectionItem const& item = items[static_cast<std::size_t>(answer.row)];
    if (answer.button == kDeleteButton) {
        deleteSavedConnection(item);
    } else {
        loadSavedConnection(item, answer.button == kEditButton);
    }
}

// No second question. Whichever connection goes, the last one of the list becomes the one used last.
void PerchFtpShellController::deleteSavedConnection(SavedConnectionItem const& item)
{
    if (!siteManager_.removeSite(item.id)) {
        setStatusText(QStringLiteral("Deleting the saved connection failed."), true);
        return;
    }
    if (siteStore_ && !siteStore_->save(siteManager_.snapshot())) {
        setStatusText(QStringLiteral("Saved connection deleted in memory, but saving to disk failed."), true);
        return;
    }
    std::vector<storage::SiteProfile> const remaining = siteManager_.listSites();
    if (!remaining.empty()) {
        persistLastUsedConnectionNamed(remaining.back().name);
    }
    hostField_->clear();
    userField_->clear();
    secretField_->clear();
    setStatusText(QStringLiteral("Deleted saved connection \"%1\".").arg(item.name), false);
}

// Edit and Open differ only in their words.
void PerchFtpShellController::loadSavedConnection(SavedConnectionItem const& item, bool editing)
{
    storage::SiteProfile const* found = siteManager_.findSite(item.id);
    if (!found) {
        setStatusText(QStringLiteral("Saved connection selection could not be resolved."), true);
        return;
    }
    storage::SiteProfile const profile = *found; // marking the last used one reloads the manager
    applySavedSiteProfile(profile);
    persistLastUsedConnectionNamed(profile.name);
    setStatusText(editing ? QStringLiteral("Editing saved connection \"%1\". Update the form and save it.").arg(item.name)
                          : QStringLiteral("Loaded saved connection \"%1\".").arg(item.name),
        false);
}

} // namespace perchftp::app
