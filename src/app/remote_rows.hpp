#pragma once

#include "app/pane/pane_entry.hpp"
#include "protocol/remote_session.hpp"

#include <vector>

namespace perchftp::app {

// The pane rows of one remote listing, in the order the server gave them. Each path is the base
// with the name appended; a name that is not UTF-8 becomes the empty text.
PaneEntries remotePaneRows(std::vector<protocol::RemoteEntry> const& entries, QString const& base);

// `base` with `name` appended as a path component, "/" when that gives nothing.
QString appendPathComponent(QString const& base, QString const& name);

} // namespace perchftp::app
