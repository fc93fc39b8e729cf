#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

namespace perchftp::app {

// One row of a file pane. Every row has the first four fields; a remote file row, which the shell
// builds from a listing, fills the last four as well. A local row leaves them empty, since the local
// pane shows no size, date or permissions.
struct PaneEntry {
    QString name;         // text of the name column
    QString path;         // full path of the item
    bool dir = false;     // the item is a directory (links followed)
    bool placeholder = false; // the row is a message, not a file; it never reaches an operation

    QString permissions;  // remote permission text, "" when absent
    QString size;         // byte count as decimal text, "" for a directory
    quint64 sizeValue = 0; // byte count for sorting; also set for directories
    QString modifiedAt;   // remote modification text, "" when absent

    friend bool operator==(PaneEntry const&, PaneEntry const&) = default;
};

using PaneEntries = QList<PaneEntry>;

} // namespace perchftp::app
