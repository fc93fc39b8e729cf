#include "app/pane/perch_pane_table_model.hpp"

#include "app/pane/pane_cells.hpp"
#include "app/pane/pane_icons.hpp"

#include <QMimeData>

namespace perchftp::app {

PerchPaneTableModel::PerchPaneTableModel(bool isRemote, QObject* parent)
    : QAbstractTableModel(parent), m_isRemote(isRemote)
{
}

void PerchPaneTableModel::setEntries(PaneEntries entries)
{
    beginResetModel();
    m_entries = std::move(entries);
    endResetModel();
}

void PerchPaneTableModel::sortRows(QList<PaneSortDescriptor> const& descriptors)
{
    QList<int> const order = paneSortOrder(m_entries, descriptors);
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    QList<int> placeOfRow(order.size());
    PaneEntries sorted;
    sorted.reserve(m_entries.size());
    // Rows still shared with the caller's list are copied rather than detached and moved.
    bool const ownsRows = m_entries.isDetached();
    for (qsizetype place = 0; place < order.size(); ++place) {
        placeOfRow[order[place]] = int(place);
        if (ownsRows) {
            sorted.append(std::move(m_entries[order[place]]));
        } else {
            sorted.append(std::as_const(m_entries)[order[place]]);
        }
    }
    m_entries = std::move(sorted);
    QModelIndexList const before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (QModelIndex const& index : before) {
        after.append(this->index(placeOfRow[index.row()], index.column()));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

QString PerchPaneTableModel::sortKeyOfColumn(int column)
{
    switch (column) {
    case NameColumn: return QStringLiteral("name");
    case PermissionsColumn: return QStringLiteral("permissions");
    case SizeColumn: return QStringLiteral("sizeValue");
    case ModifiedColumn: return QStringLiteral("modifiedAt");
    default: return {};
    }
}

void PerchPaneTableModel::setDropHandlers(DropValidator validator, DropAcceptor acceptor)
{
    m_dropValidator = std::move(validator);
    m_dropAcceptor = std::move(acceptor);
}

int PerchPaneTableModel::rowCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

int PerchPaneTableModel::columnCount(QModelIndex const& parent) const
{
    if (parent.isValid()) {
        return 0;
    }
    return m_isRemote ? 4 : 1;
}

QVariant PerchPaneTableModel::displayText(PaneEntry const& entry, int column) const
{
    switch (column) {
    case NameColumn: return entry.name;
    case PermissionsColumn: return entry.placeholder ? QString() : entry.permissions;
    case SizeColumn: return detail::sizeCellText(entry);
    case ModifiedColumn: return entry.placeholder ? QString() : entry.modifiedAt;
    default: return {};
    }
}

QVariant PerchPaneTableModel::data(QModelIndex const& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    PaneEntry const& entry = m_entries[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return displayText(entry, index.column());
    case Qt::DecorationRole:
        if (index.column() != NameColumn) {
            return {};
        }
        if (entry.placeholder) {
            return paneIcon(PaneIcon::Placeholder);
        }
        return paneIcon(entry.dir ? PaneIcon::Folder : PaneIcon::File);
    case Qt::ToolTipRole:
        if (index.column() != NameColumn || entry.placeholder) {
            return {};
        }
        return detail::plainTextToolTip(entry.path);
    default:
        return {};
    }
}

QVariant PerchPaneTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case NameColumn: return tr("Name");
    case PermissionsColumn: return m_isRemote ? tr("Permissions") : QVariant();
    case SizeColumn: return m_isRemote ? tr("Size") : QVariant();
    case ModifiedColumn: return m_isRemote ? tr("Modified") : QVariant();
    default: return {};
    }
}

Qt::ItemFlags PerchPaneTableModel::flags(QModelIndex const& index) const
{
    if (!index.isValid()) {
        return m_isRemote ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    }
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    // Every remote row takes a drop "on" it: the pane decides whether that means the row's
    // folder or the current one.
    if (m_isRemote) {
        flags |= Qt::ItemIsDropEnabled;
    }
    return flags;
}

QStringList PerchPaneTableModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

Qt::DropActions PerchPaneTableModel::supportedDropActions() const
{
    return Qt::CopyAction;
}

bool PerchPaneTableModel::canDropMimeData(QMimeData const* data, Qt::DropAction action, int, int,
                                          QModelIndex const&) const
{
    return action == Qt::CopyAction && m_dropValidator && m_dropValidator(data);
}

bool PerchPaneTableModel::dropMimeData(QMimeData const* data, Qt::DropAction action, int, int,
                                       QModelIndex const& parent)
{
    if (action != Qt::CopyAction || !m_dropAcceptor) {
        return false;
    }
    // A drop on a row arrives as that row's index; a drop between rows or below them as a row
    // number with no parent, which counts as the empty part of the table.
    return m_dropAcceptor(data, parent.isValid() ? parent.row() : -1);
}

} // namespace perchftp::app
