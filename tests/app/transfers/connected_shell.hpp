#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/queue/queue_table_model.hpp"
#include "app/shell_controller.hpp"
#include "app/support/ftp_connection_form.hpp"
#include "app/support/pane_rows.hpp"
#include "support/qt_printers.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/started_shell.hpp"
#include "support/temp_dir.hpp"
#include "transfer/transfer_queue.hpp"

#include <QLineEdit>
#include <QString>
#include <QStringList>

#include <filesystem>
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
    void SetUp() override
    {
        startShell();
        server_ = std::make_unique<FtpTestServer>();
        localPane().loadLocalDirectory(QString::fromStdString(local_.path().string()));
        fillFtpConnectionForm(controller(), *server_);
        controller().connectSession();
        remotePane().setPathValue(QStringLiteral("/"));
        controller().refreshRemoteDirectory();
        ASSERT_TRUE(controller().isConnected());
    }

    FtpTestServer& server() { return *server_; }
    app::PerchFilePaneController& localPane() { return *controller().localPane(); }
    app::PerchFilePaneController& remotePane() { return *controller().remotePane(); }

    // A path in the local folder of this test.
    std::string local(std::string const& relative) const { return (local_.path() / relative).string(); }
    QString localText(std::string const& relative) const { return QString::fromStdString(local(relative)); }
    // Files are made with the folders above them; a folder path ends in "/".
    void putLocal(std::string const& relative, std::string const& bytes = {}) { put(local(relative), bytes); }
    void putRemote(std::string const& remotePath, std::string const& bytes = {})
    {
        put(server_->local(remotePath), bytes);
    }
    bool remoteExists(std::string const& remotePath) const
    {
        std::error_code ignored;
        return std::filesystem::exists(std::filesystem::symlink_status(server_->local(remotePath), ignored));
    }
    std::string remoteContent(std::string const& remotePath) const { return readFile(server_->local(remotePath)); }

    // Lists the pane's folder again and selects the rows of these names only.
    void select(app::PerchFilePaneController& pane, QStringList const& names)
    {
        &pane == &localPane() ? pane.refresh() : controller().refreshRemoteDirectory();
        ASSERT_EQ(selectPaneRowsNamed(pane, names), names.size()) << "rows to select are missing";
    }
    std::vector<transfer::JobState> states()
    {
        std::vector<transfer::JobState> all;
        for (auto const& job : jobs()) {
            all.push_back(job.state);
        }
        return all;
    }

    // Fills the two hidden transfer fields, as the panes' selections do, and presses the hidden button.
    void transfer(transfer::JobType type, QString const& localPath, QString const& remotePath)
    {
        controller().localTransferField()->setText(localPath);
        controller().remoteTransferField()->setText(remotePath);
        type == transfer::JobType::Upload ? controller().enqueueUpload() : controller().enqueueDownload();
    }

    std::vector<transfer::TransferQueueItem> jobs() { return controller().transferQueue().queue().snapshot(); }

private:
    static void put(std::filesystem::path const& path, std::string const& bytes)
    {
        if (path.string().ends_with('/')) {
            std::filesystem::create_directories(path);
            return;
        }
        std::filesystem::create_directories(path.parent_path());
        writeFile(path, bytes);
    }

    TempDir local_;
    std::unique_ptr<FtpTestServer> server_;
};

} // namespace perchftp::test
