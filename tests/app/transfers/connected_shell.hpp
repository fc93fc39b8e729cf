#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_controller.hpp"
#include "support/qt_printers.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/started_shell.hpp"
#include "support/temp_dir.hpp"
#include "transfer/transfer_queue.hpp"

#include <QString>
#include <QStringList>

#include <memory>
#include <string>
#include <vector>

namespace perchftp::test {

// The buttons of the conflict alert.
inline constexpr int kReplace = app::kFirstAlertButton;
inline constexpr int kSkip = app::kFirstAlertButton + 1;
inline constexpr int kCancel = app::kFirstAlertButton + 2;

// The real shell connected over FTP to a real loopback server, as a user connects with the form,
// with a local folder of its own in the local pane and the server's root in the remote pane.
class ConnectedShellTest : public StartedShellTest {
protected:
    void SetUp() override;

    FtpTestServer& server() { return *server_; }
    app::PerchFilePaneController& localPane() { return *controller().localPane(); }
    app::PerchFilePaneController& remotePane() { return *controller().remotePane(); }

    // A path in the local folder of this test.
    std::string local(std::string const& relative) const { return (local_.path() / relative).string(); }
    QString localText(std::string const& relative) const { return QString::fromStdString(local(relative)); }
    // Files are made with the folders above them; a folder path ends in "/".
    void putLocal(std::string const& relative, std::string const& bytes = {});
    void putRemote(std::string const& remotePath, std::string const& bytes = {});
    bool remoteExists(std::string const& remotePath) const;
    std::string remoteContent(std::string const& remotePath) const { return readFile(server_->local(remotePath)); }

    // Lists the folder in the pane again and selects the rows of these names only.
    void selectLocal(QStringList const& names);
    void selectRemote(QStringList const& names);
    // Fills the two hidden transfer fields, as the panes' selections do, and presses the hidden button.
    void transfer(transfer::JobType type, QString const& localPath, QString const& remotePath);

    // The banner with its marker, and the open popup's message ("" without a popup).
    QString banner();
    QString popupMessage();

    std::vector<transfer::TransferQueueItem> jobs() { return controller().transferQueue().queue().snapshot(); }
    // From now on, the states that the queue table shows for one row, each change once.
    void recordQueueRowStates(int row);
    QStringList recordedStates;

private:
    TempDir local_;
    std::unique_ptr<FtpTestServer> server_;
    QMetaObject::Connection recordingReset_;
    QMetaObject::Connection recordingChange_;
};

} // namespace perchftp::test
