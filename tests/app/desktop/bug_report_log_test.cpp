// The bug report's time stamp; the record around it is pinned by the workflow that writes it.
#include "app/desktop/bug_report_log.hpp"

#include <gtest/gtest.h>

#include <QTimeZone>

namespace perchftp::app {
namespace {

TEST(BugReportLog, TheTimestampCarriesTheZoneAsSignedDigits)
{
    std::pair<int, char const*> const rows[] = {{3600, "+0100"}, {0, "+0000"}, {-(3 * 3600 + 30 * 60), "-0330"},
        {5 * 3600 + 45 * 60, "+0545"}};
    for (auto const& [offset, zone] : rows) {
        QDateTime const at(QDate(2026, 3, 7), QTime(9, 5, 3), QTimeZone(offset));
        EXPECT_EQ(bugReportTimestamp(at), QStringLiteral("2026-03-07 09:05:03 ") + QLatin1String(zone));
    }
}

} // namespace
} // namespace perchftp::app
