#include "app/shell_dialogs.hpp"

#include <algorithm>

namespace perchftp::app {

int declinedAlertButton(QStringList const& buttons)
{
    qsizetype const cancel = buttons.indexOf(QStringLiteral("Cancel"));
    if (cancel >= 0) {
        return static_cast<int>(cancel);
    }
    return static_cast<int>(std::max<qsizetype>(buttons.size(), 1)) - 1;
}

FolderChooserRun ShellDialogs::runFolderChooser(QString const& startFolder, QString const& prompt)
{
    return FolderChooser::run(startFolder, prompt);
}

} // namespace perchftp::app
