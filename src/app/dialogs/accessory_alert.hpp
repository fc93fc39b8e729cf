#pragma once

#include <QDialog>
#include <QIcon>
#include <QString>
#include <QStringList>

class QDialogButtonBox;
class QPushButton;
class QVBoxLayout;

namespace perchftp::app {

// An alert with a message, an informative text, a custom body under them and buttons in a row.
// exec() answers 1000 + n for the n-th button (from 0). The first button is the default one;
// Escape and the window's close button answer as the declining button ("Cancel", else the last).
// Both texts are shown as they stand, never as markup.
class AccessoryAlert : public QDialog {
public:
    AccessoryAlert(QWidget* parent, QString const& message, QString const& informative, QIcon const& icon);

    void setAccessory(QWidget* accessory);
    QPushButton* addButton(QString const& title);

    void reject() override;

private:
    QVBoxLayout* accessoryLayout_ = nullptr;
    QDialogButtonBox* buttons_ = nullptr;
    QStringList titles_;
};

} // namespace perchftp::app
