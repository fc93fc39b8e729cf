#pragma once

#include "app/pane/pane_entry.hpp"

#include <QString>

namespace perchftp::app::detail {

// Whether a local path names a folder, links followed.
bool isLocalDirectory(QString const& path);

struct LocalListing {
    bool readable = false;
    QString error;       // the system's words for why the folder could not be read
    PaneEntries entries; // sorted by name, case-insensitively; folders are not put first
};

// Reads one local folder. Hidden files are listed; "." and ".." are not. A name that is not valid
// UTF-8 is shown with replacement characters, while its path keeps the bytes (pane_file_names.hpp),
// so that such a folder can still be opened.
LocalListing listLocalDirectory(QString const& folder);

} // namespace perchftp::app::detail
