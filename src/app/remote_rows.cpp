#include "app/remote_rows.hpp"

#include "app/shell_text.hpp"

namespace perchftp::app {

QString appendPathComponent(QString const& base, QString const& name)
{
    QString joined = base;
    while (joined.size() > 1 && joined.endsWith(u'/')) {
        joined.chop(1);
    }
    if (!name.isEmpty()) {
        joined = joined.isEmpty() ? name : (joined == QLatin1String("/") ? joined + name : joined + u'/' + name);
    }
    return joined.isEmpty() ? QStringLiteral("/") : joined;
}

PaneEntries remotePaneRows(std::vector<protocol::RemoteEntry> const& entries, QString const& base)
{
    PaneEntries rows;
    rows.reserve(static_cast<qsizetype>(entries.size()));
    for (auto const& entry : entries) {
        PaneEntry row;
        row.name = detail::fromUtf8Or(entry.name, QString(QLatin1String("")));
        row.path = appendPathComponent(base, row.name);
        row.dir = entry.isDirectory;
        row.placeholder = false;
        row.permissions = detail::fromUtf8Or(entry.permissions, QString(QLatin1String("")));
        row.size = entry.isDirectory ? QString(QLatin1String("")) : QString::number(entry.size);
        row.sizeValue = entry.size;
        row.modifiedAt = detail::fromUtf8Or(entry.modifiedAt, QString(QLatin1String("")));
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace perchftp::app
