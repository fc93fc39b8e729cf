#pragma once

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/shell_controller.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/started_shell.hpp"
#include "support/temp_dir.hpp"
#include "transfer/transfer_queue.hpp"

#include <QString>
#include <QStringList>

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

// Readable QString values in assertion messages.
inline void PrintTo(QString const& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace perchftp::test {

// The buttons of the conflict alert.
inline constexpr int kReplace = app::kFirstAlertButton;
inline constexpr int kSkip = app::kFirstAlertButton + 1;
inline constexpr int kCancel = app::kFirstAlertButton + 2;

// The real shell connected over FTP to a real loopback server, with a local folder of its own
// shown in the local pane and the server's root in the remote pane.
class ConnectedShellTest : public StartedShellTest {
protected:
    void SetUp() override;

    // Connects with the form, as a user does, and lists the remote folder.
    void connectToServer();
    FtpTestServer& server() { return *server_; }
    app::PerchFilePaneController& localPane() { return *controller().localPane(); }
    app::PerchFilePaneController& remotePane() { return *controller().remotePane(); }

    // The local folder of this test, and a path in it.
    std::filesystem::path const& localFolder() const { return local_.path(); }
    std::string local(std::string const& relative) const { return (local_.path() / relative).string(); }
    QString localText(std::string const& relative) const { return QString::fromStdString(local(relative)); }
    void putLocalFile(std::string const& relative, std::string const& bytes);
    void putRemoteFile(std::string const& remotePath, std::string const& bytes);
    void putRemoteFolder(std::string const& remotePath);
    bool remoteExists(std::string const& remotePath) const;
    std::string remoteContent(std::string const& remotePath) const;

    // Lists the folder in the pane again and selects the rows of these names only.
    void selectLocal(QStringList const& names);
    void selectRemote(QStringList const& names);

    // The banner without its marker, and whether the marker says error.
    QString banner();
    bool bannerIsError();
    // The open popup's message; "" without a popup.
    QString popupMessage();
    // Delivers what the transfer posted to the event loop.
    void deliverPostedEvents();

    std::vector<transfer::TransferQueueItem> jobs() { return controller().transferQueue().queue().snapshot(); }
    // The states that the queue table showed for one row, each change once, from now on.
    void recordQueueRowStates(int row);
    QStringList const& recordedStates() const { return states_; }

private:
    void selectRows(app::PerchFilePaneController& pane, QStringList const& names);

    TempDir local_;
    std::unique_ptr<FtpTestServer> server_;
    QStringList states_;
};

} // namespace perchftp::test
