#pragma once

#include "app/shell_controller.hpp"
#include "support/servers/ftp_test_server.hpp"

#include <QComboBox>
#include <QLineEdit>

namespace perchftp::test {

// Fills the connection form with the address and account of a loopback FTP server, as a user types
// them. Header-only, so that the benchmarks and the screenshot renderer share it with the tests.
inline void fillFtpConnectionForm(app::PerchFtpShellController& shell, FtpTestServer const& server)
{
    shell.protocolField()->setCurrentText(QStringLiteral("ftp"));
    shell.hostField()->setText(QStringLiteral("127.0.0.1"));
    shell.portField()->setText(QString::number(server.port()));
    shell.userField()->setText(QString::fromStdString(server.user()));
    shell.secretField()->setText(QString::fromStdString(server.password()));
}

} // namespace perchftp::test
