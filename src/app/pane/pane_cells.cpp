#include "app/pane/pane_cells.hpp"

#include <limits>

namespace perchftp::app::detail {

qint64 leadingInt64(QString const& text)
{
    qsizetype at = 0;
    while (at < text.size() && text.at(at).isSpace()) {
        ++at;
    }
    bool negative = false;
    if (at < text.size() && (text.at(at) == u'+' || text.at(at) == u'-')) {
        negative = text.at(at) == u'-';
        ++at;
    }
    quint64 const limit = negative ? quint64(std::numeric_limits<qint64>::max()) + 1
                                   : quint64(std::numeric_limits<qint64>::max());
    quint64 magnitude = 0;
    for (; at < text.size() && text.at(at) >= u'0' && text.at(at) <= u'9'; ++at) {
        quint64 const digit = text.at(at).unicode() - u'0';
        if (magnitude > (limit - digit) / 10) {
            magnitude = limit;
            break;
        }
        magnitude = magnitude * 10 + digit;
    }
    if (negative) {
        return magnitude == limit ? std::numeric_limits<qint64>::min() : -qint64(magnitude);
    }
    return qint64(magnitude);
}

QString sizeCellText(PaneEntry const& entry)
{
    if (entry.placeholder || entry.dir) {
        return QStringLiteral("");
    }
    // Read as a signed 64-bit number and looked at unsigned: text beyond the signed range
    // saturates, and a negative text shows as a very large size.
    auto const bytes = quint64(leadingInt64(entry.size.isNull() ? QStringLiteral("0") : entry.size));
    constexpr quint64 kilo = 1024;
    constexpr quint64 mega = kilo * 1024;
    constexpr quint64 giga = mega * 1024;
    if (bytes >= giga) {
        return QString::asprintf("%.1f GB", double(bytes) / double(giga));
    }
    if (bytes >= mega) {
        return QString::asprintf("%.1f MB", double(bytes) / double(mega));
    }
    if (bytes >= kilo) {
        return QString::asprintf("%.1f KB", double(bytes) / double(kilo));
    }
    return QString::asprintf("%llu B", static_cast<unsigned long long>(bytes));
}

QString plainTextToolTip(QString const& text)
{
    return QStringLiteral("<p style=\"white-space:pre\">%1</p>").arg(text.toHtmlEscaped());
}

} // namespace perchftp::app::detail
