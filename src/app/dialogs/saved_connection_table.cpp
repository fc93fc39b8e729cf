#include "app/dialogs/saved_connection_table.hpp"

#include "app/shell_dialogs.hpp"

#include <QApplication>
#include <QDialog>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPalette>
#include <QStyledItemDelegate>

namespace perchftp::app {

namespace {

constexpr int kRowHeight = 24;
constexpr int kColumnWidth = 516;

// Rows are drawn without the dotted focus mark of the current cell.
class NoFocusMarkDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, QModelIndex const& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~QStyle::State_HasFocus;
    }
};

} // namespace

PerchSavedConnectionListDataSource::PerchSavedConnectionListDataSource(QObject* parent)
    : QAbstractTableModel(parent)
{
}

void PerchSavedConnectionListDataSource::setItems(std::vector<SavedConnectionItem> items)
{
    beginResetModel();
    items_ = std::move(items);
    endResetModel();
}

int PerchSavedConnectionListDataSource::rowCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

int PerchSavedConnectionListDataSource::columnCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : 1;
}

QVariant PerchSavedConnectionListDataSource::data(QModelIndex const& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return savedConnectionRowText(items_[static_cast<std::size_t>(index.row())]);
    case Qt::ForegroundRole:
        return QApplication::palette().brush(QPalette::WindowText);
    case Qt::SizeHintRole:
        return QSize(360, kRowHeight);
    default:
        return {};
    }
}

QVariant PerchSavedConnectionListDataSource::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && section == 0 && role == Qt::DisplayRole) {
        return QStringLiteral("savedConnection");
    }
    return {};
}

PerchSavedConnectionTableView::PerchSavedConnectionTableView(QWidget* parent)
    : QTableView(parent)
{
    horizontalHeader()->hide();
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(kRowHeight);
    horizontalHeader()->setDefaultSectionSize(kColumnWidth);
    setShowGrid(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFrameShape(QFrame::StyledPanel);
    setItemDelegate(new NoFocusMarkDelegate(this));
    connect(this, &QAbstractItemView::doubleClicked, this, [this] { openSelectedRow(); });
}

int PerchSavedConnectionTableView::selectedRow() const
{
    QModelIndexList const rows = selectionModel() ? selectionModel()->selectedRows() : QModelIndexList();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void PerchSavedConnectionTableView::openSelectedRow()
{
    if (auto* running = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        running->done(kFirstAlertButton);
    }
    if (modalAlert_) {
        modalAlert_->hide();
    }
}

void PerchSavedConnectionTableView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton || event->button() == Qt::RightButton) {
        QModelIndex const index = indexAt(event->position().toPoint());
        if (index.isValid()) {
            explicitSelectionRow_ = index.row();
            selectRow(index.row());
        }
    }
    QTableView::mousePressEvent(event);
}

} // namespace perchftp::app
