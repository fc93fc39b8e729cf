// Transfers: from the user's request to the job's final state in the queue. Each transfer runs
// inside the action that asked for it, on the main thread; the queue records what happened.
#include "app/shell_controller.hpp"

#include "app/pane/pane_paths.hpp"
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_text.hpp"
#include "app/transfers/transfer_paths.hpp"

#include <QComboBox>
#include <QLineEdit>

namespace perchftp::app {

namespace fs = std::filesystem;
using transfer::JobState;
using transfer::JobType;

namespace {

constexpr int kJobPriority = 1;
constexpr int kJobMaxRetries = 3;

QString fieldText(QLineEdit const* field)
{
    return field ? field->text() : QString();
}

void setFieldText(QLineEdit* field, QString const& text)
{
    if (field) {
        field->setText(text);
    }
}

// What the popup says for one progress event. The figures are held by value: the text is formed
// when the posted call runs, after the event's record is gone.
struct ProgressText {
    bool upload = true;
    bool started = false;
    double percent = 0.0;
    std::uint64_t transferred = 0;
    std::uint64_t bytes = 0; // the event's total when started, the span otherwise

    QString format() const
    {
        char const* verb = upload ? "Uploading" : "Downloading";
        if (started) {
            return QString::asprintf("%s started: 0%% of %llu bytes", verb, static_cast<unsigned long long>(bytes));
        }
        return QString::asprintf("%s %.0f%% (%llu / %llu bytes)", verb, percent,
            static_cast<unsigned long long>(transferred), static_cast<unsigned long long>(bytes));
    }
};

} // namespace

void PerchFtpShellController::enqueueUpload()
{
    runTransfer(JobType::Upload);
}

void PerchFtpShellController::enqueueDownload()
{
    runTransfer(JobType::Download);
}

void PerchFtpShellController::centerUploadAction()
{
    transferPaneSelection(localPane_, false);
}

void PerchFtpShellController::centerDownloadAction()
{
    transferPaneSelection(remotePane_, true);
}

// Each item runs to its end before the next starts; a failure does not stop the others.
void PerchFtpShellController::transferPaneSelection(PerchFilePaneController* pane, bool isRemote)
{
    PaneEntries const items = pane ? pane->selectedItems() : PaneEntries();
    if (items.isEmpty()) {
        setStatusText(isRemote ? QStringLiteral("Select one or more remote files or folders to download.")
                               : QStringLiteral("Select one or more local files or folders to upload."),
            true);
        return;
    }
    for (PaneEntry const& item : items) {
        if (!item.path.isEmpty()) {
            startTransferFromPanePath(item.path, isRemote, item.dir);
        }
    }
}

void PerchFtpShellController::didRequestContextTransferForPath(PerchFilePaneController*, QString const& path,
    bool isRemote, bool isDirectory)
{
    startTransferFromPanePath(path, isRemote, isDirectory);
}

void PerchFtpShellController::startTransferFromPanePath(QString const& path, bool isRemote, bool isDirectory)
{
    if (path.isEmpty()) {
        setStatusText(QStringLiteral("Selected item path is invalid."), true);
        return;
    }
    if (isRemote) {
        setFieldText(remoteTransferField_, path);
        QString const localFolder = localPane_ && !localPane_->pathValue().isNull() ? localPane_->pathValue()
                                                                                     : detail::homeFolder();
        QString target = localFolder;
        if (isDirectory) {
            QString leaf = detail::lastPathComponent(path);
            if (leaf.isEmpty() || leaf == QLatin1String("/")) {
                leaf = QStringLiteral("download");
            }
            target = detail::appendingPathComponent(localFolder, leaf);
        }
        setFieldText(localTransferField_, target);
        runTransfer(JobType::Download);
        return;
    }
    setFieldText(localTransferField_, path);
    QString const remoteFolder = remotePane_ ? remotePane_->pathValue() : QString();
    std::string const remote = detail::joinRemotePath(
        remoteFolder.isEmpty() ? std::string("/") : detail::pathBytes(remoteFolder),
        detail::pathBytes(detail::lastPathComponent(path)));
    setFieldText(remoteTransferField_, detail::pathText(remote));
    runTransfer(JobType::Upload);
}

void PerchFtpShellController::runTransfer(JobType type)
{
    if (!isConnected()) {
        setStatusText(QStringLiteral("Connect before starting transfer (Upload or Download)."), true);
        return;
    }
    bool const upload = type == JobType::Upload;
    showConnectionPopupWithTitle(upload ? QStringLiteral("Uploading") : QStringLiteral("Downloading"),
        upload ? QStringLiteral("Preparing upload...") : QStringLiteral("Preparing download..."));

    QString const localText = fieldText(localTransferField_);
    QString const remoteText = fieldText(remoteTransferField_);
    if (localText.isEmpty() || remoteText.isEmpty()) {
        setStatusText(QStringLiteral("Both local and remote paths are required to create a transfer."), true);
        closeConnectionPopupWithMessage(QStringLiteral("Both local and remote paths are required."), false);
        return;
    }
    fs::path const localPath(detail::pathBytes(localText));
    std::error_code ignored;
    fs::file_status const local = fs::status(localPath, ignored);
    std::string const protocolName = selectedProtocolName();

    // The one place where a remembered decision is forgotten: it lives for this transfer only.
    rememberTransferConflictDecision_ = false;
    replaceOnTransferConflict_ = false;

    if (upload) {
        if (!fs::exists(local)) {
            setStatusText(QStringLiteral("Upload source file does not exist."), true);
            closeConnectionPopupWithMessage(QStringLiteral("Upload source file does not exist."), false);
            return;
        }
        runUploadPaths(localPath, detail::pathBytes(remoteText), fs::is_directory(local), protocolName);
        return;
    }
    runDownloadPaths(localPath, detail::pathBytes(remoteText), protocolName);
}

void PerchFtpShellController::runUploadPaths(fs::path const& localPath, std::string remotePath,
    bool localIsDirectory, std::string const& protocolName)
{
    std::string const localName = localPath.filename().string();
    if (remotePath.empty() || remotePath == "/") {
        remotePath = "/" + localName;
    } else if (!localIsDirectory && remotePath.back() == '/') {
        remotePath += localName;
    }

    TransferConflictDecision const decision =
        resolveTransferConflictForPath(detail::pathText(remotePath), true, localIsDirectory);
    if (decision != TransferConflictDecision::Replace) {
        settleTopLevelRefusal(JobType::Upload, localPath, remotePath, protocolName, decision,
            localIsDirectory ? QStringLiteral("Folder upload") : QStringLiteral("Upload"));
        return;
    }
    if (!localIsDirectory) {
        runTransferOfFile(JobType::Upload, localPath, remotePath, protocolName);
        return;
    }

    setFieldText(remoteTransferField_, detail::pathText(remotePath));
    if (!uploadFolderRecursive(localPath, remotePath, protocolName)) {
        // The banner keeps what the walk said last.
        closeConnectionPopupWithMessage(QStringLiteral("Folder upload failed."), false);
        return;
    }
    setStatusText(QStringLiteral("Folder upload completed."), false);
    refreshLocalDirectory();
    refreshRemoteDirectory();
    reloadQueueSummary();
    closeConnectionPopupWithMessage(QStringLiteral("Folder upload completed."), true);
}

void PerchFtpShellController::runDownloadPaths(fs::path localPath, std::string const& remotePath,
    std::string const& protocolName)
{
    std::string const remoteName = fs::path(remotePath).filename().string();
    QString const noTarget = QStringLiteral("Select a remote file before downloading.");
    std::error_code ignored;
    bool const endsInSlash = !localPath.empty() && localPath.native().back() == '/';
    if (fs::is_directory(localPath, ignored) || endsInSlash) {
        if (remoteName.empty()) {
            setStatusText(noTarget, true);
            closeConnectionPopupWithMessage(noTarget, false);
            return;
        }
        localPath /= remoteName;
    }
    if (remotePath.empty() || remotePath.back() == '/') {
        QString const noFile = QStringLiteral("Select a remote file to download.");
        setStatusText(noFile, true);
        closeConnectionPopupWithMessage(noFile, false);
        return;
    }
    fs::file_status const target = fs::status(localPath, ignored);
    if (fs::exists(target)) {
        TransferConflictDecision const decision =
            resolveTransferConflictForPath(detail::pathText(localPath.string()), false, fs::is_directory(target));
        if (decision != TransferConflictDecision::Replace) {
            settleTopLevelRefusal(JobType::Download, localPath, remotePath, protocolName, decision,
                QStringLiteral("Download"));
            return;
        }
    }
    runTransferOfFile(JobType::Download, localPath, remotePath, protocolName);
}

// A Skip or a Cancel of the whole transfer leaves its line in the queue. A skip is no failure,
// a cancel is no success.
void PerchFtpShellController::settleTopLevelRefusal(JobType type, fs::path const& localPath,
    std::string const& remotePath, std::string const& protocolName, TransferConflictDecision decision,
    QString const& what)
{
    bool const skipped = decision == TransferConflictDecision::Skip;
    recordTransferQueueOutcome(type, localPath.string(), remotePath, protocolName,
        skipped ? JobState::Skipped : JobState::Canceled, skipped ? "skipped by user" : "canceled by user");
    QString const text = what + (skipped ? QStringLiteral(" skipped.") : QStringLiteral(" canceled."));
    setStatusText(text, false);
    closeConnectionPopupWithMessage(text, skipped);
}

void PerchFtpShellController::runTransferOfFile(JobType type, fs::path const& localPath,
    std::string const& remotePath, std::string const& protocolName)
{
    setFieldText(localTransferField_, detail::pathText(localPath.string()));
    setFieldText(remoteTransferField_, detail::pathText(remotePath));
    if (!executeQueuedTransfer(type, localPath.string(), remotePath, protocolName)) {
        // The banner keeps the specific message.
        closeConnectionPopupWithMessage(QStringLiteral("Transfer failed."), false);
        return;
    }
    reloadQueueSummary();
    refreshLocalDirectory();
    if (type == JobType::Download) {
        // An upload's Completed event has listed the remote folder already.
        refreshRemoteDirectory();
    }
    closeConnectionPopupWithMessage(QStringLiteral("Transfer completed."), true);
}

bool PerchFtpShellController::executeQueuedTransfer(JobType type, std::string const& localPath,
    std::string const& remotePath, std::string const& protocolName)
{
    std::uint64_t const id =
        transferQueue_.enqueue(type, protocolName, localPath, remotePath, kJobPriority, kJobMaxRetries);
    if (id == 0) {
        setStatusText(QStringLiteral("Could not enqueue transfer."), true);
        return false;
    }
    // One observer per job, kept for the life of the queue: every later change of any job calls
    // all of them.
    transferQueue_.queue().observe(id, [this](transfer::TransferQueueItem const& job) { reloadQueueSummary(job); });
    reloadQueueSummary();

    protocol::TransferParams const params{localPath, remotePath, false};
    protocol::TransferCallback const callback = transferProgressCallback(id, type);
    protocol::SessionResult result;
    if (session_ == nullptr) {
        result = {false, 1, protocolName + (type == JobType::Upload ? " upload" : " download") + ": not connected"};
    } else {
        result = type == JobType::Upload ? session_->upload(params, callback) : session_->download(params, callback);
    }
    if (result.ok) {
        setStatusText(QStringLiteral("Transfer completed."), false);
        logMessage("Transfer completed.");
        return true;
    }
    // Overwrites the generic words that a Failed event left on the job.
    transferQueue_.queue().complete(id, false, result.message);
    setStatusText(QStringLiteral("Transfer failed: %1").arg(detail::messageText(result.message)), true);
    logMessage("Transfer failed: " + result.message);
    return false;
}

// Runs inside the session's blocking call, on the main thread. Every event updates the queue at
// once; the popup texts are posted and shown once the action has returned, in posting order.
protocol::TransferCallback PerchFtpShellController::transferProgressCallback(std::uint64_t id, JobType type)
{
    return [this, id, type](protocol::TransferEventType event, protocol::TransferProgress const& progress) {
        bool const upload = type == JobType::Upload;
        std::uint64_t const span = std::max<std::uint64_t>(1, progress.total);
        ProgressText text{upload, false, 0.0, progress.transferred, span};
        switch (event) {
        case protocol::TransferEventType::Started:
            transferQueue_.queue().simulateProgress(id, 0, span);
            text.started = true;
            text.bytes = progress.total;
            break;
        case protocol::TransferEventType::Progress:
            transferQueue_.queue().simulateProgress(id, progress.transferred, span);
            text.percent = static_cast<double>(progress.transferred) / static_cast<double>(span) * 100.0;
            break;
        case protocol::TransferEventType::Completed:
            transferQueue_.queue().complete(id, true, std::string());
            if (upload) {
                refreshRemoteDirectory();
            }
            return;
        case protocol::TransferEventType::Failed:
            transferQueue_.queue().complete(id, false, "remote transfer failed");
            return;
        default:
            return;
        }
        QMetaObject::invokeMethod(
            this, [this, text] { setConnectionPopupMessageText(text.format()); }, Qt::QueuedConnection);
    };
}

void PerchFtpShellController::recordTransferQueueOutcome(JobType type, std::string const& localPath,
    std::string const& remotePath, std::string const& protocolName, JobState state, std::string const& error)
{
    std::uint64_t const id =
        transferQueue_.enqueue(type, protocolName, localPath, remotePath, kJobPriority, kJobMaxRetries);
    if (id == 0) {
        return;
    }
    transfer::TransferQueue& queue = transferQueue_.queue();
    switch (state) {
    case JobState::Skipped:
        queue.skip(id, error);
        break;
    case JobState::Canceled:
        queue.cancel(id);
        break;
    case JobState::Failed:
        queue.complete(id, false, error);
        break;
    case JobState::Completed:
        queue.complete(id, true, std::string());
        break;
    default:
        break;
    }
    reloadQueueSummary();
}

} // namespace perchftp::app
