#pragma once

#include "protocol/remote_session.hpp"

#include <functional>
#include <string>

// Remote folders as trees: names joined onto folders, listed names that stay inside their folder,
// and the delete of a folder with everything in it.
namespace perchftp::protocol {

// A remote folder and a name joined by exactly one "/": an empty base or "/" gives "/" + leaf.
std::string joinRemotePath(std::string const& base, std::string const& leaf);

// Whether a listed name names an entry of its own folder and nothing else: not empty, not "."
// or "..", and without a "/". A symbolic link's line can yield its target ("../elsewhere").
bool isPlainEntryName(std::string const& name);

// Deletes the remote folder `path` and everything in it through `session`: depth first, the
// contents before the folder, stopping at the first failure, whose cause goes to `log`. A listed
// name that could lead out of the folder stops it too, so nothing outside is ever touched.
// True when everything was deleted; false at once when the session is not connected.
bool deleteRemoteTree(IRemoteSession& session, std::string const& path,
                      std::function<void(std::string const&)> const& log);

} // namespace perchftp::protocol
