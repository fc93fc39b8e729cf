#pragma once

#include "storage/site_profile.hpp"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace perchftp::app {

// One row of the saved-connection list: a copy of a profile taken when the list opens, with
// text that cannot be read replaced. It names its profile by id, to be looked up again later.
struct SavedConnectionItem {
    std::int32_t id = 0;
    QString name;       // "Saved Connection" when missing
    QString protocol;   // "ftp" when missing
    QString host;
    QString user;
    QString secret;
    std::int32_t port = 0;
    QString localRoot;
    QString remoteRoot;
};

// One item per profile, in the order given.
std::vector<SavedConnectionItem> savedConnectionItems(std::vector<storage::SiteProfile> const& profiles);

// "name    user    host", or "name    host" without a user; protocol and port are not shown.
QString savedConnectionRowText(SavedConnectionItem const& item);
QStringList savedConnectionRowTexts(std::vector<SavedConnectionItem> const& items);

} // namespace perchftp::app
