#pragma once

#include <QString>

namespace perchftp::app {

// The folder that holds the program's files: the user's data folder plus "PerchFtp", or the
// temporary folder plus "PerchFtp" when the desktop names no data folder.
QString shellBaseFolder();

// Makes the folder with its parents and closes it to others (0700). Failure is not reported.
void makePrivateFolder(QString const& path);

inline constexpr char const* kSiteDatabaseName = "perchftp-sites.db";
inline constexpr char const* kTrackerStateName = "install-tracker.state";

} // namespace perchftp::app
