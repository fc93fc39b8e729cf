#include "app/transfers/transfer_prompts.hpp"

#include "app/app_icons.hpp"
#include "app/shell_dialogs.hpp"

namespace perchftp::app {

namespace {

QString orDefault(QString const& text, QString const& fallback)
{
    return text.isNull() ? fallback : text;
}

AlertRequest warningAlert(QString const& title, QString const& text, QStringList buttons)
{
    AlertRequest request;
    request.messageText = title;
    request.informativeText = orDefault(text, QStringLiteral(""));
    request.buttons = std::move(buttons);
    request.style = AlertRequest::Style::Warning;
    request.icon = appIconImage();
    return request;
}

} // namespace

bool confirmAction(ShellDialogs& dialogs, QWidget* window, QString const& title, QString const& text)
{
    AlertRequest const request = warningAlert(orDefault(title, QStringLiteral("Confirm")), text,
        {QStringLiteral("Delete"), QStringLiteral("Cancel")});
    return dialogs.runAlert(window, request) == kFirstAlertButton;
}

TransferConflictDecision promptTransferConflict(ShellDialogs& dialogs, QWidget* window, QString const& title,
    QString const& text, bool* remember)
{
    AlertRequest const request = warningAlert(orDefault(title, QStringLiteral("Conflict")), text,
        {QStringLiteral("Replace"), QStringLiteral("Skip"), QStringLiteral("Cancel")});
    bool checked = false;
    int const answer = dialogs.runAlertWithCheckBox(window, request,
        QStringLiteral("Remember this decision for next conflict"), checked);
    if (remember != nullptr) {
        *remember = checked;
    }
    switch (answer) {
    case kFirstAlertButton:
        return TransferConflictDecision::Replace;
    case kFirstAlertButton + 1:
        return TransferConflictDecision::Skip;
    default:
        return TransferConflictDecision::Cancel;
    }
}

} // namespace perchftp::app
