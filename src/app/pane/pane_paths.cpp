#include "app/pane/pane_paths.hpp"

#include <QDir>
#include <QStringList>

#include <pwd.h>

namespace perchftp::app::detail {

namespace {

QString homeOfUser(QString const& user)
{
    if (user.isEmpty()) {
        return homeFolder();
    }
    passwd const* record = ::getpwnam(user.toLocal8Bit().constData());
    return record != nullptr ? QString::fromLocal8Bit(record->pw_dir) : QString();
}

// "~" and "~user" at the start become that user's home; an unknown user leaves the text alone.
QString expandTilde(QString const& path)
{
    if (!path.startsWith(u'~')) {
        return path;
    }
    qsizetype const slash = path.indexOf(u'/');
    QString const user = path.mid(1, slash < 0 ? -1 : slash - 1);
    QString const home = homeOfUser(user);
    if (home.isEmpty()) {
        return path;
    }
    return slash < 0 ? home : home + path.mid(slash);
}

} // namespace

QString homeFolder()
{
    return QDir::homePath();
}

QString standardizePath(QString const& path)
{
    if (path.isEmpty()) {
        return path;
    }
    QString const expanded = expandTilde(path);
    bool const absolute = expanded.startsWith(u'/');
    QStringList kept;
    for (QString const& component : expanded.split(u'/', Qt::SkipEmptyParts)) {
        if (component == u".") {
            continue;
        }
        if (absolute && component == u"..") {
            if (!kept.isEmpty()) {
                kept.removeLast();
            }
            continue;
        }
        kept.append(component);
    }
    QString const joined = kept.join(u'/');
    return absolute ? u'/' + joined : joined;
}

QString deletingLastPathComponent(QString const& path)
{
    qsizetype end = path.size();
    while (end > 1 && path.at(end - 1) == u'/') {
        --end;
    }
    qsizetype const slash = path.lastIndexOf(u'/', end - 1);
    if (slash < 0) {
        return QStringLiteral("");
    }
    qsizetype parentEnd = slash;
    while (parentEnd > 0 && path.at(parentEnd - 1) == u'/') {
        --parentEnd;
    }
    return parentEnd == 0 ? QStringLiteral("/") : path.left(parentEnd);
}

QString appendingPathComponent(QString const& base, QString const& component)
{
    if (base.isEmpty()) {
        return component;
    }
    return base.endsWith(u'/') ? base + component : base + u'/' + component;
}

} // namespace perchftp::app::detail
