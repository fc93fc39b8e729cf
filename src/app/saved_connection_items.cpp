#include "app/saved_connection_items.hpp"

#include "app/shell_text.hpp"

namespace perchftp::app {

std::vector<SavedConnectionItem> savedConnectionItems(std::vector<storage::SiteProfile> const& profiles)
{
    QString const none(QLatin1String(""));
    std::vector<SavedConnectionItem> items;
    items.reserve(profiles.size());
    for (storage::SiteProfile const& profile : profiles) {
        SavedConnectionItem item;
        item.id = profile.id;
        item.name = detail::fromUtf8Or(profile.name, QStringLiteral("Saved Connection"));
        item.protocol = detail::fromUtf8Or(profile.protocol, QStringLiteral("ftp"));
        item.host = detail::fromUtf8Or(profile.host, none);
        item.user = detail::fromUtf8Or(profile.user, none);
        item.secret = detail::fromUtf8Or(profile.secretRef, none);
        item.port = profile.port;
        item.localRoot = detail::fromUtf8Or(profile.localRoot, none);
        item.remoteRoot = detail::fromUtf8Or(profile.remoteRoot, none);
        items.push_back(std::move(item));
    }
    return items;
}

QString savedConnectionRowText(SavedConnectionItem const& item)
{
    QString const separator = QStringLiteral("    ");
    if (item.user.isEmpty()) {
        return item.name + separator + item.host;
    }
    return item.name + separator + item.user + separator + item.host;
}

QStringList savedConnectionRowTexts(std::vector<SavedConnectionItem> const& items)
{
    QStringList rows;
    rows.reserve(static_cast<qsizetype>(items.size()));
    for (SavedConnectionItem const& item : items) {
        rows.push_back(savedConnectionRowText(item));
    }
    return rows;
}

} // namespace perchftp::app
