// Conflicts: whether a transfer's target already exists, and what the user wants done about it.
#include "app/shell_controller.hpp"

#include "app/transfers/transfer_paths.hpp"

#include <filesystem>

namespace perchftp::app {

namespace fs = std::filesystem;

TransferConflictDecision PerchFtpShellController::resolveTransferConflictForPath(QString const& path, bool isRemote,
    bool isDirectory)
{
    std::error_code ignored;
    bool const exists =
        isRemote ? remotePathExists(detail::pathBytes(path), nullptr) : fs::exists(detail::pathBytes(path), ignored);
    if (!exists) {
        return TransferConflictDecision::Replace;
    }
    if (rememberTransferConflictDecision_) {
        return replaceOnTransferConflict_ ? TransferConflictDecision::Replace : TransferConflictDecision::Skip;
    }
    QString const text = QStringLiteral("%1 \"%2\" already exists at the destination.")
                             .arg(isDirectory ? QStringLiteral("Folder") : QStringLiteral("File"),
                                 detail::lastPathComponent(path));
    bool remember = false;
    TransferConflictDecision const decision =
        promptTransferConflict(dialogs(), hostWindow_, QStringLiteral("Replace Existing Item?"), text, &remember);
    // A Cancel ends the transfer, so there is nothing to remember it for.
    if (remember && decision != TransferConflictDecision::Cancel) {
        rememberTransferConflictDecision_ = true;
        replaceOnTransferConflict_ = decision == TransferConflictDecision::Replace;
    }
    return decision;
}

// The protocol has no stat: the parent is listed and the name looked for. A parent that can't be
// listed counts as no conflict, so that a failed lookup leads to an overwrite and not to a stop.
bool PerchFtpShellController::remotePathExists(std::string const& path, bool* isDirectory)
{
    if (!isConnected() || path.empty()) {
        return false;
    }
    fs::path const remote(path);
    std::string const parentPath = remote.parent_path().generic_string();
    std::string const parent = parentPath.empty() ? std::string("/") : parentPath;
    std::string name = remote.filename().generic_string();
    if (name.empty()) {
        name = remote.stem().generic_string();
    }

    std::vector<protocol::RemoteEntry> entries;
    // Some servers list their root only as the empty path.
    protocol::SessionResult listed = session_->list(parent == "/" ? std::string() : parent, entries);
    if (!listed.ok) {
        entries.clear();
        listed = session_->list(parent, entries);
    }
    if (!listed.ok) {
        return false;
    }
    for (protocol::RemoteEntry const& entry : entries) {
        if (entry.name == name) {
            if (isDirectory != nullptr) {
                *isDirectory = entry.isDirectory;
            }
            return true;
        }
    }
    return false;
}

} // namespace perchftp::app
