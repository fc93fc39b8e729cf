#pragma once

#include "app/pane/pane_entry.hpp"

#include <QString>
#include <QStringList>

namespace perchftp::app {

class PerchFilePaneController;

// What a file pane asks of the shell. A pane never performs an operation itself: it decides which
// operation a click means and hands it over here. The first argument is always the calling pane.
class PerchFilePaneControllerDelegate {
public:
    virtual ~PerchFilePaneControllerDelegate() = default;

    // Navigate the pane to a folder (path field, Up on the remote pane, double click on a remote
    // folder, refresh of the remote pane).
    virtual void didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote) = 0;
    // The selection moved; path is the pane's selectedPath(), "" without a selection.
    virtual void didChangeSelectionPath(PerchFilePaneController* pane, QString const& path, bool isRemote) = 0;
    // Local files were dropped on the remote pane; targetPath is the folder they should go to.
    virtual void didDropPaths(PerchFilePaneController* pane, QStringList const& paths, QString const& targetPath,
                              bool isRemote) = 0;
    virtual void didRequestContextTransferForPath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                                                  bool isDirectory) = 0;
    virtual void didRequestCreateFolder(PerchFilePaneController* pane, bool isRemote) = 0;
    virtual void didRequestRenamePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                                      bool isDirectory) = 0;
    virtual void didRequestDeletePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                                      bool isDirectory) = 0;
    virtual void didRequestDeletePaths(PerchFilePaneController* pane, PaneEntries const& items, bool isRemote) = 0;
    virtual void didRequestChangePermissions(PerchFilePaneController* pane, PaneEntries const& items,
                                             bool isRemote) = 0;
};

} // namespace perchftp::app
