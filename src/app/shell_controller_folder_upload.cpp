// Folder uploads: one walk of a local folder, in the order the file system gives, that makes the
// remote folders and uploads the files one by one.
#include "app/shell_controller.hpp"

#include "app/transfers/transfer_paths.hpp"

#include <filesystem>

namespace perchftp::app {

namespace fs = std::filesystem;
using transfer::JobState;
using transfer::JobType;

namespace {

// The entry's path below the root, resolved as std::filesystem::relative() does, except that a
// link keeps its own name: only the folder that holds it is resolved.
fs::path relativeToRoot(fs::directory_entry const& entry, fs::path const& root, std::error_code& ec)
{
    std::error_code probe;
    if (!entry.is_symlink(probe)) {
        return fs::relative(entry.path(), root, ec);
    }
    fs::path const folder = fs::relative(entry.path().parent_path(), root, ec);
    return (folder / entry.path().filename()).lexically_normal();
}

} // namespace

// A folder that is already there counts as made, and so does any failure whose words say "exist".
bool PerchFtpShellController::makeRemoteFolderTolerantly(std::string const& remotePath)
{
    protocol::SessionResult const made = session_ ? session_->mkdir(remotePath)
                                                  : protocol::SessionResult{false, 1, "mkdir: not connected"};
    if (made.ok || detail::messageLooksLikeAlreadyExists(made.message)) {
        return true;
    }
    setStatusText(QStringLiteral("Remote folder create failed: %1").arg(detail::messageText(made.message)), true);
    return false;
}

// The walk ends early on the first failure or Cancel; what was uploaded before stays. An iteration
// that fails (a folder that can't be read) is at its end and so ends the walk as a success.
bool PerchFtpShellController::uploadFolderRecursive(fs::path const& localRoot, std::string const& remoteRoot,
    std::string const& protocolName)
{
    if (!makeRemoteFolderTolerantly(remoteRoot)) {
        return false;
    }
    std::error_code ec;
    for (fs::recursive_directory_iterator walk(localRoot, ec); walk != fs::recursive_directory_iterator();
         walk.increment(ec)) {
        if (ec) {
            setStatusText(QStringLiteral("Folder upload traversal failed."), true);
            return false;
        }
        fs::path const relative = relativeToRoot(*walk, localRoot, ec);
        if (ec) {
            setStatusText(QStringLiteral("Folder upload path resolution failed."), true);
            return false;
        }
        std::string const remotePath = detail::joinRemotePath(remoteRoot, relative.generic_string());
        bool descend = true;
        if (!uploadFolderEntry(*walk, localRoot, remotePath, protocolName, descend)) {
            return false;
        }
        if (!descend) {
            walk.disable_recursion_pending();
        }
    }
    return true;
}

// One entry of the walk: a folder (links to folders count) is made, a regular file uploaded, and
// anything else passed over. False ends the walk; `descend` false leaves a folder's contents out.
bool PerchFtpShellController::uploadFolderEntry(fs::directory_entry const& entry, fs::path const& localRoot,
    std::string const& remotePath, std::string const& protocolName, bool& descend)
{
    std::error_code probe;
    bool const isDirectory = entry.is_directory(probe);
    if (!isDirectory && !entry.is_regular_file(probe)) {
        return true;
    }
    // A refused folder is recorded under the local root, a refused file under its own path.
    std::string const recordedPath = isDirectory ? localRoot.string() : entry.path().string();
    switch (resolveTransferConflictForPath(detail::pathText(remotePath), true, isDirectory)) {
    case TransferConflictDecision::Cancel:
        recordTransferQueueOutcome(
            JobType::Upload, recordedPath, remotePath, protocolName, JobState::Canceled, "canceled by user");
        setStatusText(QStringLiteral("Folder upload canceled."), false);
        return false;
    case TransferConflictDecision::Skip:
        recordTransferQueueOutcome(
            JobType::Upload, recordedPath, remotePath, protocolName, JobState::Skipped, "skipped by user");
        descend = false;
        return true;
    case TransferConflictDecision::Replace:
        break;
    }
    if (isDirectory) {
        return makeRemoteFolderTolerantly(remotePath);
    }
    return executeQueuedTransfer(JobType::Upload, entry.path().string(), remotePath, protocolName);
}

} // namespace perchftp::app
