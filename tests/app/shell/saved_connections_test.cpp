// Saving the form, and opening, editing and deleting saved connections, through the real
// controller and a real site database in the test's own data folder.
#include "app/pane/perch_path_field.hpp"
#include "session_shell_test.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <algorithm>

namespace perchftp::test {
namespace {

using testing::ElementsAre;

constexpr int kOpen = app::kFirstAlertButton;
constexpr int kEdit = app::kFirstAlertButton + 1;
constexpr int kDelete = app::kFirstAlertButton + 2;
constexpr int kCancel = app::kFirstAlertButton + 3;

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

    // From here on, every write of the database fails: a folder stands where the file was.
    void makeDatabaseUnwritable()
    {
        for (char const* suffix : {"", "-wal", "-shm"}) {
            QFile::remove(baseDatabase() + QString::fromLatin1(suffix));
        }
        ASSERT_TRUE(QDir().mkpath(baseDatabase() + QStringLiteral("/in-the-way")));
    }

    std::vector<storage::SiteProfile> stored() { return readSites(baseDatabase()).value_or(std::vector<storage::SiteProfile>{}); }
    static std::vector<std::string> namesOf(std::vector<storage::SiteProfile> const& profiles)
    {
        std::vector<std::string> names;
        for (auto const& profile : profiles) {
            names.push_back(profile.name);
        }
        return names;
    }
    static std::vector<std::string> marked(std::vector<storage::SiteProfile> const& profiles)
    {
        std::vector<std::string> names;
        for (auto const& profile : profiles) {
            if (profile.quickConnect) {
                names.push_back(profile.name);
            }
        }
        return names;
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

TEST_F(SavedConnections, SavingAsksForANameAndStoresTheFormWithItsSecretInClear)
{
    startWith({});
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

    std::vector<storage::SiteProfile> const sites = stored();
    ASSERT_EQ(sites.size(), 1u);
    storage::SiteProfile const& site = sites.front();
    EXPECT_EQ(site.name, "Work") << "the answer is trimmed";
    EXPECT_EQ(site.protocol, "sftp");
    EXPECT_EQ(site.host, "files.example.org");
    EXPECT_EQ(site.port, 2222);
    EXPECT_EQ(site.user, "ana");
    EXPECT_EQ(site.secretRef, "s3cret pass");
    EXPECT_EQ(site.localRoot, controller().localPane()->pathValue().toStdString());
    EXPECT_EQ(site.remoteRoot, "/srv/www");
    EXPECT_EQ(site.group, "General");
    EXPECT_TRUE(site.quickConnect) << "a saved connection becomes the one used last";
}

TEST_F(SavedConnections, SavingUnderAnExistingNameOverwritesItAndKeepsItsId)
{
    startWith({profile("Work", "old.example.org"), profile("Home", "home.example.org")});
    fillWorkForm();
    dialogs().expectText(QStringLiteral("Work"));
    controller().saveConnection();

    EXPECT_EQ(banner(), "✅ Updated saved connection \"Work\".");
    std::vector<storage::SiteProfile> const sites = stored();
    ASSERT_EQ(namesOf(sites), (std::vector<std::string>{"Work", "Home"}));
    EXPECT_EQ(sites[0].id, 1);
    EXPECT_EQ(sites[0].host, "files.example.org");
    EXPECT_EQ(marked(sites), (std::vector<std::string>{"Work"}));
}

TEST_F(SavedConnections, ANewNameForTheSameHostUserAndProtocolIsRefusedEvenOnAnotherPort)
{
    startWith({});
    fillWorkForm();
    dialogs().expectText(QStringLiteral("Work"));
    controller().saveConnection();
    controller().portField()->setText(QStringLiteral("22"));
    dialogs().expectText(QStringLiteral("Work copy"));
    controller().saveConnection();

    EXPECT_EQ(banner(), "⚠️ Connection details are invalid and could not be saved.");
    EXPECT_EQ(namesOf(stored()), (std::vector<std::string>{"Work"}));
    EXPECT_EQ(marked(stored()), (std::vector<std::string>{"Work"}));
}

TEST_F(SavedConnections, BadFormValuesAreRefusedWithTheirOwnWords)
{
    startWith({});
    fillForm(QStringLiteral("ftp"), QString(), QStringLiteral("21"));
    controller().saveConnection();
    EXPECT_EQ(banner(), "⚠️ Host is required before saving a connection.");

    for (QString const port : {"", " ", "abc", "-21", "0", "65536", "99999"}) {
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
    dialogs().expectText(QStringLiteral(" \t\n "));
    controller().saveConnection();
    EXPECT_EQ(banner(), "✅ Save connection canceled.");
    dialogs().expectText(std::nullopt);
    controller().saveConnection();
    EXPECT_EQ(banner(), "✅ Save connection canceled.");
    EXPECT_TRUE(controller().siteManager().listSites().empty());
    EXPECT_FALSE(QFile::exists(baseDatabase()));
}

TEST_F(SavedConnections, ASaveThatCannotReachTheDiskKeepsTheConnectionInMemoryUnmarked)
{
    startWith({profile("Home", "home.example.org")});
    makeDatabaseUnwritable();
    fillWorkForm();
    dialogs().expectText(QStringLiteral("Work"));
    controller().saveConnection();

    EXPECT_EQ(banner(), "⚠️ Connection updated in memory, but saving to disk failed.");
    std::vector<storage::SiteProfile> const sites = controller().siteManager().listSites();
    ASSERT_EQ(namesOf(sites), (std::vector<std::string>{"Home", "Work"}));
    EXPECT_TRUE(marked(sites).empty());

    // Deleting fails the same way and leaves the form as it is.
    dialogs().expectSavedConnection({kDelete, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "⚠️ Saved connection deleted in memory, but saving to disk failed.");
    EXPECT_EQ(namesOf(controller().siteManager().listSites()), (std::vector<std::string>{"Work"}));
    EXPECT_EQ(controller().hostField()->text(), "files.example.org");
}

TEST_F(SavedConnections, OpeningWithNoneSavedClearsTheFormButItsPortAndProtocol)
{
    startWith({});
    fillWorkForm();
    controller().openSavedConnectionButton()->click();
    EXPECT_EQ(banner(), "✅ No saved connections are available yet.");
    EXPECT_EQ(controller().hostField()->text(), "");
    EXPECT_EQ(controller().userField()->text(), "");
    EXPECT_EQ(controller().secretField()->text(), "");
    EXPECT_EQ(controller().portField()->text(), "2222");
    EXPECT_EQ(controller().protocolField()->currentText(), "sftp");
    EXPECT_TRUE(dialogs().questions().empty());
}

TEST_F(SavedConnections, OpeningFillsTheFormAndPanesAndTheMarkOutlivesARestart)
{
    storage::SiteProfile work = profile("Work", "files.example.org");
    work.protocol = "sftp";
    work.port = 2222;
    work.secretRef = "s3cret";
    work.localRoot = folders().home().toStdString();
    work.remoteRoot = "/srv/www";
    storage::SiteProfile home = profile("Home", "home.example.org", "");
    home.quickConnect = true;
    startWith({work, home});
    ASSERT_EQ(controller().hostField()->text(), "home.example.org") << "the marked connection is loaded at start";

    dialogs().expectSavedConnection({kOpen, 0});
    controller().openSavedConnectionButton()->click();
    EXPECT_EQ(dialogs().questions().front().options,
        (QStringList{"Work    ana    files.example.org", "Home    home.example.org"}));
    EXPECT_EQ(banner(), "✅ Loaded saved connection \"Work\".");
    EXPECT_EQ(controller().protocolField()->currentText(), "sftp");
    EXPECT_EQ(controller().hostField()->text(), "files.example.org");
    EXPECT_EQ(controller().portField()->text(), "2222");
    EXPECT_EQ(controller().userField()->text(), "ana");
    EXPECT_EQ(controller().secretField()->text(), "s3cret");
    EXPECT_EQ(controller().remotePane()->pathValue(), "/srv/www");
    EXPECT_TRUE(remotePaneShowsPlaceholder(QStringLiteral("Saved remote path loaded. Connect to browse.")));
    EXPECT_EQ(controller().session(), nullptr) << "opening never connects";
    EXPECT_EQ(marked(stored()), (std::vector<std::string>{"Work"})) << "written at once";

    restartShell();
    EXPECT_EQ(controller().hostField()->text(), "files.example.org");
    EXPECT_EQ(controller().portField()->text(), "22") << "start-up then sets the protocol's default port";
}

TEST_F(SavedConnections, EditLoadsLikeOpenWithItsOwnWordsAndCancelLoadsNothing)
{
    startWith({profile("Work", "files.example.org"), profile("Home", "home.example.org")});
    dialogs().expectSavedConnection({kEdit, 1});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Editing saved connection \"Home\". Update the form and save it.");
    EXPECT_EQ(controller().hostField()->text(), "home.example.org");
    EXPECT_EQ(marked(stored()), (std::vector<std::string>{"Home"}));

    controller().hostField()->setText(QStringLiteral("typed.example.org"));
    dialogs().expectSavedConnection({kCancel, 0});
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ Open saved connection canceled.");
    EXPECT_EQ(controller().hostField()->text(), "typed.example.org");

    for (int row : {-1, 2}) {
        dialogs().expectSavedConnection({kOpen, row});
        controller().openSavedConnection();
        EXPECT_EQ(banner(), "⚠️ Saved connection selection is invalid.") << row;
    }
    EXPECT_EQ(controller().hostField()->text(), "typed.example.org");
}

TEST_F(SavedConnections, DeletingAsksNothingMoreAndMovesTheMarkToTheLastConnection)
{
    storage::SiteProfile first = profile("First", "one.example.org");
    first.quickConnect = true;
    startWith({first, profile("Second", "two.example.org"), profile("Third", "three.example.org")});
    dialogs().expectSavedConnection({kDelete, 1});
    controller().openSavedConnection();

    EXPECT_EQ(banner(), "✅ Deleted saved connection \"Second\".");
    EXPECT_EQ(dialogs().questions().size(), 1u);
    EXPECT_EQ(namesOf(stored()), (std::vector<std::string>{"First", "Third"}));
    EXPECT_EQ(marked(stored()), (std::vector<std::string>{"Third"}));
    EXPECT_EQ(controller().hostField()->text(), "");
    EXPECT_EQ(controller().userField()->text(), "");
    EXPECT_EQ(controller().secretField()->text(), "");

    for (char const* name : {"First", "Third"}) {
        dialogs().expectSavedConnection({kDelete, 0});
        controller().openSavedConnection();
        EXPECT_EQ(banner(), QStringLiteral("✅ Deleted saved connection \"%1\".").arg(QLatin1String(name)));
    }
    EXPECT_TRUE(stored().empty());
    controller().openSavedConnection();
    EXPECT_EQ(banner(), "✅ No saved connections are available yet.");
}

} // namespace
} // namespace perchftp::test
