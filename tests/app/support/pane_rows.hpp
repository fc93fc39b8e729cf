#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"

#include <QItemSelectionModel>
#include <QStringList>

namespace perchftp::test {

// Selects the pane's rows of these names only, as a user's clicks would; gives how many it found.
// Header-only, so that the screenshot renderer shares it with the tests.
inline int selectPaneRowsNamed(app::PerchFilePaneController& pane, QStringList const& names)
{
    QItemSelectionModel* selection = pane.tableView()->selectionModel();
    selection->clearSelection();
    int found = 0;
    app::PaneEntries const& rows = pane.model()->entries();
    for (int row = 0; row < int(rows.size()); ++row) {
        if (names.contains(rows[row].name)) {
            selection->select(pane.model()->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
            ++found;
        }
    }
    return found;
}

} // namespace perchftp::test
