#pragma once

#include "app/pane/pane_entry.hpp"

#include <QList>
#include <QString>

namespace perchftp::app {

// One column sort: the entry field it compares ("name", "permissions", "sizeValue" or
// "modifiedAt") and its direction.
struct PaneSortDescriptor {
    QString key;
    bool ascending = true;

    friend bool operator==(PaneSortDescriptor const&, PaneSortDescriptor const&) = default;
};

// The order of rows under the descriptors: element i is the row that goes to place i. Rows equal
// under every descriptor keep their relative order.
QList<int> paneSortOrder(PaneEntries const& entries, QList<PaneSortDescriptor> const& descriptors);

// Sorts rows by the descriptors, the first one primary. Texts compare case-insensitively by the
// user's locale, sizes as numbers. Rows equal under every descriptor keep their relative order; an
// unknown key compares everything equal.
void sortPaneEntries(PaneEntries& entries, QList<PaneSortDescriptor> const& descriptors);

// The descriptors after a click on the column whose sort key is `key`: a click on the primary
// column reverses it, any other column becomes primary and ascending, the rest follow.
QList<PaneSortDescriptor> descriptorsAfterHeaderClick(QList<PaneSortDescriptor> descriptors, QString const& key);

} // namespace perchftp::app
