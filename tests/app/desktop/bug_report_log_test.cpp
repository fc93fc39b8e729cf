#include "app/desktop/bug_report_log.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <QTimeZone>

namespace {

using perchftp::app::appendBugReportRecord;
using perchftp::app::bugReportTimestamp;
using perchftp::app::BugReportState;
using perchftp::app::formatBugReportRecord;
using perchftp::test::readFile;
using perchftp::test::TempDir;

QDateTime at(int offsetSeconds)
{
    return QDateTime(QDate(2026, 3, 7), QTime(9, 5, 3), QTimeZone(offsetSeconds));
}

TEST(BugReportLog, TimestampCarriesTheZoneAsDigits)
{
    EXPECT_EQ(bugReportTimestamp(at(3600)), QStringLiteral("2026-03-07 09:05:03 +0100"));
    EXPECT_EQ(bugReportTimestamp(at(0)), QStringLiteral("2026-03-07 09:05:03 +0000"));
    EXPECT_EQ(bugReportTimestamp(at(-(3 * 3600 + 30 * 60))), QStringLiteral("2026-03-07 09:05:03 -0330"));
    EXPECT_EQ(bugReportTimestamp(at(5 * 3600 + 45 * 60)), QStringLiteral("2026-03-07 09:05:03 +0545"));
}

TEST(BugReportLog, RecordHasTheStateLinesTheTextAndTheSeparator)
{
    BugReportState const state{"ftp.example.org", "sftp", true, "/home/ann", "/srv/www"};
    EXPECT_EQ(formatBugReportRecord(at(3600), state, "It broke.\nTwice."),
              QStringLiteral("[2026-03-07 09:05:03 +0100]\n"
                             "Host: ftp.example.org\n"
                             "Protocol: sftp\n"
                             "Connected: yes\n"
                             "Local Path: /home/ann\n"
                             "Remote Path: /srv/www\n"
                             "Report:\n"
                             "It broke.\nTwice.\n"
                             "\n---\n\n"));
}

TEST(BugReportLog, UnconnectedRecordKeepsAnEmptyHostAndPercentSigns)
{
    EXPECT_EQ(formatBugReportRecord(at(0), BugReportState{"", "ftp", false, "%1", ""}, "%2 100%"),
              QStringLiteral("[2026-03-07 09:05:03 +0000]\nHost: \nProtocol: ftp\nConnected: no\n"
                             "Local Path: %1\nRemote Path: \nReport:\n%2 100%\n\n---\n\n"));
}

TEST(BugReportLog, AppendsRecordsInOrderAsUtf8)
{
    TempDir dir;
    QString const log = QString::fromStdString(dir.file("bug-reports.log"));
    ASSERT_TRUE(appendBugReportRecord(log, QStringLiteral("first ✓\n")));
    ASSERT_TRUE(appendBugReportRecord(log, QStringLiteral("second\n")));
    EXPECT_EQ(readFile(dir.file("bug-reports.log")), "first \xe2\x9c\x93\nsecond\n");
}

TEST(BugReportLog, RefusesAPathBelowAFileAndWritesNothing)
{
    TempDir dir;
    perchftp::test::writeFile(dir.file("base"), "not a folder");
    EXPECT_FALSE(appendBugReportRecord(QString::fromStdString(dir.file("base/bug-reports.log")), "x"));
    EXPECT_EQ(readFile(dir.file("base")), "not a folder");
}

} // namespace
