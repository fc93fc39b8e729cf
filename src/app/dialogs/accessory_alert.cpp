#include "app/dialogs/accessory_alert.hpp"

#include "app/shell_dialogs.hpp"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace perchftp::app {

AccessoryAlert::AccessoryAlert(QWidget* parent, QString const& message, QString const& informative, QIcon const& icon)
    : QDialog(parent)
{
    setWindowTitle(message);
    setModal(true);
    auto* layout = new QVBoxLayout(this);
    auto* heading = new QHBoxLayout;
    if (!icon.isNull()) {
        auto* iconLabel = new QLabel;
        iconLabel->setTextFormat(Qt::PlainText);
        iconLabel->setPixmap(icon.pixmap(48, 48));
        iconLabel->setAlignment(Qt::AlignTop);
        heading->addWidget(iconLabel);
    }
    auto* texts = new QVBoxLayout;
    auto* messageLabel = new QLabel(message);
    messageLabel->setTextFormat(Qt::PlainText);
    QFont bold = messageLabel->font();
    bold.setBold(true);
    messageLabel->setFont(bold);
    texts->addWidget(messageLabel);
    if (!informative.isEmpty()) {
        auto* informativeLabel = new QLabel(informative);
        informativeLabel->setTextFormat(Qt::PlainText);
        informativeLabel->setWordWrap(true);
        texts->addWidget(informativeLabel);
    }
    heading->addLayout(texts, 1);
    layout->addLayout(heading);
    accessoryLayout_ = new QVBoxLayout;
    layout->addLayout(accessoryLayout_);
    buttons_ = new QDialogButtonBox;
    layout->addWidget(buttons_);
}

void AccessoryAlert::setAccessory(QWidget* accessory)
{
    accessoryLayout_->addWidget(accessory);
}

QPushButton* AccessoryAlert::addButton(QString const& title)
{
    auto* button = buttons_->addButton(title, QDialogButtonBox::ActionRole);
    int const index = static_cast<int>(titles_.size());
    titles_.append(title);
    connect(button, &QPushButton::clicked, this, [this, index] { done(kFirstAlertButton + index); });
    button->setDefault(index == 0);
    button->setAutoDefault(index == 0);
    return button;
}

void AccessoryAlert::reject()
{
    done(kFirstAlertButton + declinedAlertButton(titles_));
}

} // namespace perchftp::app
