#pragma once

#include <QIcon>

namespace perchftp::app {

enum class PaneIcon {
    Up,
    OpenFolder,
    NewFolder,
    Rename,
    Delete,
    Upload,
    Download,
    Placeholder,
    Folder,
    File,
    ArrowRight,
    ArrowLeft,
};

// The desktop theme's icon for the purpose, or the pane's own drawing when the theme has none, so
// that the panes look complete on a machine without an icon theme. Needs a running QApplication.
QIcon paneIcon(PaneIcon icon);

} // namespace perchftp::app
