// A pane's browsing state: where it stands, what it lists and what is selected.
#include "app/pane/perch_file_pane_controller.hpp"

#include "app/pane/pane_local_listing.hpp"
#include "app/pane/pane_paths.hpp"
#include "app/pane/perch_file_pane_controller_delegate.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QScrollBar>
#include <QSet>

#include <algorithm>

namespace perchftp::app {

namespace {

QString const kNotConnected = QStringLiteral("Not connected.");
QString const kEmptyDirectory = QStringLiteral("<empty directory>");

} // namespace

PerchFilePaneController::PerchFilePaneController(QString const& title, bool isRemote, QObject* parent)
    : QObject(parent),
      m_isRemote(isRemote),
      m_currentPath(isRemote ? QStringLiteral("/") : detail::homeFolder())
{
    buildViews(title);
    refresh();
}

PerchFilePaneController::~PerchFilePaneController()
{
    delete m_pathFieldClickMonitor;
    m_pathFieldClickMonitor = nullptr;
    // A view that no window has adopted is still ours.
    if (m_hostView && m_hostView->parent() == nullptr) {
        delete m_hostView;
    }
}

void PerchFilePaneController::setPathValue(QString const& path)
{
    QString value = path;
    if (value.isNull()) {
        value = m_isRemote ? QStringLiteral("/") : detail::homeFolder();
    }
    m_currentPath = value;
    m_pathField->setText(value);
    if (!m_isRemote) {
        loadLocalDirectory(value);
    }
}

void PerchFilePaneController::refresh()
{
    if (m_isRemote) {
        m_pathField->setText(m_currentPath.isNull() ? QStringLiteral("/") : m_currentPath);
        if (m_model->entries().isEmpty()) {
            showPlaceholder(kNotConnected);
        }
        return;
    }
    loadLocalDirectory(m_currentPath.isNull() ? detail::homeFolder() : m_currentPath);
}

void PerchFilePaneController::loadLocalDirectory(QString const& path)
{
    QString const requested = path.isEmpty() ? detail::homeFolder() : path;
    m_currentPath = detail::standardizePath(requested);
    m_pathField->setText(m_currentPath);
    if (!detail::isLocalDirectory(m_currentPath)) {
        m_currentPath = detail::homeFolder();
        m_pathField->setText(m_currentPath);
    }
    detail::LocalListing listing = detail::listLocalDirectory(m_currentPath);
    if (!listing.readable) {
        // The path stays, so that Up still leads out of the unreadable folder.
        showPlaceholder(QStringLiteral("Unable to read directory: %1").arg(listing.error));
        return;
    }
    if (listing.entries.isEmpty()) {
        listing.entries.append(PaneEntry{kEmptyDirectory, m_currentPath, false, true, {}, {}, 0, {}});
    }
    reloadRows(std::move(listing.entries));
}

void PerchFilePaneController::showRemoteEntries(PaneEntries entries, QString const& path)
{
    m_currentPath = path.isEmpty() ? QStringLiteral("/") : path;
    m_pathField->setText(m_currentPath);
    if (entries.isEmpty()) {
        entries.append(PaneEntry{kEmptyDirectory, m_currentPath, false, true, {}, {}, 0, {}});
    }
    sortPaneEntries(entries, m_sortDescriptors);
    reloadRows(std::move(entries));
}

void PerchFilePaneController::showPlaceholder(QString const& message)
{
    reloadRows({PaneEntry{detail::orEmpty(message), detail::orEmpty(m_currentPath), false, true, {}, {}, 0, {}}});
}

void PerchFilePaneController::openFolder()
{
    openFolderClicked();
}

QList<QWidget*> PerchFilePaneController::controlsInReadingOrder() const
{
    return {m_pathField, m_upButton, m_openFolderButton, m_createFolderButton, m_renameButton, m_deleteButton,
            m_uploadButton, m_downloadButton, m_tableView};
}

PaneEntries const& PerchFilePaneController::entries() const
{
    return m_model->entries();
}

void PerchFilePaneController::setEntries(PaneEntries entries)
{
    reloadRows(std::move(entries));
}

void PerchFilePaneController::goUp()
{
    QString parent = detail::deletingLastPathComponent(m_currentPath);
    if (parent.isEmpty()) {
        parent = QStringLiteral("/");
    }
    if (m_isRemote) {
        if (m_delegate != nullptr) {
            m_delegate->didRequestOpenPath(this, parent, true);
        }
        return;
    }
    loadLocalDirectory(parent);
}

// A reload of the folder already shown keeps the selected items selected and the scroll position
// (an upload or a delete reloads the pane it happened in); a listing of another folder starts
// unselected at the top. The delegate hears about it when that changes selectedPath().
void PerchFilePaneController::reloadRows(PaneEntries entries)
{
    QString const pathBefore = selectedPath();
    bool const samePlace = m_currentPath == m_listedPath;
    int const scrolledTo = m_tableView->verticalScrollBar()->value();
    QSet<QString> keptPaths;
    if (samePlace) {
        for (PaneEntry const& item : selectedItems()) {
            keptPaths.insert(item.path);
        }
    }
    m_listedPath = m_currentPath;

    m_reportingSelection = false;
    m_model->setEntries(std::move(entries));
    if (!keptPaths.isEmpty()) {
        reselectPaths(keptPaths, pathBefore);
    }
    m_reportingSelection = true;
    if (samePlace && scrolledTo > 0) {
        m_tableView->doItemsLayout();
        m_tableView->verticalScrollBar()->setValue(scrolledTo);
    } else if (!samePlace) {
        m_tableView->scrollToTop();
    }
    if (selectedPath() != pathBefore) {
        selectionDidChange();
    }
}

void PerchFilePaneController::reselectPaths(QSet<QString> const& paths, QString const& currentPath)
{
    // Runs of neighbouring rows become one range each, so that a large selection stays cheap.
    QItemSelection kept;
    int const lastColumn = m_model->columnCount() - 1;
    int runStart = -1;
    int currentRow = -1;
    PaneEntries const& rows = m_model->entries();
    for (int row = 0; row <= int(rows.size()); ++row) {
        bool const wanted = row < int(rows.size()) && !rows[row].placeholder && paths.contains(rows[row].path);
        if (wanted && runStart < 0) {
            runStart = row;
        }
        if (!wanted && runStart >= 0) {
            kept.select(m_model->index(runStart, 0), m_model->index(row - 1, lastColumn));
            runStart = -1;
        }
        if (wanted && rows[row].path == currentPath) {
            currentRow = row;
        }
    }
    QItemSelectionModel* selection = m_tableView->selectionModel();
    selection->select(kept, QItemSelectionModel::ClearAndSelect);
    if (currentRow >= 0) {
        selection->setCurrentIndex(m_model->index(currentRow, 0), QItemSelectionModel::NoUpdate);
    }
}

void PerchFilePaneController::setSortDescriptors(QList<PaneSortDescriptor> descriptors)
{
    m_sortDescriptors = std::move(descriptors);
    QHeaderView* header = m_tableView->horizontalHeader();
    int indicatorColumn = -1;
    Qt::SortOrder indicatorOrder = Qt::AscendingOrder;
    if (!m_sortDescriptors.isEmpty()) {
        for (int column = 0; column < m_model->columnCount(); ++column) {
            if (PerchPaneTableModel::sortKeyOfColumn(column) == m_sortDescriptors.first().key) {
                indicatorColumn = column;
            }
        }
        indicatorOrder = m_sortDescriptors.first().ascending ? Qt::AscendingOrder : Qt::DescendingOrder;
    }
    header->setSortIndicator(indicatorColumn, indicatorOrder);
    // Only the remote rows follow the column sort; the local list keeps its name order.
    if (m_isRemote && !m_sortDescriptors.isEmpty() && !m_model->entries().isEmpty()) {
        m_model->sortRows(m_sortDescriptors);
    }
}

void PerchFilePaneController::columnHeaderClicked(int column)
{
    setSortDescriptors(descriptorsAfterHeaderClick(m_sortDescriptors, PerchPaneTableModel::sortKeyOfColumn(column)));
}

int PerchFilePaneController::selectedRow() const
{
    QItemSelectionModel const* selection = m_tableView->selectionModel();
    QModelIndex const current = selection->currentIndex();
    if (current.isValid() && selection->isRowSelected(current.row(), QModelIndex())) {
        return current.row();
    }
    int last = -1;
    for (QItemSelectionRange const& range : selection->selection()) {
        last = std::max(last, range.bottom());
    }
    return last;
}

QString PerchFilePaneController::selectedPath() const
{
    PaneEntry const* entry = entryAt(selectedRow());
    return entry != nullptr ? detail::orEmpty(entry->path) : QStringLiteral("");
}

PaneEntries PerchFilePaneController::selectedItems() const
{
    QList<int> rows;
    for (QItemSelectionRange const& range : m_tableView->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.append(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    PaneEntries items;
    for (int const row : rows) {
        PaneEntry const* entry = entryAt(row);
        if (entry != nullptr && !entry->placeholder) {
            items.append(*entry);
        }
    }
    return items;
}

PaneEntry const* PerchFilePaneController::entryAt(int row) const
{
    PaneEntries const& rows = m_model->entries();
    return row >= 0 && row < rows.size() ? &rows[row] : nullptr;
}

bool PerchFilePaneController::isActingRowValid(int row) const
{
    PaneEntry const* entry = entryAt(row);
    return entry != nullptr && !entry->placeholder;
}

int PerchFilePaneController::actingRow() const
{
    int const row = m_clickedRow >= 0 ? m_clickedRow : selectedRow();
    return isActingRowValid(row) ? row : -1;
}

void PerchFilePaneController::selectionDidChange()
{
    if (m_reportingSelection && m_delegate != nullptr) {
        m_delegate->didChangeSelectionPath(this, selectedPath(), m_isRemote);
    }
}

} // namespace perchftp::app
