#include "app/shell_dialogs.hpp"

namespace perchftp::app {

FolderChooserRun ShellDialogs::runFolderChooser(QString const& startFolder, QString const& prompt)
{
    return FolderChooser::run(startFolder, prompt);
}

} // namespace perchftp::app
