// What a click in a pane means: buttons, the context menu, double clicks, the path field and drops.
#include "app/pane/perch_file_pane_controller.hpp"

#include "app/pane/pane_paths.hpp"
#include "app/pane/perch_file_pane_controller_delegate.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"
#include "app/shell_dialogs.hpp"

#include <QFileDialog>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

namespace perchftp::app {

namespace {

QStringList droppedFilePaths(QMimeData const* data)
{
    QStringList paths;
    if (data == nullptr || !data->hasUrls()) {
        return paths;
    }
    for (QUrl const& url : data->urls()) {
        if (url.isLocalFile() && !url.toLocalFile().isEmpty()) {
            paths.append(url.toLocalFile());
        }
    }
    return paths;
}

// Sets the clicked row for the length of one click's handling, like a table's clicked row.
class ClickedRowScope {
public:
    ClickedRowScope(int& clickedRow, int row) : m_clickedRow(clickedRow), m_before(clickedRow)
    {
        m_clickedRow = row;
    }
    ~ClickedRowScope() { m_clickedRow = m_before; }
    ClickedRowScope(ClickedRowScope const&) = delete;
    ClickedRowScope& operator=(ClickedRowScope const&) = delete;

private:
    int& m_clickedRow;
    int m_before;
};

} // namespace

void PerchFilePaneController::requestTransfer(PaneEntry const& entry)
{
    if (m_delegate != nullptr) {
        m_delegate->didRequestContextTransferForPath(this, detail::orEmpty(entry.path), m_isRemote, entry.dir);
    }
}

void PerchFilePaneController::renameClicked()
{
    int const row = actingRow();
    if (row < 0 || m_delegate == nullptr) {
        return;
    }
    PaneEntry const& entry = m_model->entries()[row];
    m_delegate->didRequestRenamePath(this, detail::orEmpty(entry.path), m_isRemote, entry.dir);
}

void PerchFilePaneController::deleteClicked()
{
    PaneEntries const items = selectedItems();
    if (items.isEmpty() || m_delegate == nullptr) {
        return;
    }
    if (items.size() == 1) {
        m_delegate->didRequestDeletePath(this, detail::orEmpty(items.first().path), m_isRemote, items.first().dir);
        return;
    }
    m_delegate->didRequestDeletePaths(this, items, m_isRemote);
}

void PerchFilePaneController::uploadClicked()
{
    if (m_isRemote) {
        return;
    }
    for (PaneEntry const& item : selectedItems()) {
        requestTransfer(item);
    }
}

void PerchFilePaneController::downloadClicked()
{
    if (!m_isRemote) {
        return;
    }
    for (PaneEntry const& item : selectedItems()) {
        requestTransfer(item);
    }
}

void PerchFilePaneController::contextTransferAction()
{
    int const row = actingRow();
    if (row < 0) {
        return;
    }
    QItemSelectionModel const* selection = m_tableView->selectionModel();
    bool const actsOnSelection =
        selection->selectedRows().size() > 1 && selection->isRowSelected(row, QModelIndex());
    if (actsOnSelection) {
        for (PaneEntry const& item : selectedItems()) {
            requestTransfer(item);
        }
        return;
    }
    requestTransfer(m_model->entries()[row]);
}

void PerchFilePaneController::createFolderClicked()
{
    if (m_delegate != nullptr) {
        m_delegate->didRequestCreateFolder(this, m_isRemote);
    }
}

void PerchFilePaneController::contextRefreshAction()
{
    if (!m_isRemote) {
        loadLocalDirectory(m_currentPath.isNull() ? detail::homeFolder() : m_currentPath);
        return;
    }
    if (m_delegate != nullptr) {
        m_delegate->didRequestOpenPath(this, m_currentPath.isNull() ? QStringLiteral("/") : m_currentPath, true);
    }
}

void PerchFilePaneController::contextRenameAction()
{
    renameClicked();
}

void PerchFilePaneController::contextDeleteAction()
{
    deleteClicked();
}

void PerchFilePaneController::contextPermissionAction()
{
    if (!m_isRemote) {
        return;
    }
    PaneEntries items = selectedItems();
    if (items.isEmpty()) {
        int const row = actingRow();
        if (row < 0) {
            return;
        }
        items.append(m_model->entries()[row]);
    }
    if (m_delegate != nullptr) {
        m_delegate->didRequestChangePermissions(this, items, true);
    }
}

void PerchFilePaneController::pathFieldCommitted()
{
    m_pathField->setModified(false);
    // A leading "~" means the local home on both panes: the remote field is standardised the
    // same way as the local one.
    QString path = detail::standardizePath(m_pathField->text().trimmed());
    if (path.isEmpty()) {
        path = m_isRemote ? QStringLiteral("/") : detail::homeFolder();
    }
    if (m_delegate != nullptr) {
        m_delegate->didRequestOpenPath(this, path, m_isRemote);
    }
}

void PerchFilePaneController::pathFieldDoubleClicked()
{
    if (m_isRemote) {
        return;
    }
    QMetaObject::invokeMethod(this, &PerchFilePaneController::openFolderClicked, Qt::QueuedConnection);
}

void PerchFilePaneController::tableViewDoubleClicked(int row)
{
    ClickedRowScope const clicked(m_clickedRow, row);
    PaneEntry const* entry = entryAt(m_clickedRow);
    if (entry == nullptr || entry->placeholder) {
        return;
    }
    // A copy: opening a folder replaces the rows that `entry` points into.
    QString const path = detail::orEmpty(entry->path);
    if (!entry->dir) {
        if (m_delegate != nullptr) {
            m_delegate->didChangeSelectionPath(this, path, m_isRemote);
        }
        return;
    }
    if (!m_isRemote) {
        loadLocalDirectory(path);
        return;
    }
    if (m_delegate != nullptr) {
        m_delegate->didRequestOpenPath(this, path, true);
    }
}

void PerchFilePaneController::menuNeedsUpdate()
{
    // The items are set by their place in the menu, not by what they do: on the remote pane
    // "Permission..." is always enabled and "Refresh" needs a row, on the local pane "Refresh" is
    // always enabled and "Rename" needs a row.
    bool const hasRow = actingRow() >= 0;
    QList<QAction*> const items = m_contextMenu->actions();
    for (int index = 0; index < int(items.size()); ++index) {
        QAction* item = items[index];
        switch (index) {
        case 0:
            item->setText(m_isRemote ? tr("Download") : tr("Upload"));
            item->setEnabled(hasRow);
            break;
        case 1: // separator
            break;
        case 2:
        case 3:
            item->setEnabled(true);
            break;
        default: // 4, 5 and 6 on the remote pane; 4 and 5 on the local one
            item->setEnabled(hasRow);
            break;
        }
    }
}

void PerchFilePaneController::showContextMenu(int row, QPoint const& globalPosition)
{
    ClickedRowScope const clicked(m_clickedRow, row);
    m_contextMenu->exec(globalPosition);
}

bool PerchFilePaneController::validateDrop(QMimeData const* data) const
{
    return m_isRemote && !droppedFilePaths(data).isEmpty();
}

bool PerchFilePaneController::acceptDrop(QMimeData const* data, int row)
{
    if (!m_isRemote) {
        return false;
    }
    QStringList const paths = droppedFilePaths(data);
    if (paths.isEmpty()) {
        return false;
    }
    QString target = m_currentPath.isNull() ? QStringLiteral("/") : m_currentPath;
    // A drop on a folder row goes into that folder; on a file row, into the current folder.
    PaneEntry const* entry = entryAt(row);
    if (entry != nullptr && entry->dir && !entry->placeholder && !entry->path.isNull()) {
        target = entry->path;
    }
    if (m_delegate != nullptr) {
        m_delegate->didDropPaths(this, paths, target, true);
    }
    return true;
}

void PerchFilePaneController::openFolderClicked()
{
    if (m_isRemote) {
        return;
    }
    if (QWidget* window = m_hostView ? m_hostView->window() : nullptr; window != nullptr && window->isVisible()) {
        window->raise();
        window->activateWindow();
    }
    QString const start = m_currentPath.isEmpty() ? detail::homeFolder() : m_currentPath;
    QString const chosen = chooseFolder(start).trimmed();
    if (!chosen.isEmpty()) {
        loadLocalDirectory(detail::standardizePath(chosen));
    }
}

QString PerchFilePaneController::chooseFolder(QString const& startFolder)
{
    // The desktop's own chooser asks first. When it gives nothing, cancelled included, the
    // in-process dialog asks again: that second question is wanted, it is the route that always works.
    QString const title = tr("Select a local folder");
    FolderChooserRun const run =
        m_dialogs != nullptr ? m_dialogs->runFolderChooser(startFolder, title) : FolderChooser::run(startFolder, title);
    if (QString const chosen = run.standardOutput.trimmed();
        run.started && !run.crashed && run.exitStatus == 0 && !chosen.isEmpty()) {
        return chosen;
    }

    QString const existingStart = QFileInfo::exists(startFolder) ? startFolder : QString();
    QWidget* parent = m_hostView ? m_hostView->window() : nullptr;
    if (m_dialogs != nullptr) {
        return m_dialogs->chooseExistingFolder(parent, title, existingStart);
    }
    return QFileDialog::getExistingDirectory(parent, title, existingStart, QFileDialog::ShowDirsOnly);
}

} // namespace perchftp::app
