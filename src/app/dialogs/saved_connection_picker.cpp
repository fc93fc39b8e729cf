#include "app/dialogs/saved_connection_picker.hpp"

#include "app/app_icons.hpp"
#include "app/dialogs/accessory_alert.hpp"
#include "app/dialogs/saved_connection_table.hpp"

#include <QPushButton>

namespace perchftp::app {

SavedConnectionAnswer runSavedConnectionPicker(
    QWidget* parent, std::vector<SavedConnectionItem> const& items, QIcon const& icon)
{
    AccessoryAlert alert(parent, QStringLiteral("Open Saved Connection"),
        QStringLiteral("Select a saved connection to load."), icon);
    auto* dataSource = new PerchSavedConnectionListDataSource(&alert);
    dataSource->setItems(items);
    auto* table = new PerchSavedConnectionTableView;
    table->setFixedSize(520, 180);
    table->setModel(dataSource);
    table->selectRow(0);
    alert.setAccessory(table);

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

    int const result = alert.exec();
    SavedConnectionAnswer answer;
    answer.button = result >= kFirstAlertButton ? result : kFirstAlertButton + 3;
    answer.row = table->explicitSelectionRow() >= 0 ? static_cast<int>(table->explicitSelectionRow())
                                                    : table->selectedRow();
    return answer;
}

} // namespace perchftp::app
