#pragma once

#include "app/pane/perch_file_pane_controller_delegate.hpp"
#include "app/queue/queue_view_mirror.hpp"
#include "app/shell_dialogs.hpp"
#include "app/status/status_popup.hpp"
#include "app/transfers/transfer_prompts.hpp"
#include "protocol/remote_session.hpp"
#include "storage/persistent_store.hpp"
#include "storage/site_manager.hpp"
#include "transfer/transfer_queue.hpp"

#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QObject>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPointer>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

class QComboBox;
class QLineEdit;
class QPushButton;
class QTableView;
class QWidget;

namespace perchftp::protocol {
class IRemoteSession;
}

namespace perchftp::app {

class PerchConnectButton;
class PerchConnectionLight;
class PerchFilePaneController;
class PerchPaneSplitView;
class PerchQueueTableDataSource;
class PerchStatusBanner;
struct SavedConnectionItem;

// The shell's one controller. It owns the queue, the saved connections, the store, the session,
// the dialog seam and every widget of the main window, and it runs every workflow of the shell
// on the main thread. Its workflows are spread over one source file per concern.
class PerchFtpShellController : public QObject, public PerchFilePaneControllerDelegate {
    Q_OBJECT
public:
    // Makes the base folder, runs the install tracker once and loads the saved connections.
    // Without dialogs the desktop's real ones are used.
    explicit PerchFtpShellController(std::unique_ptr<ShellDialogs> dialogs = {}, QObject* parent = nullptr);
    ~PerchFtpShellController() override;

    // Start-up, in the order the shell calls them: the menu bar with its empty menus, then the
    // main window, then (behind the splash) everything inside the window.
    void createMenuBar();
    void createMainWindow(QIcon const& icon);
    void assembleMainWindow();

    // Where the program keeps its files, made 0700 on construction.
    QString const& baseFolder() const { return baseFolder_; }

    ShellDialogs& dialogs() const { return *dialogs_; }
    void setDialogs(std::unique_ptr<ShellDialogs> dialogs);

    // The connected check: a session exists and says it is connected, asked afresh each time.
    bool isConnected() const;

    // Saved connections and the remembered local folder.
    void applySavedSiteProfile(storage::SiteProfile const& profile);
    void persistLastUsedConnectionNamed(std::string const& name);
    void loadLastUsedConnectionIntoForm();
    void persistLastLocalPanePath(QString const& path);
    void restoreLastLocalPanePath();

    // Listing.
    void refreshRemoteDirectory();
    void refreshLocalDirectory();

    // Queue view.
    void reloadQueueSummary();
    void logMessage(std::string const& line);

    // Status surfaces.
    void refreshControlState();
    void updateConnectButtonAnimationForConnected(bool connected);
    void setStatusText(QString const& text, bool isError);
    void showConnectionPopupWithTitle(QString const& title, QString const& message);
    void updateConnectionPopupTitle(QString const& title);
    void updateConnectionPopupMessage(QString const& message);
    void closeConnectionPopupWithMessage(QString const& message, bool success);

    // The pane's requests.
    void didRequestOpenPath(PerchFilePaneController* pane, QString const& path, bool isRemote) override;
    void didChangeSelectionPath(PerchFilePaneController* pane, QString const& path, bool isRemote) override;
    void didDropPaths(PerchFilePaneController* pane, QStringList const& paths, QString const& targetPath,
        bool isRemote) override;
    void didRequestContextTransferForPath(PerchFilePaneController* pane, QString const& path, bool isRemote,
        bool isDirectory) override;
    void didRequestCreateFolder(PerchFilePaneController* pane, bool isRemote) override;
    void didRequestRenamePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
        bool isDirectory) override;
    void didRequestDeletePath(PerchFilePaneController* pane, QString const& path, bool isRemote,
        bool isDirectory) override;
    void didRequestDeletePaths(PerchFilePaneController* pane, PaneEntries const& items, bool isRemote) override;
    void didRequestChangePermissions(PerchFilePaneController* pane, PaneEntries const& items, bool isRemote) override;

    // Transfers, conflicts and file operations. Paths in std::string are bytes as the disk or the
    // server takes them; QString paths are what the panes and the transfer fields hold.
    void startTransferFromPanePath(QString const& path, bool isRemote, bool isDirectory);
    void runTransfer(transfer::JobType type);
    bool executeQueuedTransfer(transfer::JobType type, std::string const& localPath, std::string const& remotePath,
        std::string const& protocolName);
    void recordTransferQueueOutcome(transfer::JobType type, std::string const& localPath,
        std::string const& remotePath, std::string const& protocolName, transfer::JobState state,
        std::string const& error);
    bool uploadFolderRecursive(std::filesystem::path const& localRoot, std::string const& remoteRoot,
        std::string const& protocolName);
    TransferConflictDecision resolveTransferConflictForPath(QString const& path, bool isRemote, bool isDirectory);
    bool remotePathExists(std::string const& path, bool* isDirectory);
    void createFolderInPane(bool isRemote);
    void renamePanePath(QString const& path, bool isRemote, bool isDirectory);
    void deletePanePath(QString const& path, bool isRemote, bool isDirectory);
    void deleteSelectedItems(PaneEntries const& items, bool isRemote);
    void changePermissionsForItems(PaneEntries const& items, bool isRemote);
    bool deleteRemotePathRecursive(std::string const& path);
    bool rememberTransferConflictDecision() const { return rememberTransferConflictDecision_; }
    void setRememberTransferConflictDecision(bool value) { rememberTransferConflictDecision_ = value; }
    bool replaceOnTransferConflict() const { return replaceOnTransferConflict_; }
    void setReplaceOnTransferConflict(bool value) { replaceOnTransferConflict_ = value; }
    // The queue view's reload for one changed job, as the queue's observers call it.
    void reloadQueueSummary(transfer::TransferQueueItem const& changed);

    // Members, each with its accessor pair. A setter only changes what the controller talks to;
    // ownership stays where it is.
    transfer::TransferQueueService& transferQueue() { return transferQueue_; }
    storage::SiteManager& siteManager() { return siteManager_; }
    storage::IPersistentStore* siteStore() const { return siteStore_.get(); }
    protocol::IRemoteSession* session() const { return session_; }
    // Takes ownership; a session held before is destroyed without a disconnect.
    void setSession(protocol::IRemoteSession* session);

    PerchFilePaneController* localPane() const { return localPane_; }
    void setLocalPane(PerchFilePaneController* value) { localPane_ = value; }
    PerchFilePaneController* remotePane() const { return remotePane_; }
    void setRemotePane(PerchFilePaneController* value) { remotePane_ = value; }
    QLineEdit* hostField() const { return hostField_; }
    void setHostField(QLineEdit* value) { hostField_ = value; }
    QLineEdit* portField() const { return portField_; }
    void setPortField(QLineEdit* value) { portField_ = value; }
    QComboBox* protocolField() const { return protocolField_; }
    void setProtocolField(QComboBox* value) { protocolField_ = value; }
    QLineEdit* userField() const { return userField_; }
    void setUserField(QLineEdit* value) { userField_ = value; }
    QLineEdit* secretField() const { return secretField_; }
    void setSecretField(QLineEdit* value) { secretField_ = value; }
    QLineEdit* localTransferField() const { return localTransferField_; }
    void setLocalTransferField(QLineEdit* value) { localTransferField_ = value; }
    QLineEdit* remoteTransferField() const { return remoteTransferField_; }
    void setRemoteTransferField(QLineEdit* value) { remoteTransferField_ = value; }
    QLabel* queueSummary() const { return queueSummary_; }
    void setQueueSummary(QLabel* value) { queueSummary_ = value; }
    QPlainTextEdit* queueLog() const { return queueLog_; }
    void setQueueLog(QPlainTextEdit* log) { queueLog_ = log; }
    QTableView* queueTable() const { return queueTable_; }
    void setQueueTable(QTableView* value) { queueTable_ = value; }
    PerchQueueTableDataSource* queueTableDataSource() const { return queueTableDataSource_; }
    void setQueueTableDataSource(PerchQueueTableDataSource* value) { queueTableDataSource_ = value; }
    QLabel* statusLabel() const { return statusLabel_; }
    void setStatusLabel(QLabel* value) { statusLabel_ = value; }
    PerchStatusBanner* statusBanner() const { return statusBanner_; }
    void setStatusBanner(PerchStatusBanner* value) { statusBanner_ = value; }
    PerchConnectionLight* connectionStatusLight() const { return connectionStatusLight_; }
    void setConnectionStatusLight(PerchConnectionLight* value) { connectionStatusLight_ = value; }
    QLabel* connectionStatusText() const { return connectionStatusText_; }
    void setConnectionStatusText(QLabel* value) { connectionStatusText_ = value; }
    PerchConnectButton* connectButton() const { return connectButton_; }
    void setConnectButton(PerchConnectButton* value) { connectButton_ = value; }
    QPushButton* disconnectButton() const { return disconnectButton_; }
    void setDisconnectButton(QPushButton* value) { disconnectButton_ = value; }
    QPushButton* refreshButton() const { return refreshButton_; }
    void setRefreshButton(QPushButton* value) { refreshButton_ = value; }
    QPushButton* saveConnectionButton() const { return saveConnectionButton_; }
    void setSaveConnectionButton(QPushButton* value) { saveConnectionButton_ = value; }
    QPushButton* openSavedConnectionButton() const { return openSavedConnectionButton_; }
    void setOpenSavedConnectionButton(QPushButton* value) { openSavedConnectionButton_ = value; }
    QPushButton* reportBugButton() const { return reportBugButton_; }
    void setReportBugButton(QPushButton* value) { reportBugButton_ = value; }
    QPushButton* uploadButton() const { return uploadButton_; }
    void setUploadButton(QPushButton* value) { uploadButton_ = value; }
    QPushButton* downloadButton() const { return downloadButton_; }
    void setDownloadButton(QPushButton* value) { downloadButton_ = value; }
    QPushButton* clearQueueButton() const { return clearQueueButton_; }
    void setClearQueueButton(QPushButton* value) { clearQueueButton_ = value; }
    QMainWindow* hostWindow() const { return hostWindow_; }
    void setHostWindow(QMainWindow* value) { hostWindow_ = value; }
    QMenuBar* mainMenu() const { return mainMenu_; }
    void setMainMenu(QMenuBar* value) { mainMenu_ = value; }
    PerchPaneSplitView* paneSplitView() const { return paneSplitView_; }
    void setPaneSplitView(PerchPaneSplitView* value) { paneSplitView_ = value; }
    QWidget* statusPopupWindow() const { return statusPopupWindow_; }
    void setStatusPopupWindow(QWidget* value) { statusPopupWindow_ = value; }
    QLabel* statusPopupTitle() const { return statusPopupTitle_; }
    void setStatusPopupTitle(QLabel* value) { statusPopupTitle_ = value; }
    QLabel* statusPopupMessage() const { return statusPopupMessage_; }
    void setStatusPopupMessage(QLabel* value) { statusPopupMessage_ = value; }
    QProgressBar* statusPopupProgress() const { return statusPopupProgress_; }
    void setStatusPopupProgress(QProgressBar* value) { statusPopupProgress_ = value; }
    PerchSwimmingIcon* statusPopupIcon() const { return statusPopupIcon_; }
    void setStatusPopupIcon(PerchSwimmingIcon* value) { statusPopupIcon_ = value; }

public slots:
    void connectSession();
    void disconnectSession();
    void refreshSession();
    void protocolSelectionDidChange();
    void saveConnection();
    void openSavedConnection();
    void enqueueUpload();
    void enqueueDownload();
    void centerUploadAction();
    void centerDownloadAction();
    void clearTransferQueue();
    void openLocalFolder();
    void reportBug();
    void showAboutPanel();
    // The about panel carries no link, so there is nothing to open.
    void openLinkedInProfile();
    // The main window is closing: the program ends.
    void windowWillClose();

private:
    // Start-up pieces.
    void runInstallTracker() const;
    void loadSavedConnections();
    QWidget* buildConnectionArea();
    QWidget* buildWorkArea(PerchFilePaneController* local, PerchFilePaneController* remote);
    QWidget* buildQueuePanel();
    void buildHiddenTransferControls();
    void wireControls();
    void setTabOrderInReadingOrder();
    void fillMenus();
    void scheduleDividerPlacement();

    // Status pieces.
    void takeAwayPopup();
    void setConnectionPopupMessageText(QString const& message);
    void drawConnectionPopupNow();
    void notAvailableYet(QString const& what);

    // Session pieces. The protocol's title as the selector shows it, null with nothing selected;
    // its name as a session is made for it, trimmed and lowered, "ftp" when empty.
    QString selectedProtocolTitle() const;
    std::string selectedProtocolName() const;
    // Disconnects and destroys the session, if there is one; the answer is not read.
    void endSession();

    // Saved connection pieces.
    storage::SiteProfile siteProfileFromForm(std::string name, QString const& protocolTitle, int port) const;
    void deleteSavedConnection(SavedConnectionItem const& item);
    void loadSavedConnection(SavedConnectionItem const& item, bool editing);

    // Transfer and file operation pieces.
    void transferPaneSelection(PerchFilePaneController* pane, bool isRemote);
    void runUploadPaths(std::filesystem::path const& localPath, std::string remotePath, bool localIsDirectory,
        std::string const& protocolName);
    void runDownloadPaths(std::filesystem::path localPath, std::string const& remotePath,
        std::string const& protocolName);
    void runTransferOfFile(transfer::JobType type, std::filesystem::path const& localPath,
        std::string const& remotePath, std::string const& protocolName);
    void settleTopLevelRefusal(transfer::JobType type, std::filesystem::path const& localPath,
        std::string const& remotePath, std::string const& protocolName, TransferConflictDecision decision,
        QString const& what);
    protocol::TransferCallback transferProgressCallback(std::uint64_t id, transfer::JobType type);
    bool uploadFolderEntry(std::filesystem::directory_entry const& entry, std::filesystem::path const& localRoot,
        std::string const& remotePath, std::string const& protocolName, bool& descend);
    bool makeRemoteFolderTolerantly(std::string const& remotePath);
    void createLocalFolder(QString const& name);
    void createRemoteFolder(QString const& name);
    protocol::SessionResult removeRemoteItem(std::string const& path, bool isDirectory);
    void failFileOperation(QString const& text);
    void finishFileOperation(QString const& banner, QString const& popup, bool isRemote);
    void showQueueCounts();

    std::unique_ptr<ShellDialogs> dialogs_;
    transfer::TransferQueueService transferQueue_;
    storage::SiteManager siteManager_;
    std::unique_ptr<storage::IPersistentStore> siteStore_;
    bool rememberTransferConflictDecision_ = false;
    bool replaceOnTransferConflict_ = false;
    QueueViewMirror queueViewMirror_;
    QString baseFolder_;

    PerchFilePaneController* localPane_ = nullptr;
    PerchFilePaneController* remotePane_ = nullptr;
    QLineEdit* hostField_ = nullptr;
    QLineEdit* portField_ = nullptr;
    QComboBox* protocolField_ = nullptr;
    QLineEdit* userField_ = nullptr;
    QLineEdit* secretField_ = nullptr;
    QLineEdit* localTransferField_ = nullptr;
    QLineEdit* remoteTransferField_ = nullptr;
    QLabel* queueSummary_ = nullptr;
    QPointer<QPlainTextEdit> queueLog_;
    QTableView* queueTable_ = nullptr;
    PerchQueueTableDataSource* queueTableDataSource_ = nullptr;
    QLabel* statusLabel_ = nullptr;
    PerchStatusBanner* statusBanner_ = nullptr;
    PerchConnectionLight* connectionStatusLight_ = nullptr;
    QLabel* connectionStatusText_ = nullptr;
    PerchConnectButton* connectButton_ = nullptr;
    QPushButton* disconnectButton_ = nullptr;
    QPushButton* refreshButton_ = nullptr;
    QPushButton* saveConnectionButton_ = nullptr;
    QPushButton* openSavedConnectionButton_ = nullptr;
    QPushButton* reportBugButton_ = nullptr;
    QPushButton* uploadButton_ = nullptr;
    QPushButton* downloadButton_ = nullptr;
    QPushButton* clearQueueButton_ = nullptr;
    PerchPaneSplitView* paneSplitView_ = nullptr;
    QPointer<QMenuBar> mainMenu_;
    QPointer<QMainWindow> hostWindow_;
    // Holds the controls that serve only as storage; it is never shown.
    std::unique_ptr<QWidget> hiddenControls_;

    QPointer<QWidget> statusPopupWindow_;
    QPointer<QLabel> statusPopupTitle_;
    QPointer<QLabel> statusPopupMessage_;
    QPointer<QProgressBar> statusPopupProgress_;
    QPointer<PerchSwimmingIcon> statusPopupIcon_;

    protocol::IRemoteSession* session_ = nullptr;
};

} // namespace perchftp::app
