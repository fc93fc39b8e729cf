#pragma once

#include "app/saved_connection_items.hpp"

#include <QAbstractTableModel>
#include <QTableView>

#include <cstdint>
#include <vector>

class QDialog;

namespace perchftp::app {

// The rows of the saved-connection picker: one item per connection, shown as one line of text in
// the one column "savedConnection".
class PerchSavedConnectionListDataSource : public QAbstractTableModel {
public:
    explicit PerchSavedConnectionListDataSource(QObject* parent = nullptr);

    std::vector<SavedConnectionItem> const& items() const { return items_; }
    void setItems(std::vector<SavedConnectionItem> items);

    int rowCount(QModelIndex const& parent = QModelIndex()) const override;
    int columnCount(QModelIndex const& parent = QModelIndex()) const override;
    QVariant data(QModelIndex const& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<SavedConnectionItem> items_;
};

// The picker's table. A press of the left or right button on a row makes it the explicit
// selection; the keyboard moves the highlight alone. A double click opens the row.
class PerchSavedConnectionTableView : public QTableView {
public:
    explicit PerchSavedConnectionTableView(QWidget* parent = nullptr);

    std::int64_t explicitSelectionRow() const { return explicitSelectionRow_; }
    void setExplicitSelectionRow(std::int64_t row) { explicitSelectionRow_ = row; }
    // Not owned; the picker leaves it unset.
    QDialog* modalAlert() const { return modalAlert_; }
    void setModalAlert(QDialog* alert) { modalAlert_ = alert; }

    // The row highlighted now, or -1.
    int selectedRow() const;
    // Ends the running modal dialog as its first button ("Open") would, then hides modalAlert.
    void openSelectedRow();

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    std::int64_t explicitSelectionRow_ = 0;
    QDialog* modalAlert_ = nullptr;
};

} // namespace perchftp::app
