#include "connected_shell.hpp"

#include "app/pane/perch_pane_table_model.hpp"
#include "app/pane/perch_pane_table_view.hpp"
#include "app/queue/queue_table_model.hpp"

#include <QComboBox>
#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>

namespace perchftp::test {

namespace fs = std::filesystem;

void ConnectedShellTest::SetUp()
{
    startShell();
    server_ = std::make_unique<FtpTestServer>();
    localPane().loadLocalDirectory(QString::fromStdString(localFolder().string()));
    connectToServer();
}

void ConnectedShellTest::connectToServer()
{
    app::PerchFtpShellController& shell = controller();
    shell.protocolField()->setCurrentText(QStringLiteral("ftp"));
    shell.hostField()->setText(QStringLiteral("127.0.0.1"));
    shell.portField()->setText(QString::number(server_->port()));
    shell.userField()->setText(QString::fromStdString(server_->user()));
    shell.secretField()->setText(QString::fromStdString(server_->password()));
    shell.connectSession();
    remotePane().setPathValue(QStringLiteral("/"));
    shell.refreshRemoteDirectory();
    ASSERT_TRUE(shell.isConnected());
}

void ConnectedShellTest::putLocalFile(std::string const& relative, std::string const& bytes)
{
    fs::create_directories((local_.path() / relative).parent_path());
    writeFile(local_.path() / relative, bytes);
}

void ConnectedShellTest::putRemoteFile(std::string const& remotePath, std::string const& bytes)
{
    fs::create_directories(server_->local(remotePath).parent_path());
    writeFile(server_->local(remotePath), bytes);
}

void ConnectedShellTest::putRemoteFolder(std::string const& remotePath)
{
    fs::create_directories(server_->local(remotePath));
}

bool ConnectedShellTest::remoteExists(std::string const& remotePath) const
{
    std::error_code ignored;
    return fs::exists(fs::symlink_status(server_->local(remotePath), ignored));
}

std::string ConnectedShellTest::remoteContent(std::string const& remotePath) const
{
    return readFile(server_->local(remotePath));
}

void ConnectedShellTest::selectLocal(QStringList const& names)
{
    localPane().refresh();
    selectRows(localPane(), names);
}

void ConnectedShellTest::selectRemote(QStringList const& names)
{
    controller().refreshRemoteDirectory();
    selectRows(remotePane(), names);
}

void ConnectedShellTest::selectRows(app::PerchFilePaneController& pane, QStringList const& names)
{
    QItemSelectionModel* selection = pane.tableView()->selectionModel();
    selection->clearSelection();
    int found = 0;
    app::PaneEntries const& rows = pane.model()->entries();
    for (int row = 0; row < int(rows.size()); ++row) {
        if (names.contains(rows[row].name)) {
            selection->select(pane.model()->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
            ++found;
        }
    }
    ASSERT_EQ(found, names.size()) << "rows to select are missing";
}

QString ConnectedShellTest::banner()
{
    QString text = controller().statusLabel()->text();
    for (QString const& marker : {QStringLiteral("⚠️ "), QStringLiteral("✅ ")}) {
        if (text.startsWith(marker)) {
            return text.mid(marker.size());
        }
    }
    return text;
}

bool ConnectedShellTest::bannerIsError()
{
    return controller().statusLabel()->text().startsWith(QStringLiteral("⚠️ "));
}

QString ConnectedShellTest::popupMessage()
{
    QLabel* message = controller().statusPopupMessage();
    return message ? message->text() : QStringLiteral("");
}

void ConnectedShellTest::deliverPostedEvents()
{
    QCoreApplication::sendPostedEvents();
}

void ConnectedShellTest::recordQueueRowStates(int row)
{
    app::PerchQueueTableDataSource* table = controller().queueTableDataSource();
    auto const record = [this, table, row] {
        auto const& rows = table->items();
        if (row < int(rows.size()) && (states_.isEmpty() || states_.back() != rows[std::size_t(row)].status)) {
            states_.append(rows[std::size_t(row)].status);
        }
    };
    QObject::connect(table, &QAbstractItemModel::modelReset, table, record);
    QObject::connect(table, &QAbstractItemModel::dataChanged, table, record);
}

} // namespace perchftp::test
