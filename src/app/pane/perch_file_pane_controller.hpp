#pragma once

#include "app/pane/pane_entry.hpp"
#include "app/pane/pane_sorting.hpp"

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QPushButton>
#include <QSet>
#include <QString>

class QMenu;
class QMimeData;
class QPoint;
class QWidget;

namespace perchftp::app {

class PerchFilePaneControllerDelegate;
class PerchPaneTableModel;
class PerchPaneTableView;
class PerchPathField;
class PerchPathFieldClickMonitor;
class ShellDialogs;

// One half of the main window: a path field, a row of buttons and a file table. The shell has two,
// the local pane and the remote pane, told apart by isRemote(). The pane holds its whole browsing
// state (where it is, what it lists, what is selected) and reads the local disk itself; everything
// remote reaches it through showRemoteEntries(). It performs no operation: it decides which
// operation a click means and asks its delegate.
//
// The delegate hears didChangeSelectionPath() whenever selectedPath() changes, whether the user
// selected or a new listing replaced the rows. A listing of the folder already shown keeps its
// selected items selected; a listing of another folder starts with none.
//
// Texts follow one convention: a null QString means "no value" and an empty one is a value, so
// setPathValue(QString()) and setPathValue("") do different things.
class PerchFilePaneController : public QObject {
    Q_OBJECT
public:
    // A row's content is 24 high and rows stand 4 apart; the striped background covers both, so
    // rows follow each other every 28 pixels.
    static constexpr int kRowHeight = 24;
    static constexpr int kRowSpacing = 4;

    // The title is accepted and not shown anywhere: the pane's heading is its path field.
    PerchFilePaneController(QString const& title, bool isRemote, QObject* parent = nullptr);
    ~PerchFilePaneController() override;

    // The pane's root widget. The pane deletes it unless a parent has taken it over.
    QWidget* view() const { return m_hostView; }
    QString pathValue() const { return m_currentPath; }

    // Sets the path; lists it on the local pane only. Null means "/" remote and the home folder
    // local; an empty text is stored as it stands.
    void setPathValue(QString const& path);
    // Remote: shows the path and, without rows, "Not connected.". Local: lists the current path.
    void refresh();
    // Lists a local folder. A missing path or a non-folder falls back to the home folder silently; an
    // unreadable folder stays current behind an "Unable to read directory: ..." row.
    void loadLocalDirectory(QString const& path);
    // Shows a finished remote listing. An active sort is applied to it.
    void showRemoteEntries(PaneEntries entries, QString const& path);
    // Replaces all rows with one message row; the path field is not touched.
    void showPlaceholder(QString const& message);
    void openFolder();

    QString selectedPath() const;
    PaneEntries selectedItems() const;

    // The acting row of an action: the clicked row while a click is handled (context menu, double
    // click), else the selected row. -1 when that is out of range or a placeholder.
    int actingRow() const;
    int clickedRow() const { return m_clickedRow; }
    int selectedRow() const;

    bool isRemote() const { return m_isRemote; }
    QWidget* hostView() const { return m_hostView; }
    PerchPathField* pathField() const { return m_pathField; }
    PerchPaneTableView* tableView() const { return m_tableView; }
    PerchPaneTableModel* model() const { return m_model; }
    QMenu* contextMenu() const { return m_contextMenu; }
    QPushButton* upButton() const { return m_upButton; }
    QPushButton* openFolderButton() const { return m_openFolderButton; }
    QPushButton* createFolderButton() const { return m_createFolderButton; }
    QPushButton* renameButton() const { return m_renameButton; }
    QPushButton* deleteButton() const { return m_deleteButton; }
    QPushButton* uploadButton() const { return m_uploadButton; }
    QPushButton* downloadButton() const { return m_downloadButton; }
    // The pane's controls in reading order, for the window's Tab order: the path field, the
    // buttons from left to right, then the table.
    QList<QWidget*> controlsInReadingOrder() const;

    QString currentPath() const { return m_currentPath; }
    void setCurrentPath(QString const& path) { m_currentPath = path; }
    PaneEntries const& entries() const;
    void setEntries(PaneEntries entries);

    PerchFilePaneControllerDelegate* delegate() const { return m_delegate; }
    void setDelegate(PerchFilePaneControllerDelegate* delegate) { m_delegate = delegate; }
    // The object that asks the user for a folder; not owned. Without one, a plain file dialog asks.
    ShellDialogs* dialogs() const { return m_dialogs; }
    void setDialogs(ShellDialogs* dialogs) { m_dialogs = dialogs; }

    // Column sorts, primary first, as a click on a column header leaves them. Setting them sorts
    // the remote rows; the local rows keep their fixed order.
    QList<PaneSortDescriptor> const& sortDescriptors() const { return m_sortDescriptors; }
    void setSortDescriptors(QList<PaneSortDescriptor> descriptors);

    // Drop handling of the table: only the remote pane takes dropped local files. `row` is the row
    // dropped on, -1 for the empty part of the table.
    bool validateDrop(QMimeData const* data) const;
    bool acceptDrop(QMimeData const* data, int row);

    // Gives the open-folder button a new receiver in place of the pane's own openFolderClicked().
    template <typename Receiver, typename Slot>
    void redirectOpenFolderButton(Receiver* receiver, Slot slot);

public slots:
    void goUp();
    void openFolderClicked();
    void createFolderClicked();
    void renameClicked();
    void deleteClicked();
    void uploadClicked();
    void downloadClicked();
    void contextTransferAction();
    void contextRefreshAction();
    void contextRenameAction();
    void contextDeleteAction();
    void contextPermissionAction();
    void pathFieldCommitted();
    // Local pane: posts openFolderClicked() to the event loop, so that the mouse event ends before
    // a dialog starts. Remote pane: nothing.
    void pathFieldDoubleClicked();
    void tableViewDoubleClicked(int row);
    // Enables the context menu's items for the acting row, by index.
    void menuNeedsUpdate();
    // Opens the context menu for the row under `row` (-1 for none) at a global position.
    void showContextMenu(int row, QPoint const& globalPosition);

private:
    void buildViews(QString const& title);
    void buildButtons();
    void buildTable();
    void buildContextMenu();
    void wireActions();
    void addTableShortcuts();
    void columnHeaderClicked(int column);
    void selectionDidChange();
    void reloadRows(PaneEntries entries);
    void reselectPaths(QSet<QString> const& paths, QString const& currentPath);
    bool isActingRowValid(int row) const;
    PaneEntry const* entryAt(int row) const;
    void requestTransfer(PaneEntry const& entry);
    QString chooseFolder(QString const& startFolder);

    bool m_isRemote;
    QPointer<QWidget> m_hostView;
    PerchPathField* m_pathField = nullptr;
    PerchPaneTableView* m_tableView = nullptr;
    PerchPaneTableModel* m_model = nullptr;
    QMenu* m_contextMenu = nullptr;
    QPushButton* m_upButton = nullptr;
    QPushButton* m_openFolderButton = nullptr;
    QPushButton* m_createFolderButton = nullptr;
    QPushButton* m_renameButton = nullptr;
    QPushButton* m_deleteButton = nullptr;
    QPushButton* m_uploadButton = nullptr;
    QPushButton* m_downloadButton = nullptr;
    PerchPathFieldClickMonitor* m_pathFieldClickMonitor = nullptr;
    QMetaObject::Connection m_openFolderConnection;
    QString m_currentPath;
    QString m_listedPath; // the folder whose rows the table shows, for keeping a selection on reload
    QList<PaneSortDescriptor> m_sortDescriptors;
    PerchFilePaneControllerDelegate* m_delegate = nullptr;
    ShellDialogs* m_dialogs = nullptr;
    int m_clickedRow = -1;
    bool m_reportingSelection = true;
};

template <typename Receiver, typename Slot>
void PerchFilePaneController::redirectOpenFolderButton(Receiver* receiver, Slot slot)
{
    QObject::disconnect(m_openFolderConnection);
    m_openFolderConnection = QObject::connect(m_openFolderButton, &QPushButton::clicked, receiver, slot);
}

} // namespace perchftp::app
