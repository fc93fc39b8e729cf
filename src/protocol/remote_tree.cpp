#include "protocol/remote_tree.hpp"

#include <vector>

namespace perchftp::protocol {

std::string joinRemotePath(std::string const& base, std::string const& leaf)
{
    if (base.empty() || base == "/") {
        return "/" + leaf;
    }
    if (base.back() == '/') {
        return base + leaf;
    }
    return base + "/" + leaf;
}

bool isPlainEntryName(std::string const& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

bool deleteRemoteTree(IRemoteSession& session, std::string const& path,
                      std::function<void(std::string const&)> const& log)
{
    if (!session.isConnected()) {
        return false;
    }
    std::vector<RemoteEntry> entries;
    SessionResult const listed = session.list(path, entries);
    if (!listed.ok) {
        log("Remote recursive delete list failed: " + listed.message);
        return false;
    }
    for (RemoteEntry const& entry : entries) {
        if (!isPlainEntryName(entry.name)) {
            log("Remote recursive delete stopped at a name that is not inside the folder: " + entry.name);
            return false;
        }
        std::string const child = joinRemotePath(path, entry.name);
        if (entry.isDirectory) {
            if (!deleteRemoteTree(session, child, log)) {
                return false;
            }
            continue;
        }
        SessionResult const removed = session.remove(child);
        if (!removed.ok) {
            log("Remote nested file delete failed: " + removed.message);
            return false;
        }
    }
    // The trailing "/" makes the session try the folder command first.
    SessionResult const removed = session.remove(path + "/");
    if (!removed.ok) {
        log("Remote folder delete failed: " + removed.message);
        return false;
    }
    return true;
}

} // namespace perchftp::protocol
