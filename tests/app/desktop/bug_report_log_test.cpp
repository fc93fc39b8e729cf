#include "app/desktop/bug_report_log.hpp"

#include <gtest/gtest.h>

#include <QTimeZone>

namespace perchftp::app {
namespace {

QDateTime at(int offsetSeconds)
{
    return QDateTime(QDate(2026, 3, 7), QTime(9, 5, 3), QTimeZone(offsetSeconds));
}

TEST(BugReportLog, TheTimestampCarriesTheZoneAsDigits)
{
    std::pair<int, char const*> const rows[] = {{3600, "+0100"}, {0, "+0000"}, {-(3 * 3600 + 30 * 60), "-0330"},
        {5 * 3600 + 45 * 60, "+0545"}};
    for (auto const& [offset, zone] : rows) {
        EXPECT_EQ(bugReportTimestamp(at(offset)), QStringLiteral("2026-03-07 09:05:03 ") + QLatin1String(zone));
    }
}

TEST(BugReportLog, ARecordHasTheStateLinesTheTextAndTheSeparator)
{
    EXPECT_EQ(formatBugReportRecord(at(3600), BugReportState{"ftp.example.org", "sftp", true, "/home/ann", "/srv/www"},
                  "It broke.\nTwice."),
        QStringLiteral("[2026-03-07 09:05:03 +0100]\n"
                       "Host: ftp.example.org\n"
                       "Protocol: sftp\n"
                       "Connected: yes\n"
                       "Local Path: /home/ann\n"
                       "Remote Path: /srv/www\n"
                       "Report:\n"
                       "It broke.\nTwice.\n"
                       "\n---\n\n"));
    EXPECT_EQ(formatBugReportRecord(at(0), BugReportState{"", "ftp", false, "%1", ""}, "%2 100%"),
        QStringLiteral("[2026-03-07 09:05:03 +0000]\nHost: \nProtocol: ftp\nConnected: no\n"
                       "Local Path: %1\nRemote Path: \nReport:\n%2 100%\n\n---\n\n"))
        << "unconnected, with an empty host and percent signs kept";
}

} // namespace
} // namespace perchftp::app
