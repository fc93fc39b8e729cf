#include "connected_shell.hpp"

#include "app/queue/queue_table_model.hpp"
#include "app/support/ftp_connection_form.hpp"
#include "app/support/pane_rows.hpp"

#include <QLabel>
#include <QLineEdit>

#include <filesystem>

namespace perchftp::test {

namespace fs = std::filesystem;

namespace {

void put(fs::path const& path, std::string const& bytes)
{
    if (path.string().ends_with('/')) {
        fs::create_directories(path);
        return;
    }
    fs::create_directories(path.parent_path());
    writeFile(path, bytes);
}

} // namespace

void ConnectedShellTest::SetUp()
{
    startShell();
    server_ = std::make_unique<FtpTestServer>();
    localPane().loadLocalDirectory(QString::fromStdString(local_.path().string()));
    app::PerchFtpShellController& shell = controller();
    fillFtpConnectionForm(shell, *server_);
    shell.connectSession();
    remotePane().setPathValue(QStringLiteral("/"));
    shell.refreshRemoteDirectory();
    ASSERT_TRUE(shell.isConnected());
}

void ConnectedShellTest::putLocal(std::string const& relative, std::string const& bytes)
{
    put(local_.path() / relative, bytes);
}

void ConnectedShellTest::putRemote(std::string const& remotePath, std::string const& bytes)
{
    put(server_->local(remotePath), bytes);
}

bool ConnectedShellTest::remoteExists(std::string const& remotePath) const
{
    std::error_code ignored;
    return fs::exists(fs::symlink_status(server_->local(remotePath), ignored));
}

void ConnectedShellTest::selectLocal(QStringList const& names)
{
    localPane().refresh();
    ASSERT_EQ(selectPaneRowsNamed(localPane(), names), names.size()) << "rows to select are missing";
}

void ConnectedShellTest::selectRemote(QStringList const& names)
{
    controller().refreshRemoteDirectory();
    ASSERT_EQ(selectPaneRowsNamed(remotePane(), names), names.size()) << "rows to select are missing";
}

void ConnectedShellTest::transfer(transfer::JobType type, QString const& localPath, QString const& remotePath)
{
    controller().localTransferField()->setText(localPath);
    controller().remoteTransferField()->setText(remotePath);
    type == transfer::JobType::Upload ? controller().enqueueUpload() : controller().enqueueDownload();
}

QString ConnectedShellTest::banner()
{
    return controller().statusLabel()->text();
}

QString ConnectedShellTest::popupMessage()
{
    QLabel* message = controller().statusPopupMessage();
    return message ? message->text() : QStringLiteral("");
}

void ConnectedShellTest::recordQueueRowStates(int row)
{
    app::PerchQueueTableDataSource* table = controller().queueTableDataSource();
    auto const record = [this, table, row] {
        auto const& rows = table->items();
        if (row < int(rows.size()) && (recordedStates.isEmpty() || recordedStates.back() != rows[std::size_t(row)].status)) {
            recordedStates.append(rows[std::size_t(row)].status);
        }
    };
    recordedStates.clear();
    QObject::disconnect(recordingReset_);
    QObject::disconnect(recordingChange_);
    recordingReset_ = QObject::connect(table, &QAbstractItemModel::modelReset, table, record);
    recordingChange_ = QObject::connect(table, &QAbstractItemModel::dataChanged, table, record);
}

} // namespace perchftp::test
