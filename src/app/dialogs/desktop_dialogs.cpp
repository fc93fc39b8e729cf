#include "app/dialogs/accessory_alert.hpp"
#include "app/dialogs/saved_connection_picker.hpp"
#include "app/shell_dialogs.hpp"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace perchftp::app {

namespace {

QMessageBox::Icon messageBoxIcon(AlertRequest::Style style)
{
    switch (style) {
    case AlertRequest::Style::Warning:
        return QMessageBox::Warning;
    case AlertRequest::Style::Critical:
        return QMessageBox::Critical;
    case AlertRequest::Style::Informational:
        break;
    }
    return QMessageBox::Information;
}

// A message box makes its informative label itself, ready to read markup.
void showAsPlainText(QWidget& dialog)
{
    for (auto* label : dialog.findChildren<QLabel*>()) {
        label->setTextFormat(Qt::PlainText);
    }
}

class DesktopDialogs final : public ShellDialogs {
public:
    QString chooseExistingFolder(QWidget* parent, QString const& title, QString const& startFolder) override
    {
        return QFileDialog::getExistingDirectory(parent, title, startFolder, QFileDialog::ShowDirsOnly);
    }

    int runAlert(QWidget* parent, AlertRequest const& request) override
    {
        QMessageBox box(parent);
        box.setIcon(messageBoxIcon(request.style));
        if (!request.icon.isNull()) {
            box.setIconPixmap(request.icon.pixmap(64, 64));
        }
        box.setWindowTitle(request.messageText);
        box.setTextFormat(Qt::PlainText);
        box.setText(request.messageText);
        box.setInformativeText(request.informativeText);
        showAsPlainText(box);
        QStringList const titles = request.buttons.isEmpty() ? QStringList{QStringLiteral("OK")} : request.buttons;
        // Every button keeps its place in the row: roles would let the style reorder them.
        std::vector<QAbstractButton*> buttons;
        for (QString const& title : titles) {
            buttons.push_back(box.addButton(title, QMessageBox::AcceptRole));
        }
        int const declined = declinedAlertButton(titles);
        box.setDefaultButton(static_cast<QPushButton*>(buttons.front()));
        box.setEscapeButton(buttons[static_cast<std::size_t>(declined)]);
        box.exec();
        for (std::size_t index = 0; index < buttons.size(); ++index) {
            if (box.clickedButton() == buttons[index]) {
                return kFirstAlertButton + static_cast<int>(index);
            }
        }
        return kFirstAlertButton + declined;
    }

    std::optional<QString> askForText(QWidget* parent, QString const& title, QString const& message,
        QString const& value, QString const& placeholder, QIcon const& icon) override
    {
        AccessoryAlert alert(parent, title, message, icon);
        auto* field = new QLineEdit(value);
        field->setPlaceholderText(placeholder);
        field->setFixedSize(280, 24);
        alert.setAccessory(field);
        alert.addButton(QStringLiteral("OK"));
        alert.addButton(QStringLiteral("Cancel"));
        if (alert.exec() != kFirstAlertButton) {
            return std::nullopt;
        }
        return field->text();
    }

    SavedConnectionAnswer chooseSavedConnection(
        QWidget* parent, std::vector<SavedConnectionItem> const& items, QIcon const& icon) override
    {
        return runSavedConnectionPicker(parent, items, icon);
    }

    std::optional<QString> editBugReport(QWidget* parent, QString const& templateText, QIcon const& icon) override
    {
        AccessoryAlert alert(parent, QStringLiteral("Report Bug"),
            QStringLiteral("Describe what went wrong. The report will be saved locally on this computer."), icon);
        auto* accessory = new QWidget;
        accessory->setFixedSize(560, 214);
        auto* layout = new QVBoxLayout(accessory);
        layout->setContentsMargins(0, 0, 0, 0);
        auto* caption = new QLabel(QStringLiteral("Bug details"));
        caption->setTextFormat(Qt::PlainText);
        layout->addWidget(caption);
        auto* editor = new QPlainTextEdit(templateText);
        editor->setFixedHeight(182);
        editor->document()->setDocumentMargin(10);
        layout->addWidget(editor);
        alert.setAccessory(accessory);
        alert.addButton(QStringLiteral("Submit"));
        alert.addButton(QStringLiteral("Cancel"));
        if (alert.exec() != kFirstAlertButton) {
            return std::nullopt;
        }
        return editor->toPlainText();
    }

    bool acceptLicence(QString const& licenceText, QIcon const& icon) override
    {
        AccessoryAlert alert(nullptr, QStringLiteral("PerchFtp Licence"),
            QStringLiteral("Please read the licence. PerchFtp starts once you accept it."), icon);
        auto* text = new QPlainTextEdit(licenceText);
        text->setReadOnly(true);
        text->setMinimumSize(620, 320);
        alert.setAccessory(text);
        alert.addButton(QStringLiteral("Accept"));
        alert.addButton(QStringLiteral("Decline"));
        return alert.exec() == kFirstAlertButton;
    }

    // Transfers: the conflict alert and its "remember" box.
    int runAlertWithCheckBox(QWidget* parent, AlertRequest const& request, QString const& checkBoxTitle,
        bool& checked) override
    {
        AccessoryAlert alert(parent, request.messageText, request.informativeText, request.icon);
        auto* box = new QCheckBox(checkBoxTitle);
        box->setChecked(false);
        box->setFixedSize(280, 20);
        alert.setAccessory(box);
        QStringList const titles = request.buttons.isEmpty() ? QStringList{QStringLiteral("OK")} : request.buttons;
        for (QString const& title : titles) {
            alert.addButton(title);
        }
        int const answer = alert.exec();
        checked = box->isChecked();
        return answer;
    }
};

} // namespace

std::unique_ptr<ShellDialogs> createDesktopDialogs()
{
    return std::make_unique<DesktopDialogs>();
}

} // namespace perchftp::app
