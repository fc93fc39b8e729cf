#include "app/desktop/bug_report_log.hpp"

#include <QFile>

#include <cstdlib>

namespace perchftp::app {

QString bugReportTimestamp(QDateTime const& time)
{
    int const offsetMinutes = time.offsetFromUtc() / 60;
    QString const offset = QStringLiteral("%1%2%3")
                               .arg(offsetMinutes < 0 ? QLatin1Char('-') : QLatin1Char('+'))
                               .arg(std::abs(offsetMinutes) / 60, 2, 10, QLatin1Char('0'))
                               .arg(std::abs(offsetMinutes) % 60, 2, 10, QLatin1Char('0'));
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss ")) + offset;
}

QString formatBugReportRecord(QDateTime const& time, BugReportState const& state, QString const& reportText)
{
    return QStringLiteral("[%1]\nHost: %2\nProtocol: %3\nConnected: %4\nLocal Path: %5\nRemote Path: %6\nReport:\n%7\n\n---\n\n")
        .arg(bugReportTimestamp(time), state.host, state.protocol,
             state.connected ? QStringLiteral("yes") : QStringLiteral("no"), state.localPath, state.remotePath,
             reportText);
}

bool appendBugReportRecord(QString const& logPath, QString const& record)
{
    QFile log(logPath);
    if (!log.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return false;
    }
    QByteArray const bytes = record.toUtf8();
    return log.write(bytes) == bytes.size() && log.flush();
}

} // namespace perchftp::app
