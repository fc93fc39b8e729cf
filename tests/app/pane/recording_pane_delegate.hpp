#pragma once

#include "app/pane/perch_file_pane_controller_delegate.hpp"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace perchftp::app::testing {

// One call that a pane made to its delegate.
struct PaneCall {
    QString method;
    QString path;
    bool isRemote = false;
    bool isDirectory = false;
    QStringList paths{}; // didDropPaths
    PaneEntries items{}; // didRequestDeletePaths, didRequestChangePermissions

    // "method path" for compact comparisons; items and dropped paths are listed after it.
    QString summary() const;
};

// Records every delegate call in order. onOpenPath, when set, plays the shell's part for
// navigation (the shell lists the requested folder).
class RecordingPaneDelegate : public PerchFilePaneControllerDelegate {
public:
    std::vector<PaneCall> calls;
    std::function<void(PerchFilePaneController*, QString const&)> onOpenPath;

    QStringList summaries() const;
    void clear() { calls.clear(); }

    void didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote) override;
    void didChangeSelectionPath(PerchFilePaneController* pane, QString const& path, bool isRemote) override;
    void didDropPaths(PerchFilePaneController* pane, QStringList const& paths, QString const& targetPath,
                      bool isRemote) override;
    void didRequestContextTransferForPath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                                          bool isDirectory) override;
    void didRequestCreateFolder(PerchFilePaneController* pane, bool isRemote) override;
    void didRequestRenamePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                              bool isDirectory) override;
    void didRequestDeletePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
                              bool isDirectory) override;
    void didRequestDeletePaths(PerchFilePaneController* pane, PaneEntries const& items, bool isRemote) override;
    void didRequestChangePermissions(PerchFilePaneController* pane, PaneEntries const& items,
                                     bool isRemote) override;
};

} // namespace perchftp::app::testing
