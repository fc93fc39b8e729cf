#pragma once

#include <QDialog>
#include <QIcon>
#include <QString>

class QDialogButtonBox;
class QPushButton;
class QVBoxLayout;

namespace perchftp::app {

// An alert with a message, an informative text, a custom body under them and buttons in a row.
// exec() answers 1000 + n for the n-th button (from 0) and 0 when the dialog was closed otherwise.
class AccessoryAlert : public QDialog {
public:
    AccessoryAlert(QWidget* parent, QString const& message, QString const& informative, QIcon const& icon);

    void setAccessory(QWidget* accessory);
    QPushButton* addButton(QString const& title);

private:
    QVBoxLayout* accessoryLayout_ = nullptr;
    QDialogButtonBox* buttons_ = nullptr;
    int buttonCount_ = 0;
};

} // namespace perchftp::app
