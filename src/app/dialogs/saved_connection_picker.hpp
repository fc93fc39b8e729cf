#pragma once

#include "app/shell_dialogs.hpp"

namespace perchftp::app {

// The modal list of saved connections with "Open", "Edit", "Delete" and "Cancel". Escape counts
// as "Cancel" and a double click on a row as "Open" on that row. Only a mouse press moves the
// row the answer names; the keyboard moves the highlight alone, so that it then names row 0.
SavedConnectionAnswer runSavedConnectionPicker(
    QWidget* parent, std::vector<SavedConnectionItem> const& items, QIcon const& icon);

} // namespace perchftp::app
