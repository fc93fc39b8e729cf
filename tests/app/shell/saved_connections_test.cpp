// Saving the form, and opening, editing and deleting saved connections, through the real
// controller and a real site database in the test's own data folder.
#include "app/saved_connection_items.hpp"
#include "session_shell_test.hpp"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace perchftp::test {
namespace {

using Names = std::vector<std::string>;

constexpr int kOpen = app::kFirstAlertButton;
constexpr int kEdit = app::kFirstAlertButton + 1;
constexpr int kDelete = app::kFirstAlertButton + 2;
constexpr int kCancel = app::kFirstAlertButton + 3;

TEST(SavedConnectionRows, ShowNameUserAndHostFourBlanksApartAndReplaceTextThatIsNotUtf8)
{
    storage::SiteProfile withUser = siteProfile("Work", "sftp", "files.example.org", 2222);
    withUser.user = "ana";
    storage::SiteProfile broken = siteProfile(std::string("bad\xff", 4), std::string("\xc3", 1), "h", 21);
    broken.id = 7;
    broken.user = std::string("\xfe", 1);
    auto const items = app::savedConnectionItems({withUser, siteProfile("Mirror", "ftp", "mirror.example.org", 21), broken});
    EXPECT_EQ(app::savedConnectionRowTexts(items),
        (QStringList{"Work    ana    files.example.org", "Mirror    mirror.example.org", "Saved Connection    h"}));
    EXPECT_EQ(items[2].id, 7);
    EXPECT_EQ(items[2].protocol, "ftp");
    EXPECT_EQ(items[2].user, "");
}

class SavedConnections : public SessionShellTest {
protected:
    void SetUp() override {}

    // Starts the shell on a database that already holds these connections.
    void startWith(std::vector<storage::SiteProfile> const& profiles)
    {
        if (!profiles.empty()) {
            writeSites(baseDatabase(), profiles);
        }
        startWatchedShell();
    }
    std::vector<storage::SiteProfile> stored() { return readSites(baseDatabase()).value_or(std::vector<storage::SiteProfile>{}); }
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

TEST_F(SavedConnections, SavingStoresTheFormUpdatesByNameAndRefusesTheSameLoginUnderANewName)
{
    startWith({profile("Home", "home.example.org")});
    fillWorkForm();
    controller().remotePane()->setPathValue(QStringLiteral("/srv/www"));
    dialogs().expectText(QStringLiteral("  Work\n"));
    controller().saveConnectionButton()->click();

    ASSERT_EQ(dialogs().questions().size(), 1u);
    auto const& question = dialogs().questions().front();
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

    controller().portField()->setText(QStringLiteral("22"));
    dialogs().expectText(QStringLiteral("Work copy"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "⚠️ Connection details are invalid and could not be saved.") << "even on another port";
    EXPECT_EQ(names(stored()), (Names{"Home", "Work*"}));

    controller().hostField()->setText(QStringLiteral("new.example.org"));
    dialogs().expectText(QStringLiteral("Work"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "✅ Updated saved connection \"Work\".");
    expected.host = "new.example.org";
    expected.port = 22;
    EXPECT_EQ(stored(), (std::vector{stored().front(), expected})) << "the same id, updated";
}

TEST_F(SavedConnections, BadFormValuesAreRefusedWithTheirOwnWordsAndNothingIsSavedOrOpened)
{
    startWith({});
    fillForm(QStringLiteral("ftp"), QString(), QStringLiteral("21"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "⚠️ Host is required before saving a connection.");

    for (QString const port : {"", "abc", "0", "65536"}) {
        fillForm(QStringLiteral("ftp"), QStringLiteral("files.example.org"), port);
        controller().saveConnection();
        EXPECT_EQ(banner(), "⚠️ Port must be between 1 and 65535 before saving.") << port.toStdString();
    }
    EXPECT_TRUE(dialogs().questions().empty()) << "no name is asked for before the form passes";

    // A host of blanks passes the form's check and is refused by the site manager.
    fillForm(QStringLiteral("ftp"), QStringLiteral("   "), QStringLiteral("65535"));
    dialogs().expectText(QStringLiteral("Blank"));
    controller().saveConnection();
    EXPECT_EQ(dialogs().questions().back().options.front(), "   ") << "the host is the name offered";
    EXPECT_EQ(banner(), "⚠️ Connection details are invalid and could not be saved.");

    // A name of blanks counts as a cancel.
    fillForm(QStringLiteral("ftp"), QStringLiteral("files.example.org"), QStringLiteral("21abc"));
    for (auto const& answer : {std::optional<QString>(" \t\n "), std::optional<QString>()}) {
        dialogs().expectText(answer);
        controller().saveConnection();
        EXPECT_EQ(banner(), "✅ Save connection canceled.");
    }
    EXPECT_TRUE(controller().siteManager().listSites().empty());
    EXPECT_FALSE(QFile::exists(baseDatabase()));

    // With none saved, opening clears the form but for its port and protocol, and asks nothing.
    fillWorkForm();
    std::size_t const asked = dialogs().questions().size();
    controller().openSavedConnectionButton()->click();
    EXPECT_EQ(banner(), "✅ No saved connections are available yet.");
    EXPECT_EQ(form(), (QStringList{"", "", ""}));
    EXPECT_EQ(controller().portField()->text(), "2222");
    EXPECT_EQ(dialogs().questions().size(), asked);
}

TEST_F(SavedConnections, ASaveOrDeleteThatCannotReachTheDiskKeepsTheChangeInMemory)
{
    startWith({profile("Home", "home.example.org")});
    // A folder stands where the database was, so every write fails.
    for (char const* suffix : {"", "-wal", "-shm"}) {
        QFile::remove(baseDatabase() + QString::fromLatin1(suffix));
    }
    ASSERT_TRUE(QDir().mkpath(baseDatabase() + QStringLiteral("/in-the-way")));
    fillWorkForm();
    dialogs().expectText(QStringLiteral("Work"));
    controller().saveConnection();

    EXPECT_EQ(banner(), "⚠️ Connection updated in memory, but saving to disk failed.");
    EXPECT_EQ(names(controller().siteManager().listSites()), (Names{"Home", "Work"})) << "no mark after a failed save";

    dialogs().expectSavedConnection({kDelete, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "⚠️ Saved connection deleted in memory, but saving to disk failed.");
    EXPECT_EQ(names(controller().siteManager().listSites()), (Names{"Work"}));
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
    EXPECT_EQ(banner(), "✅ Loaded saved connection \"Work\".");
    EXPECT_EQ(controller().portField()->text(), "2222");
    EXPECT_EQ(form(), (QStringList{"files.example.org", "ana", "s3cret"}));
    EXPECT_EQ(controller().remotePane()->pathValue(), "/srv/www");
    EXPECT_EQ(remoteNames(), QStringList{"(Saved remote path loaded. Connect to browse.)"}) << "opening never connects";
    EXPECT_EQ(names(stored()), (Names{"Work*", "Home", "Third"})) << "written at once";

    restartShell();
    EXPECT_EQ(form(), (QStringList{"files.example.org", "ana", "s3cret"}));
    EXPECT_EQ(controller().portField()->text(), "22") << "start-up then sets the protocol's default port";

    dialogs().expectSavedConnection({kEdit, 1});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Editing saved connection \"Home\". Update the form and save it.");
    EXPECT_EQ(controller().hostField()->text(), "home.example.org");
    EXPECT_EQ(names(stored()), (Names{"Work", "Home*", "Third"}));

    controller().hostField()->setText(QStringLiteral("typed.example.org"));
    dialogs().expectSavedConnection({kCancel, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Open saved connection canceled.");
    for (int row : {-1, 3}) {
        dialogs().expectSavedConnection({kOpen, row});
        controller().openSavedConnection();
        EXPECT_EQ(banner(), "⚠️ Saved connection selection is invalid.") << row;
    }
    EXPECT_EQ(controller().hostField()->text(), "typed.example.org");

    // A delete asks nothing more, empties the form and moves the mark to the last connection.
    std::size_t const asked = dialogs().questions().size();
    dialogs().expectSavedConnection({kDelete, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Deleted saved connection \"Work\".");
    EXPECT_EQ(dialogs().questions().size(), asked + 1);
    EXPECT_EQ(names(stored()), (Names{"Home", "Third*"})) << "even away from the marked one";
    EXPECT_EQ(form(), (QStringList{"", "", ""}));

    for (char const* name : {"Home", "Third"}) {
        dialogs().expectSavedConnection({kDelete, 0});
        controller().openSavedConnection();
        EXPECT_EQ(banner(), QStringLiteral("✅ Deleted saved connection \"%1\".").arg(QLatin1String(name)));
    }
    EXPECT_TRUE(stored().empty());
}

} // namespace
} // namespace perchftp::test
