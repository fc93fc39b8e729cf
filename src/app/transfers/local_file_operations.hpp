#pragma once

#include <QString>

// The local side of the file operations. Each answers a null text on success and the system's
// words for the failure otherwise ("unknown error" when it has none).
namespace perchftp::app::detail {

// One folder; its parent must exist, and an existing item of that name is a failure.
QString createLocalFolder(QString const& path);

// Moves an item within its volume. An existing item at the target is a failure, never replaced.
QString moveLocalItem(QString const& from, QString const& to);

// Removes a file, a link (not what it points to) or a folder with everything in it. A path
// where nothing is is a failure.
QString removeLocalItem(QString const& path);

} // namespace perchftp::app::detail
