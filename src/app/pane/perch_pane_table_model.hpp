#pragma once

#include "app/pane/pane_entry.hpp"
#include "app/pane/pane_sorting.hpp"

#include <QAbstractTableModel>

#include <functional>

namespace perchftp::app {

// The rows of one file pane as a table. The local pane has the name column only; the remote pane
// adds permissions, size and modification time. Rows are plain values, so a listing of 100,000
// entries is one list and one reset.
class PerchPaneTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { NameColumn, PermissionsColumn, SizeColumn, ModifiedColumn };

    using DropValidator = std::function<bool(QMimeData const*)>;
    using DropAcceptor = std::function<bool(QMimeData const*, int row)>;

    explicit PerchPaneTableModel(bool isRemote, QObject* parent = nullptr);

    PaneEntries const& entries() const { return m_entries; }
    // Replaces every row.
    void setEntries(PaneEntries entries);
    // Reorders the rows in place; selections and other persistent indexes follow their rows.
    void sortRows(QList<PaneSortDescriptor> const& descriptors);

    // The entry field that a column sorts by.
    static QString sortKeyOfColumn(int column);

    // Drops are decided by the pane; without handlers nothing is accepted.
    void setDropHandlers(DropValidator validator, DropAcceptor acceptor);

    int rowCount(QModelIndex const& parent = QModelIndex()) const override;
    int columnCount(QModelIndex const& parent = QModelIndex()) const override;
    QVariant data(QModelIndex const& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(QModelIndex const& index) const override;

    QStringList mimeTypes() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(QMimeData const* data, Qt::DropAction action, int row, int column,
                         QModelIndex const& parent) const override;
    bool dropMimeData(QMimeData const* data, Qt::DropAction action, int row, int column,
                      QModelIndex const& parent) override;

private:
    QVariant displayText(PaneEntry const& entry, int column) const;

    bool m_isRemote;
    PaneEntries m_entries;
    DropValidator m_dropValidator;
    DropAcceptor m_dropAcceptor;
};

} // namespace perchftp::app
