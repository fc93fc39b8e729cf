#include "recording_pane_delegate.hpp"

namespace perchftp::app::testing {

QString PaneCall::summary() const
{
    QString text = method;
    if (!path.isNull()) {
        text += u' ' + path;
    }
    for (PaneEntry const& item : items) {
        text += u' ' + item.path;
    }
    if (!paths.isEmpty()) {
        text += u' ' + paths.join(u',');
    }
    return text;
}

QStringList RecordingPaneDelegate::summaries() const
{
    QStringList all;
    for (PaneCall const& call : calls) {
        all.append(call.summary());
    }
    return all;
}

void RecordingPaneDelegate::didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote)
{
    calls.push_back({QStringLiteral("open"), path, isRemote});
    if (onOpenPath) {
        onOpenPath(pane, path);
    }
}

void RecordingPaneDelegate::didChangeSelectionPath(PerchFilePaneController*, QString const& path, bool isRemote)
{
    calls.push_back({QStringLiteral("selection"), path, isRemote});
}

void RecordingPaneDelegate::didDropPaths(PerchFilePaneController*, QStringList const& paths,
                                         QString const& targetPath, bool isRemote)
{
    calls.push_back({QStringLiteral("drop"), targetPath, isRemote, false, paths});
}

void RecordingPaneDelegate::didRequestContextTransferForPath(PerchFilePaneController*, QString const& path,
                                                             bool isRemote, bool isDirectory)
{
    calls.push_back({QStringLiteral("transfer"), path, isRemote, isDirectory});
}

void RecordingPaneDelegate::didRequestCreateFolder(PerchFilePaneController*, bool isRemote)
{
    calls.push_back({QStringLiteral("createFolder"), QString(), isRemote});
}

void RecordingPaneDelegate::didRequestRenamePath(PerchFilePaneController*, QString const& path, bool isRemote,
                                                 bool isDirectory)
{
    calls.push_back({QStringLiteral("rename"), path, isRemote, isDirectory});
}

void RecordingPaneDelegate::didRequestDeletePath(PerchFilePaneController*, QString const& path, bool isRemote,
                                                 bool isDirectory)
{
    calls.push_back({QStringLiteral("delete"), path, isRemote, isDirectory});
}

void RecordingPaneDelegate::didRequestDeletePaths(PerchFilePaneController*, PaneEntries const& items, bool isRemote)
{
    calls.push_back({QStringLiteral("deleteMany"), QString(), isRemote, false, {}, items});
}

void RecordingPaneDelegate::didRequestChangePermissions(PerchFilePaneController*, PaneEntries const& items,
                                                        bool isRemote)
{
    calls.push_back({QStringLiteral("permissions"), QString(), isRemote, false, {}, items});
}

} // namespace perchftp::app::testing
