// Connecting, browsing and disconnecting over FTP against a real loopback server, and saving,
// opening, editing and deleting saved connections in a real site database of the test's own, all
// through the real controller. The other protocols' sessions are walked by the protocol tests.
#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_table_model.hpp"
#include "app/saved_connection_items.hpp"
#include "app/shell_controller.hpp"
#include "app/status/connect_button.hpp"
#include "support/ftp_connection_form.hpp"
#include "support/qt_printers.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/started_shell.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <filesystem>
#include <fstream>
#include <memory>

namespace perchftp::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using testing::UnorderedElementsAre;

// Records what the user is shown while the controller works: each message the popup's label is
// painted with, in order, and the banner's text at those moments and when a listing reaches the
// remote pane. A session call blocks the main thread, so a message that is not painted before its
// call begins is never painted at all: it is missing from the record.
class WhatTheUserSees : public QObject {
public:
    explicit WhatTheUserSees(app::PerchFtpShellController& controller)
        : controller_(controller)
    {
        qApp->installEventFilter(this);
        connect(controller.remotePane()->model(), &QAbstractItemModel::modelAboutToBeReset, this, [this] { noteBanner(); });
    }

    void forget()
    {
        popupMessages.clear();
        bannerTexts.clear();
    }

    QStringList popupMessages;
    QStringList bannerTexts;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        QLabel* message = controller_.statusPopupMessage();
        if (event->type() == QEvent::Paint && message && watched == message) {
            append(popupMessages, message->text());
            noteBanner();
        }
        return false;
    }

private:
    void noteBanner() { append(bannerTexts, controller_.statusLabel()->text()); }
    static void append(QStringList& texts, QString const& text)
    {
        if (!text.isEmpty() && (texts.isEmpty() || text != texts.back())) {
            texts.push_back(text);
        }
    }

    app::PerchFtpShellController& controller_;
};

// The shown shell, watched for what the user is shown.
class SessionShellTest : public StartedShellTest {
protected:
    void TearDown() override
    {
        seen_.reset();
        StartedShellTest::TearDown();
    }
    void startWatchedShell()
    {
        startShownShell();
        seen_ = std::make_unique<WhatTheUserSees>(controller());
    }
    // Ends the shell as the program's end would and starts it again on the same folders.
    void restartShell()
    {
        seen_.reset();
        stopShell();
        startWatchedShell();
    }

    QStringList remoteNames()
    {
        QStringList names;
        for (app::PaneEntry const& entry : controller().remotePane()->entries()) {
            names.push_back(entry.placeholder ? "(" + entry.name + ")" : entry.name);
        }
        return names;
    }
    WhatTheUserSees& seen() { return *seen_; }

private:
    std::unique_ptr<WhatTheUserSees> seen_;
};

class FtpSessionWorkflow : public SessionShellTest {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(server_.local("/docs/archive"));
        std::filesystem::create_directories(server_.local("/empty"));
        std::ofstream(server_.local("/readme.txt")) << "hello";
        std::ofstream(server_.local("/docs/notes.txt")) << "twelve bytes";
        std::ofstream(server_.local("/docs/archive/old.zip")) << "z";
        startWatchedShell();
    }

    QString port() const { return QString::number(server_.port()); }
    // The popup's messages, in order, of a connect to this server up to the step that failed, or
    // to the end when `failure` is empty.
    QStringList connectingSteps(QString const& failure = {}) const
    {
        QStringList steps{QStringLiteral("Resolving 127.0.0.1:%1 via ftp...").arg(port()),
            QStringLiteral("Preparing protocol adapter..."), QStringLiteral("Opening session for 127.0.0.1...")};
        return steps << (failure.isEmpty() ? QStringList{QStringLiteral("Session opened. Loading remote directory..."),
                                                 QStringLiteral("Connected to 127.0.0.1.")}
                                           : QStringList{failure});
    }
    std::size_t listings() const { return server_.receivedCommands({"LIST"}).size(); }

    FtpTestServer server_;
};

TEST_F(FtpSessionWorkflow, ConnectingBrowsingRefreshingReconnectingAndDisconnecting)
{
    fillFtpConnectionForm(controller(), server_);
    controller().secretField()->setText(QStringLiteral("not-the-password"));
    controller().connectButton()->click();
    QString const denied = QStringLiteral("Connect failed: ftp connect: Login denied");
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ " + denied);
    EXPECT_EQ(seen().popupMessages, connectingSteps(denied));

    seen().forget();
    fillFtpConnectionForm(controller(), server_);
    controller().connectButton()->click();
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages, connectingSteps());
    EXPECT_TRUE(seen().bannerTexts.contains("✅ Connected (ftp)")) << "shown before the listing came";
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Connecting");
    EXPECT_THAT(remoteNames(), UnorderedElementsAre("docs", "empty", "readme.txt"));
    EXPECT_EQ(listings(), 1u) << "a listing that works needs no ladder";

    controller().remotePane()->tableViewDoubleClicked(static_cast<int>(remoteNames().indexOf("docs")));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/docs");
    EXPECT_THAT(remoteNames(), UnorderedElementsAre("archive", "notes.txt"));

    controller().didRequestOpenPath(controller().remotePane(), QStringLiteral("/empty"), true);
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.");
    ASSERT_EQ(remoteNames().size(), 1);
    EXPECT_THAT(remoteNames().front().toStdString(), StartsWith("(")) << "an empty folder says so";

    std::ofstream(server_.local("/empty/new.txt")) << "new";
    seen().forget();
    controller().refreshButton()->click();
    EXPECT_THAT(remoteNames(), ElementsAre("new.txt"));
    EXPECT_THAT(seen().popupMessages, ElementsAre("Refreshing local and remote panes...", "Refresh complete."));

    // Opening a saved connection changes the form and lists its path through the open session.
    storage::SiteProfile saved = siteProfile("Elsewhere", "sftp", "elsewhere.example.org", 22);
    saved.remoteRoot = "/docs/archive";
    ASSERT_NE(controller().siteManager().addSite(saved), 0);
    dialogs().expectSavedConnection({app::kFirstAlertButton, 0});
    controller().openSavedConnectionButton()->click();
    EXPECT_EQ(controller().hostField()->text(), "elsewhere.example.org");
    EXPECT_THAT(remoteNames(), ElementsAre("old.zip")) << "the session stays what it was";
    EXPECT_EQ(banner(), "✅ Loaded saved connection \"Elsewhere\".");

    // Connecting again replaces the session without asking.
    fillFtpConnectionForm(controller(), server_);
    seen().forget();
    controller().connectSession();
    EXPECT_TRUE(controller().isConnected());
    QStringList replacing = connectingSteps();
    replacing.insert(1, QStringLiteral("Closing previous session..."));
    EXPECT_EQ(seen().popupMessages, replacing);

    server_.clearReceivedCommands();
    seen().forget();
    controller().hostField()->setText(QStringLiteral("typed.later.example"));
    controller().connectButton()->click();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_THAT(seen().popupMessages, ElementsAre("Disconnecting from typed.later.example...", "Disconnected successfully."))
        << "the host is the field's at the time of the click";
    EXPECT_EQ(controller().statusPopupTitle()->text(), "Disconnecting");
    EXPECT_EQ(banner(), "✅ Disconnected.");
    EXPECT_EQ(remoteNames(), QStringList{"(Not connected.)"});
    EXPECT_TRUE(server_.receivedCommands().empty()) << "a disconnect does not talk to the server";

    seen().forget();
    controller().disconnectSession();
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
    EXPECT_THAT(seen().popupMessages, ElementsAre("Session already disconnected."));
}

TEST_F(FtpSessionWorkflow, ProtocolNamesFailedListingsAndFailedConnectsLeaveTheirOwnWords)
{
    // A protocol name is trimmed and lowered. A failed first listing keeps the session, and the
    // empty path climbs the ladder: "", then "/", then "" again.
    QComboBox* protocol = controller().protocolField();
    protocol->addItems({QStringLiteral("  FTP "), QStringLiteral("gopher")});
    fillFtpConnectionForm(controller(), server_);
    protocol->setCurrentText(QStringLiteral("  FTP "));
    server_.setReply("LIST", "550 Listing refused.");
    seen().forget();
    controller().connectSession();
    ASSERT_TRUE(controller().isConnected()) << banner().toStdString();
    EXPECT_EQ(seen().popupMessages.value(0), "Resolving 127.0.0.1:" + port() + " via ftp...");
    EXPECT_EQ(seen().popupMessages.value(seen().popupMessages.size() - 1), "Connected to 127.0.0.1.");
    EXPECT_THAT(banner().toStdString(), StartsWith("⚠️ Remote list failed: ftp list: "));
    EXPECT_THAT(remoteNames().value(0).toStdString(), StartsWith("(List failed: ftp list: "));
    EXPECT_TRUE(controller().queueLog()->toPlainText().contains("Remote list failed: ftp list: "));
    EXPECT_EQ(listings(), 3u);

    // "." climbs it as well and shows as the root once a retry works; another path is not retried.
    server_.clearReplies();
    server_.clearReceivedCommands();
    server_.setReply("LIST", "550 Not now.", 2);
    controller().remotePane()->setPathValue(QStringLiteral("."));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(listings(), 3u);
    EXPECT_EQ(controller().remotePane()->pathValue(), "/");
    EXPECT_THAT(remoteNames(), UnorderedElementsAre("docs", "empty", "readme.txt"));
    server_.clearReceivedCommands();
    server_.setReply("LIST", "550 No.");
    controller().remotePane()->setPathValue(QStringLiteral("/docs"));
    controller().refreshRemoteDirectory();
    EXPECT_EQ(listings(), 1u);
    server_.clearReplies();

    // An unknown protocol: the previous session is gone before the adapter is asked for, and the
    // controls are not refreshed on this path.
    seen().forget();
    protocol->setCurrentText(QStringLiteral("gopher"));
    controller().connectSession();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(banner(), "⚠️ Protocol adapter not available in this build.");
    EXPECT_THAT(seen().popupMessages,
        ElementsAre("Resolving 127.0.0.1:" + port() + " via gopher...", "Closing previous session...",
            "Preparing protocol adapter...", "Protocol adapter not available in this build."));
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");

    protocol->setCurrentIndex(-1);
    controller().connectSession();
    EXPECT_EQ(banner(), "✅ Remote listing refreshed.") << "with nothing selected the protocol is ftp";

    // Over an open session a failure takes the session, but the controls are not refreshed.
    controller().secretField()->setText(QStringLiteral("wrong"));
    controller().connectSession();
    EXPECT_EQ(controller().session(), nullptr);
    EXPECT_EQ(controller().connectButton()->text(), "Disconnect");
    controller().connectButton()->click();
    EXPECT_EQ(banner(), "✅ Session already disconnected.");
}

using Names = std::vector<std::string>;

constexpr int kOpen = app::kFirstAlertButton;
constexpr int kEdit = app::kFirstAlertButton + 1;
constexpr int kDelete = app::kFirstAlertButton + 2;
constexpr int kCancel = app::kFirstAlertButton + 3;

// How a picker row reads is pinned with the saved connections below; here, what the store could
// hand over that is not text.
TEST(SavedConnectionRows, NamesAndFieldsThatAreNotUtf8AreReplaced)
{
    storage::SiteProfile broken = siteProfile(std::string("bad\xff", 4), std::string("\xc3", 1), "h", 21);
    broken.user = std::string("\xfe", 1);
    auto const items = app::savedConnectionItems({broken});
    EXPECT_EQ(app::savedConnectionRowTexts(items), QStringList{"Saved Connection    h"});
    EXPECT_EQ(items[0].protocol, "ftp");
}

class SavedConnections : public SessionShellTest {
protected:
    // Starts the shell on a database that already holds these connections.
    void startWith(std::vector<storage::SiteProfile> const& profiles)
    {
        writeSites(baseDatabase(), profiles);
        startWatchedShell();
    }
    std::vector<storage::SiteProfile> stored() { return readSites(baseDatabase()); }
    // The connections' names in order, the one used last marked with a "*".
    static Names names(std::vector<storage::SiteProfile> const& profiles)
    {
        Names names;
        for (auto const& profile : profiles) {
            names.push_back(profile.name + (profile.quickConnect ? "*" : ""));
        }
        return names;
    }
    QStringList form()
    {
        return {controller().hostField()->text(), controller().userField()->text(), controller().secretField()->text()};
    }
    void fillWorkForm()
    {
        fillForm(QStringLiteral("sftp"), QStringLiteral("files.example.org"), QStringLiteral("2222"), "ana", "s3cret pass");
    }
    static storage::SiteProfile profile(std::string name, std::string host, std::string user = "ana")
    {
        storage::SiteProfile result = siteProfile(std::move(name), "ftp", std::move(host), 21);
        result.user = std::move(user);
        return result;
    }
};

TEST_F(SavedConnections, TheFormIsCheckedThenSavedAndUpdatedByNameAndKeptInMemoryWhenTheDiskFails)
{
    startWith({profile("Home", "home.example.org")});
    fillForm(QStringLiteral("ftp"), QString(), QStringLiteral("21"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "⚠️ Host is required before saving a connection.");
    fillForm(QStringLiteral("ftp"), QStringLiteral("files.example.org"), QStringLiteral("65536"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "⚠️ Port must be between 1 and 65535 before saving.");
    EXPECT_TRUE(dialogs().questions().empty()) << "no name is asked for before the form passes";

    // A host of blanks passes the form's check and is refused by the site manager.
    fillForm(QStringLiteral("ftp"), QStringLiteral("   "), QStringLiteral("65535"));
    dialogs().expectText(QStringLiteral("Blank"));
    controller().saveConnection();
    EXPECT_EQ(dialogs().questions().back().options.front(), "   ") << "the host is the name offered";
    EXPECT_EQ(banner(), "⚠️ Connection details are invalid and could not be saved.");

    // A name of blanks counts as a cancel.
    fillForm(QStringLiteral("ftp"), QStringLiteral("files.example.org"), QStringLiteral("21"));
    dialogs().expectText(QStringLiteral(" \t\n "));
    controller().saveConnection();
    EXPECT_EQ(banner(), "✅ Save connection canceled.");
    EXPECT_EQ(names(stored()), Names{"Home"});

    fillWorkForm();
    controller().remotePane()->setPathValue(QStringLiteral("/srv/www"));
    dialogs().expectText(QStringLiteral("  Work\n"));
    controller().saveConnectionButton()->click();
    auto const& question = dialogs().questions().back();
    EXPECT_EQ(question.title, "Save Connection");
    EXPECT_EQ(question.text, "Enter a saved connection name.");
    EXPECT_EQ(question.options, (QStringList{"files.example.org", "My Server"}));
    EXPECT_EQ(banner(), "✅ Saved connection \"Work\".");
    std::vector<storage::SiteProfile> sites = stored();
    ASSERT_EQ(names(sites), (Names{"Home", "Work*"})) << "the answer is trimmed; the new one is the one used last";
    storage::SiteProfile expected = profile("Work", "files.example.org");
    expected.id = sites[1].id;
    expected.protocol = "sftp";
    expected.port = 2222;
    expected.secretRef = "s3cret pass"; // kept in clear
    expected.localRoot = controller().localPane()->pathValue().toStdString();
    expected.remoteRoot = "/srv/www";
    expected.group = "General";
    expected.quickConnect = true;
    EXPECT_EQ(sites[1], expected);

    controller().hostField()->setText(QStringLiteral("new.example.org"));
    controller().portField()->setText(QStringLiteral("22"));
    dialogs().expectText(QStringLiteral("Work"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "✅ Updated saved connection \"Work\".");
    expected.host = "new.example.org";
    expected.port = 22;
    EXPECT_EQ(stored(), (std::vector{sites[0], expected})) << "the same id, updated";

    // A folder stands where the database was, so every write fails.
    for (char const* suffix : {"", "-wal", "-shm"}) {
        QFile::remove(baseDatabase() + QString::fromLatin1(suffix));
    }
    ASSERT_TRUE(QDir().mkpath(baseDatabase() + QStringLiteral("/in-the-way")));
    fillWorkForm();
    dialogs().expectText(QStringLiteral("Other"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "⚠️ Connection updated in memory, but saving to disk failed.");
    EXPECT_EQ(names(controller().siteManager().listSites()), (Names{"Home", "Work*", "Other"}))
        << "no mark moves after a failed save";
    dialogs().expectSavedConnection({kDelete, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "⚠️ Saved connection deleted in memory, but saving to disk failed.");
    EXPECT_EQ(names(controller().siteManager().listSites()), (Names{"Work*", "Other"}));
    EXPECT_EQ(controller().hostField()->text(), "files.example.org") << "the form stays as it is";
}

TEST_F(SavedConnections, OpenEditCancelAndDeleteWithTheMarkKeptAcrossARestart)
{
    storage::SiteProfile work = profile("Work", "files.example.org");
    work.protocol = "sftp";
    work.port = 2222;
    work.secretRef = "s3cret";
    work.localRoot = folders().home().toStdString();
    work.remoteRoot = "/srv/www";
    storage::SiteProfile home = profile("Home", "home.example.org", "");
    home.quickConnect = true;
    startWith({work, home, profile("Third", "three.example.org")});
    ASSERT_EQ(controller().hostField()->text(), "home.example.org") << "the marked connection is loaded at start";

    dialogs().expectSavedConnection({kOpen, 0});
    controller().openSavedConnectionButton()->click();
    QStringList const rows{
        "Work    ana    files.example.org", "Home    home.example.org", "Third    ana    three.example.org"};
    EXPECT_EQ(dialogs().questions().back().options, rows) << "name, user and host, four blanks apart";
    EXPECT_EQ(banner(), "✅ Loaded saved connection \"Work\".");
    EXPECT_EQ(controller().portField()->text(), "2222");
    EXPECT_EQ(form(), (QStringList{"files.example.org", "ana", "s3cret"}));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/srv/www");
    EXPECT_EQ(remoteNames(), QStringList{"(Saved remote path loaded. Connect to browse.)"}) << "opening never connects";
    EXPECT_EQ(names(stored()), (Names{"Work*", "Home", "Third"})) << "written at once";

    restartShell();
    EXPECT_EQ(form(), (QStringList{"files.example.org", "ana", "s3cret"}));
    EXPECT_EQ(controller().protocolField()->currentText(), "sftp");
    EXPECT_EQ(controller().portField()->text(), "22") << "start-up then sets the protocol's default port";
    EXPECT_EQ(banner(), "✅ Protocol set to sftp, default port 22.");
    EXPECT_EQ(controller().remotePane()->pathValue(), "/srv/www");
    EXPECT_EQ(names(stored()), (Names{"Work*", "Home", "Third"})) << "a start marks nothing";

    dialogs().expectSavedConnection({kEdit, 1});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Editing saved connection \"Home\". Update the form and save it.");
    EXPECT_EQ(controller().hostField()->text(), "home.example.org");
    EXPECT_EQ(names(stored()), (Names{"Work", "Home*", "Third"}));

    controller().hostField()->setText(QStringLiteral("typed.example.org"));
    dialogs().expectSavedConnection({kCancel, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Open saved connection canceled.");
    dialogs().expectSavedConnection({kOpen, 3});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "⚠️ Saved connection selection is invalid.");
    EXPECT_EQ(controller().hostField()->text(), "typed.example.org");

    // A delete asks nothing more, empties the form and moves the mark to the last connection.
    std::size_t asked = dialogs().questions().size();
    dialogs().expectSavedConnection({kDelete, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Deleted saved connection \"Work\".");
    EXPECT_EQ(dialogs().questions().size(), asked + 1);
    EXPECT_EQ(names(stored()), (Names{"Home", "Third*"})) << "even away from the marked one";
    EXPECT_EQ(form(), (QStringList{"", "", ""}));
    for (int left = 0; left < 2; ++left) {
        dialogs().expectSavedConnection({kDelete, 0});
        controller().openSavedConnection();
    }
    EXPECT_TRUE(stored().empty());

    // With none left, opening clears the form but for its port and protocol, and asks nothing.
    fillWorkForm();
    asked = dialogs().questions().size();
    controller().openSavedConnectionButton()->click();
    EXPECT_EQ(banner(), "✅ No saved connections are available yet.");
    EXPECT_EQ(form(), (QStringList{"", "", ""}));
    EXPECT_EQ(controller().portField()->text(), "2222");
    EXPECT_EQ(dialogs().questions().size(), asked);
}

} // namespace
} // namespace perchftp::test
