#include "app/dialogs/saved_connection_picker.hpp"

#include "app/app_icons.hpp"
#include "app/dialogs/accessory_alert.hpp"

#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>

namespace perchftp::app {

namespace {

class SavedConnectionList : public QListWidget {
public:
    int explicitSelectionRow() const { return explicitSelectionRow_; }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        QModelIndex const index = indexAt(event->position().toPoint());
        if (index.isValid()) {
            explicitSelectionRow_ = index.row();
            setCurrentRow(index.row(), QItemSelectionModel::ClearAndSelect);
        }
        QListWidget::mousePressEvent(event);
    }

private:
    int explicitSelectionRow_ = 0;
};

} // namespace

SavedConnectionAnswer runSavedConnectionPicker(QWidget* parent, QStringList const& rows, QIcon const& icon)
{
    AccessoryAlert alert(parent, QStringLiteral("Open Saved Connection"),
        QStringLiteral("Select a saved connection to load."), icon);
    auto* list = new SavedConnectionList;
    list->setFixedSize(520, 180);
    list->setUniformItemSizes(true);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    for (QString const& row : rows) {
        auto* item = new QListWidgetItem(row, list);
        item->setSizeHint(QSize(516, 24));
    }
    list->setCurrentRow(0);
    alert.setAccessory(list);

    struct PickerButton {
        char const* title;
        char const* symbol;
    };
    for (PickerButton choice : {PickerButton{"Open", "arrow.up.right.square"}, PickerButton{"Edit", "pencil"},
             PickerButton{"Delete", "trash"}, PickerButton{"Cancel", nullptr}}) {
        QPushButton* button = alert.addButton(QString::fromLatin1(choice.title));
        if (choice.symbol) {
            button->setIcon(themedIcon(QString::fromLatin1(choice.symbol)));
        }
    }
    QObject::connect(list, &QListWidget::itemDoubleClicked, &alert, [&alert] { alert.done(kFirstAlertButton); });

    int const result = alert.exec();
    SavedConnectionAnswer answer;
    answer.button = result >= kFirstAlertButton ? result : kFirstAlertButton + 3;
    answer.row = list->explicitSelectionRow() >= 0 ? list->explicitSelectionRow() : list->currentRow();
    return answer;
}

} // namespace perchftp::app
