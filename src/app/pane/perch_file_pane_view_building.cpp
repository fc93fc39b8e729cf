// Construction of a pane's widgets: the path field, the row of buttons, the table and the
// context menu, and the wiring of each to the pane's actions.
#include "app/pane/perch_file_pane_controller.hpp"

#include "app/pane/pane_icons.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/pane/perch_path_field.hpp"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMenu>
#include <QVBoxLayout>

namespace perchftp::app {

namespace {

constexpr int kIconSize = 18;
constexpr int kNameWidthRemote = 280;
constexpr int kNameWidthLocal = 600;
constexpr int kPermissionsWidth = 120;
constexpr int kSizeWidth = 90;
constexpr int kModifiedWidth = 140;

QPushButton* makeButton(QWidget* parent, QString const& title, PaneIcon icon)
{
    auto* button = new QPushButton(paneIcon(icon), title, parent);
    button->setIconSize(QSize(16, 16));
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

void PerchFilePaneController::buildViews(QString const&)
{
    m_hostView = new QWidget;
    m_hostView->setObjectName(m_isRemote ? QStringLiteral("remotePane") : QStringLiteral("localPane"));
    m_pathField = new PerchPathField(m_hostView);
    m_pathField->setObjectName(QStringLiteral("pathField"));
    m_pathField->setAccessibleName(m_isRemote ? tr("Remote folder") : tr("Local folder"));
    buildButtons();
    buildTable();
    buildContextMenu();

    auto* buttonRow = new QHBoxLayout;
    buttonRow->setSpacing(6);
    for (QPushButton* button : {m_upButton, m_openFolderButton, m_createFolderButton, m_renameButton,
                                m_deleteButton, m_uploadButton, m_downloadButton}) {
        // The remote pane's open-folder button exists but has no place in the pane.
        if (button == m_openFolderButton && m_isRemote) {
            button->hide();
            continue;
        }
        buttonRow->addWidget(button);
    }
    buttonRow->addStretch(1);

    auto* layout = new QVBoxLayout(m_hostView);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_pathField);
    layout->addLayout(buttonRow);
    layout->addWidget(m_tableView, 1);

    wireActions();
}

void PerchFilePaneController::buildButtons()
{
    m_upButton = makeButton(m_hostView, tr("Up"), PaneIcon::Up);
    m_openFolderButton = makeButton(m_hostView, tr("Open Folder..."), PaneIcon::OpenFolder);
    m_createFolderButton = makeButton(m_hostView, tr("New"), PaneIcon::NewFolder);
    m_renameButton = makeButton(m_hostView, tr("Rename"), PaneIcon::Rename);
    m_deleteButton = makeButton(m_hostView, tr("Delete"), PaneIcon::Delete);
    m_uploadButton = makeButton(m_hostView, tr("Upload"), PaneIcon::Upload);
    m_downloadButton = makeButton(m_hostView, tr("Download"), PaneIcon::Download);
    m_upButton->setToolTip(tr("Go to the parent folder (Backspace)"));
    m_openFolderButton->setToolTip(tr("Choose a local folder to show"));
    m_createFolderButton->setToolTip(tr("Create a folder here"));
    m_renameButton->setToolTip(tr("Rename the selected item (F2)"));
    m_deleteButton->setToolTip(tr("Delete the selected items (Delete)"));
    m_uploadButton->setToolTip(tr("Upload the selected items"));
    m_downloadButton->setToolTip(tr("Download the selected items"));
    // Fixed for the pane's life: they do not follow the connection.
    m_openFolderButton->setEnabled(!m_isRemote);
    m_uploadButton->setEnabled(!m_isRemote);
    m_downloadButton->setEnabled(m_isRemote);
}

void PerchFilePaneController::buildTable()
{
    m_model = new PerchPaneTableModel(m_isRemote, this);
    m_model->setDropHandlers([this](QMimeData const* data) { return validateDrop(data); },
                             [this](QMimeData const* data, int row) { return acceptDrop(data, row); });

    m_tableView = new PerchPaneTableView(m_hostView);
    m_tableView->setObjectName(QStringLiteral("paneTable"));
    m_tableView->setAccessibleName(m_isRemote ? tr("Remote files") : tr("Local files"));
    m_tableView->setPaneController(this);
    m_tableView->setModel(m_model);
    m_tableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tableView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tableView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Tab leaves the list for the next control instead of walking its cells.
    m_tableView->setTabKeyNavigation(false);
    m_tableView->setShowGrid(false);
    m_tableView->setWordWrap(false);
    m_tableView->setAlternatingRowColors(false);
    m_tableView->setIconSize(QSize(kIconSize, kIconSize));
    m_tableView->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_tableView->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_tableView->setContextMenuPolicy(Qt::DefaultContextMenu);
    // Drop target only: no pane is a drag source.
    m_tableView->setDragEnabled(false);
    m_tableView->setAcceptDrops(true);
    m_tableView->setDragDropMode(QAbstractItemView::DropOnly);
    m_tableView->setDragDropOverwriteMode(true);
    m_tableView->setDropIndicatorShown(true);
    m_tableView->setDefaultDropAction(Qt::CopyAction);

    QHeaderView* rows = m_tableView->verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setMinimumSectionSize(kRowHeight + kRowSpacing);
    rows->setDefaultSectionSize(kRowHeight + kRowSpacing);

    QHeaderView* columns = m_tableView->horizontalHeader();
    columns->setSectionsClickable(true);
    columns->setSortIndicatorShown(true);
    columns->setSortIndicator(-1, Qt::AscendingOrder);
    columns->setHighlightSections(false);
    columns->setStretchLastSection(true);
    columns->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    columns->resizeSection(PerchPaneTableModel::NameColumn, m_isRemote ? kNameWidthRemote : kNameWidthLocal);
    if (m_isRemote) {
        columns->resizeSection(PerchPaneTableModel::PermissionsColumn, kPermissionsWidth);
        columns->resizeSection(PerchPaneTableModel::SizeColumn, kSizeWidth);
        columns->resizeSection(PerchPaneTableModel::ModifiedColumn, kModifiedWidth);
    }
}

void PerchFilePaneController::buildContextMenu()
{
    m_contextMenu = new QMenu(tr("Pane Actions"), m_hostView);
    m_contextMenu->setObjectName(QStringLiteral("paneActions"));
    m_contextMenu->addAction(m_isRemote ? tr("Download") : tr("Upload"), this,
                             &PerchFilePaneController::contextTransferAction);
    m_contextMenu->addSeparator();
    m_contextMenu->addAction(tr("Create Folder"), this, &PerchFilePaneController::createFolderClicked);
    if (m_isRemote) {
        m_contextMenu->addAction(tr("Permission..."), this, &PerchFilePaneController::contextPermissionAction);
    }
    m_contextMenu->addAction(tr("Refresh"), this, &PerchFilePaneController::contextRefreshAction);
    m_contextMenu->addAction(tr("Rename"), this, &PerchFilePaneController::contextRenameAction);
    m_contextMenu->addAction(tr("Delete"), this, &PerchFilePaneController::contextDeleteAction);
}

void PerchFilePaneController::wireActions()
{
    connect(m_upButton, &QPushButton::clicked, this, &PerchFilePaneController::goUp);
    m_openFolderConnection =
        connect(m_openFolderButton, &QPushButton::clicked, this, &PerchFilePaneController::openFolderClicked);
    connect(m_createFolderButton, &QPushButton::clicked, this, &PerchFilePaneController::createFolderClicked);
    connect(m_renameButton, &QPushButton::clicked, this, &PerchFilePaneController::renameClicked);
    connect(m_deleteButton, &QPushButton::clicked, this, &PerchFilePaneController::deleteClicked);
    connect(m_uploadButton, &QPushButton::clicked, this, &PerchFilePaneController::uploadClicked);
    connect(m_downloadButton, &QPushButton::clicked, this, &PerchFilePaneController::downloadClicked);

    // The field commits on Return, and on leaving it only when its text was edited.
    connect(m_pathField, &QLineEdit::returnPressed, this, &PerchFilePaneController::pathFieldCommitted);
    connect(m_pathField, &QLineEdit::editingFinished, this, [this] {
        if (m_pathField->isModified()) {
            pathFieldCommitted();
        }
    });
    if (!m_isRemote) {
        m_pathField->setDoubleClickTarget(this);
        m_pathField->setDoubleClickAction([this](PerchPathField*) { pathFieldDoubleClicked(); });
        m_pathFieldClickMonitor = new PerchPathFieldClickMonitor(this);
    }

    connect(m_tableView, &QAbstractItemView::doubleClicked, this,
            [this](QModelIndex const& index) { tableViewDoubleClicked(index.row()); });
    connect(m_tableView, &PerchPaneTableView::contextMenuRequestedForRow, this,
            &PerchFilePaneController::showContextMenu);
    connect(m_tableView->horizontalHeader(), &QHeaderView::sectionClicked, this,
            &PerchFilePaneController::columnHeaderClicked);
    connect(m_tableView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PerchFilePaneController::selectionDidChange);
    connect(m_contextMenu, &QMenu::aboutToShow, this, &PerchFilePaneController::menuNeedsUpdate);
    addTableShortcuts();
}

// The keys a file manager user expects on a file list. Each runs the same action as its button or
// double click, with the same guards.
void PerchFilePaneController::addTableShortcuts()
{
    auto const addShortcut = [this](QList<QKeySequence> const& keys, auto slot) {
        auto* shortcut = new QAction(m_tableView);
        shortcut->setShortcuts(keys);
        shortcut->setShortcutContext(Qt::WidgetShortcut);
        connect(shortcut, &QAction::triggered, this, slot);
        m_tableView->addAction(shortcut);
    };
    addShortcut({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)},
                [this] { tableViewDoubleClicked(m_tableView->currentIndex().row()); });
    addShortcut({QKeySequence(Qt::Key_Backspace), QKeySequence(Qt::ALT | Qt::Key_Up)}, &PerchFilePaneController::goUp);
    addShortcut({QKeySequence(Qt::Key_F2)}, &PerchFilePaneController::renameClicked);
    addShortcut({QKeySequence(Qt::Key_Delete)}, &PerchFilePaneController::deleteClicked);
    addShortcut({QKeySequence(Qt::Key_F5)}, &PerchFilePaneController::contextRefreshAction);
}

} // namespace perchftp::app
