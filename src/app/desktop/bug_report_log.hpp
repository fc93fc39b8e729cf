#pragma once

#include <QDateTime>
#include <QString>

namespace perchftp::app {

// What a bug report records about the moment it was written. No user name, no password.
struct BugReportState {
    QString host;
    QString protocol;
    bool connected = false;
    QString localPath;
    QString remotePath;
};

// "yyyy-MM-dd HH:mm:ss +hhmm" in the time's own zone, the offset as digits.
QString bugReportTimestamp(QDateTime const& time);

// One record of the log: the state lines, "Report:", the text as given, then an empty line, "---"
// and an empty line.
QString formatBugReportRecord(QDateTime const& time, BugReportState const& state, QString const& reportText);

// Appends one record as UTF-8, creating the file when needed. False when nothing could be written.
bool appendBugReportRecord(QString const& logPath, QString const& record);

} // namespace perchftp::app
