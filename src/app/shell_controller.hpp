#pragma once

#include "app/pane/perch_file_pane_controller_delegate.hpp"
#include "app/shell_dialogs.hpp"
#include "app/status/status_popup.hpp"
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

    // Members, each with its accessor pair.
    transfer::TransferQueueService& transferQueue() { return transferQueue_; }
    storage::SiteManager& siteManager() { return siteManager_; }
    storage::IPersistentStore* siteStore() const { return siteStore_.get(); }
    protocol::IRemoteSession* session() const { return session_; }
    // Takes ownership; a session held before is destroyed without a disconnect.
    void setSession(protocol::IRemoteSession* session);

    PerchFilePaneController* localPane() const { return localPane_; }
    PerchFilePaneController* remotePane() const { return remotePane_; }
    QLineEdit* hostField() const { return hostField_; }
    QLineEdit* portField() const { return portField_; }
    QComboBox* protocolField() const { return protocolField_; }
    QLineEdit* userField() const { return userField_; }
    QLineEdit* secretField() const { return secretField_; }
    QLineEdit* localTransferField() const { return localTransferField_; }
    QLineEdit* remoteTransferField() const { return remoteTransferField_; }
    QLabel* queueSummary() const { return queueSummary_; }
    QPlainTextEdit* queueLog() const { return queueLog_; }
    void setQueueLog(QPlainTextEdit* log) { queueLog_ = log; }
    QTableView* queueTable() const { return queueTable_; }
    PerchQueueTableDataSource* queueTableDataSource() const { return queueTableDataSource_; }
    QLabel* statusLabel() const { return statusLabel_; }
    PerchStatusBanner* statusBanner() const { return statusBanner_; }
    PerchConnectionLight* connectionStatusLight() const { return connectionStatusLight_; }
    QLabel* connectionStatusText() const { return connectionStatusText_; }
    PerchConnectButton* connectButton() const { return connectButton_; }
    QPushButton* disconnectButton() const { return disconnectButton_; }
    QPushButton* refreshButton() const { return refreshButton_; }
    QPushButton* saveConnectionButton() const { return saveConnectionButton_; }
    QPushButton* openSavedConnectionButton() const { return openSavedConnectionButton_; }
    QPushButton* reportBugButton() const { return reportBugButton_; }
    QPushButton* uploadButton() const { return uploadButton_; }
    QPushButton* downloadButton() const { return downloadButton_; }
    QPushButton* clearQueueButton() const { return clearQueueButton_; }
    QMainWindow* hostWindow() const { return hostWindow_; }
    QMenuBar* mainMenu() const { return mainMenu_; }
    PerchPaneSplitView* paneSplitView() const { return paneSplitView_; }
    QWidget* statusPopupWindow() const { return statusPopupWindow_; }
    QLabel* statusPopupTitle() const { return statusPopupTitle_; }
    QLabel* statusPopupMessage() const { return statusPopupMessage_; }
    QProgressBar* statusPopupProgress() const { return statusPopupProgress_; }
    PerchSwimmingIcon* statusPopupIcon() const { return statusPopupIcon_; }

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
    // The main window is closing: the program ends.
    void windowWillClose();

private:
    // Start-up pieces.
    void runInstallTracker() const;
    void loadSavedConnections();
    QWidget* buildConnectionArea();
    QWidget* buildQueuePanel();
    void buildHiddenTransferControls();
    void wireControls();
    void fillMenus();
    void scheduleDividerPlacement();

    // Status pieces.
    void takeAwayPopup();
    void notAvailableYet(QString const& what);

    std::unique_ptr<ShellDialogs> dialogs_;
    transfer::TransferQueueService transferQueue_;
    storage::SiteManager siteManager_;
    std::unique_ptr<storage::IPersistentStore> siteStore_;
    bool rememberTransferConflictDecision_ = false;
    bool replaceOnTransferConflict_ = false;
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
