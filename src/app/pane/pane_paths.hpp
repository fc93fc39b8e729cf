#pragma once

#include <QString>

// Path text operations of the panes. They work on text only and never touch the disk.
namespace perchftp::app::detail {

// The text, or an empty (not null) text in place of null.
inline QString orEmpty(QString const& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

// The user's home folder.
QString homeFolder();

// Expands a leading "~" or "~user", drops empty and "." components and a trailing slash, and
// resolves ".." in absolute paths ("/.." stays "/"). Relative paths keep their "..". A null text
// stays null and an empty one empty.
QString standardizePath(QString const& path);

// The parent: "/a/b" gives "/a", "/a" and "/" give "/", a single relative name gives "".
QString deletingLastPathComponent(QString const& path);

// `base` and `component` joined by exactly one slash; an empty base gives the component alone.
QString appendingPathComponent(QString const& base, QString const& component);

} // namespace perchftp::app::detail
