#include "app/pane/pane_icons.hpp"

#include <QString>

#include <array>

// Resources of a static library must be registered by hand; this runs once, at the first icon.
static void registerPaneIconResources()
{
    Q_INIT_RESOURCE(pane_icons);
}

namespace perchftp::app {

namespace {

struct IconSource {
    char const* themeName;    // freedesktop icon name
    char const* fallbackFile; // under :/icons/pane/
};

IconSource sourceOf(PaneIcon icon)
{
    switch (icon) {
    case PaneIcon::Up: return {"go-up", "go-up.svg"};
    case PaneIcon::OpenFolder: return {"folder-open", "folder-open.svg"};
    case PaneIcon::NewFolder: return {"folder-new", "folder-new.svg"};
    case PaneIcon::Rename: return {"edit-rename", "edit-rename.svg"};
    case PaneIcon::Delete: return {"edit-delete", "edit-delete.svg"};
    case PaneIcon::Upload: return {"document-send", "document-upload.svg"};
    case PaneIcon::Download: return {"document-save", "document-download.svg"};
    case PaneIcon::Placeholder: return {"dialog-information", "dialog-information.svg"};
    case PaneIcon::Folder: return {"folder", "folder.svg"};
    case PaneIcon::File: return {"text-x-generic", "text-x-generic.svg"};
    case PaneIcon::ArrowRight: return {"go-next", "go-next.svg"};
    case PaneIcon::ArrowLeft: return {"go-previous", "go-previous.svg"};
    }
    return {"", ""};
}

constexpr std::size_t kIconCount = std::size_t(PaneIcon::ArrowLeft) + 1;

} // namespace

QIcon paneIcon(PaneIcon icon)
{
    // Built once: a table with 100,000 rows asks for these icons on every paint.
    static std::array<QIcon, kIconCount> const icons = [] {
        registerPaneIconResources();
        std::array<QIcon, kIconCount> built;
        for (std::size_t index = 0; index < kIconCount; ++index) {
            IconSource const source = sourceOf(PaneIcon(index));
            QIcon const fallback(QStringLiteral(":/icons/pane/") + QString::fromLatin1(source.fallbackFile));
            built[index] = QIcon::fromTheme(QString::fromLatin1(source.themeName), fallback);
        }
        return built;
    }();
    return icons[std::size_t(icon)];
}

} // namespace perchftp::app
