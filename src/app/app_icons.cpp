#include "app/app_icons.hpp"

#include <QFile>

#include <array>
#include <utility>

// The resources live in a static library, so nothing registers them unless asked to.
static void registerShellResources()
{
    Q_INIT_RESOURCE(shell);
}

namespace perchftp::app {

void ensureShellResources()
{
    static bool const registered = [] {
        registerShellResources();
        return true;
    }();
    (void)registered;
}

namespace {

// Symbol names of the shell's controls and the freedesktop names that mean the same.
constexpr std::array<std::pair<char const*, char const*>, 13> kThemeNames{{
    {"network", "network-connect"},
    {"xmark.octagon", "network-disconnect"},
    {"arrow.clockwise", "view-refresh"},
    {"bookmark.fill", "bookmark-new"},
    {"folder.badge.gearshape", "folder-open"},
    {"ladybug.fill", "tools-report-bug"},
    {"arrow.up.doc.fill", "go-up"},
    {"arrow.down.doc.fill", "go-down"},
    {"arrow.right", "go-next"},
    {"arrow.left", "go-previous"},
    {"trash", "edit-delete"},
    {"arrow.up.right.square", "document-open"},
    {"pencil", "document-edit"},
}};

QString themeNameFor(QString const& symbolName)
{
    for (auto const& [symbol, themeName] : kThemeNames) {
        if (symbolName == QLatin1String(symbol)) {
            return QString::fromLatin1(themeName);
        }
    }
    return {};
}

QIcon bundledIcon(QString const& symbolName)
{
    QString const path = QStringLiteral(":/perchftp/shell/%1.svg").arg(symbolName);
    return QFile::exists(path) ? QIcon(path) : QIcon();
}

} // namespace

QIcon appIconImage()
{
    ensureShellResources();
    QIcon result;
    for (int size : {16, 32, 64, 128, 256, 1024}) {
        QString const path = QStringLiteral(":/perchftp/app/PerchFTP_%1x%1.png").arg(size);
        if (QFile::exists(path)) {
            result.addFile(path, QSize(size, size));
        }
    }
    return result;
}

QIcon themedIcon(QString const& symbolName)
{
    ensureShellResources();
    QString const themeName = themeNameFor(symbolName);
    if (!themeName.isEmpty() && QIcon::hasThemeIcon(themeName)) {
        return QIcon::fromTheme(themeName);
    }
    QIcon icon = bundledIcon(symbolName);
    if (icon.isNull()) {
        icon = QIcon::fromTheme(QStringLiteral("system-run"), bundledIcon(QStringLiteral("action")));
    }
    return icon;
}

} // namespace perchftp::app
