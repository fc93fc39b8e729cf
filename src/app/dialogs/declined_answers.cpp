// The base answers of the dialog seam: every question declined, as Escape or closing its dialog would.
#include "app/shell_dialogs.hpp"

namespace perchftp::app {

int ShellDialogs::runAlert(QWidget*, AlertRequest const& request)
{
    return kFirstAlertButton + declinedAlertButton(request.buttons);
}

std::optional<QString> ShellDialogs::askForText(QWidget*, QString const&, QString const&, QString const&,
    QString const&, QIcon const&)
{
    return std::nullopt;
}

SavedConnectionAnswer ShellDialogs::chooseSavedConnection(
    QWidget*, std::vector<SavedConnectionItem> const&, QIcon const&)
{
    return SavedConnectionAnswer{};
}

std::optional<QString> ShellDialogs::editBugReport(QWidget*, QString const&, QIcon const&)
{
    return std::nullopt;
}

bool ShellDialogs::acceptLicence(QString const&, QIcon const&)
{
    return false;
}

// Transfers.
int ShellDialogs::runAlertWithCheckBox(QWidget* parent, AlertRequest const& request, QString const&, bool& checked)
{
    checked = false;
    return ShellDialogs::runAlert(parent, request);
}

} // namespace perchftp::app
