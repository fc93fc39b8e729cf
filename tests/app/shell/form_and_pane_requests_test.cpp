#include "app/pane/perch_file_pane_controller.hpp"
#include "support/scripted_session.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QSettings>

namespace perchftp::test {
namespace {

class FormAndPaneRequests : public StartedShellTest {
protected:
    void SetUp() override { startShell(); }

    QString storedLocalPath() const
    {
        return QSettings(QStringLiteral("PerchFtp"), QStringLiteral("PerchFtp"))
            .value(QStringLiteral("PerchFtpLastLocalPanePath"))
            .toString();
    }
};

TEST_F(FormAndPaneRequests, ChoosingAProtocolWritesItsDefaultPortOverATypedOne)
{
    QComboBox* protocol = controller().protocolField();
    for (auto const& [name, port] : {std::pair{"sftp", "22"}, std::pair{"ftps", "21"}, std::pair{"ftp", "21"}}) {
        controller().portField()->setText(QStringLiteral("2222"));
        protocol->setCurrentText(QString::fromLatin1(name));
        emit protocol->activated(protocol->currentIndex());
        EXPECT_EQ(controller().portField()->text(), QString::fromLatin1(port)) << name;
        EXPECT_EQ(controller().statusLabel()->text(),
            QStringLiteral("✅ Protocol set to %1, default port %2.").arg(QString::fromLatin1(name), QString::fromLatin1(port)));
    }
}

TEST_F(FormAndPaneRequests, ALocalOpenRequestListsTheFolderAndRemembersWhereThePaneStands)
{
    QString const folder = folders().home() + QStringLiteral("/projects");
    QDir().mkpath(folder);
    controller().didRequestOpenPath(controller().localPane(), folder, false);
    EXPECT_EQ(controller().localPane()->pathValue(), folder);
    EXPECT_EQ(storedLocalPath(), folder);

    controller().didRequestOpenPath(controller().localPane(), folder + QStringLiteral("/missing"), false);
    EXPECT_EQ(controller().localPane()->pathValue(), folders().home()) << "a missing folder falls back to home";
    EXPECT_EQ(storedLocalPath(), folders().home()) << "what is remembered is where the pane stands";
}

TEST_F(FormAndPaneRequests, ARemoteOpenRequestListsThePathThroughTheSession)
{
    auto* session = new ScriptedSession;
    session->listings["/srv/www"] = {{"index.html", false, 12, "", ""}};
    controller().setSession(session);
    controller().didRequestOpenPath(controller().remotePane(), QStringLiteral("/srv/www"), true);
    EXPECT_EQ(session->listedPaths, (std::vector<std::string>{"/srv/www"}));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/srv/www");
    ASSERT_EQ(controller().remotePane()->entries().size(), 1);
    EXPECT_EQ(controller().remotePane()->entries().front().path, "/srv/www/index.html");
}

TEST_F(FormAndPaneRequests, SelectionsAreKeptInTheHiddenTransferFields)
{
    controller().didChangeSelectionPath(controller().localPane(), QStringLiteral("/home/a/file.txt"), false);
    controller().didChangeSelectionPath(controller().remotePane(), QStringLiteral("/srv/file.txt"), true);
    EXPECT_EQ(controller().localTransferField()->text(), "/home/a/file.txt");
    EXPECT_EQ(controller().remoteTransferField()->text(), "/srv/file.txt");
    controller().didChangeSelectionPath(controller().remotePane(), QString(), true);
    EXPECT_EQ(controller().remoteTransferField()->text(), "");
}

TEST_F(FormAndPaneRequests, TheControllerTearsDownAnOpenSessionWithADisconnect)
{
    int disconnects = 0;
    auto* session = new ScriptedSession;
    session->disconnectCount = &disconnects;
    controller().setSession(session);
    stopShell();
    EXPECT_EQ(disconnects, 1);
}

} // namespace
} // namespace perchftp::test
