#include "storage/site_manager.hpp"

#include "storage/store_fixture.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace perchftp::storage {
namespace {

using test::makeProfile;

std::vector<int> idsOf(std::vector<SiteProfile> const& sites)
{
    std::vector<int> ids;
    for (auto const& site : sites) {
        ids.push_back(site.id);
    }
    return ids;
}

TEST(SiteManagerAdd, GivesIdsFromOneWhateverIdTheProfileCarries)
{
    SiteManager manager;
    EXPECT_EQ(manager.addSite(makeProfile(77, "a.example")), 1);
    EXPECT_EQ(manager.addSite(makeProfile(-3, "b.example")), 2);
    EXPECT_TRUE(manager.removeSite(2));
    EXPECT_EQ(manager.addSite(makeProfile(0, "c.example")), 3); // ids are not reused within a run
    EXPECT_EQ(idsOf(manager.listSites()), (std::vector<int>{1, 3}));
}

TEST(SiteManagerAdd, TrimsTextLowersTheProtocolKeepsTheHostsCaseAndRepairsNumbers)
{
    SiteManager manager;
    auto profile = makeProfile(0, "  Files.Example.COM \t");
    profile.name = "  My server ";
    profile.protocol = "SFTP ";
    profile.user = " Ana ";
    profile.group = "  ";
    profile.secretRef = "  secret  ";
    profile.localRoot = " /l ";
    profile.port = 0;
    profile.connectTimeoutMs = -1;
    profile.transferTimeoutMs = 0;
    profile.status = 7;
    auto expected = profile;
    expected.id = 1;
    expected.name = "My server";
    expected.protocol = "sftp";
    expected.host = "Files.Example.COM";
    expected.user = "Ana";
    expected.group = "General";
    expected.port = 21; // repaired, not refused
    expected.connectTimeoutMs = 10000;
    expected.transferTimeoutMs = 60000;
    ASSERT_EQ(manager.addSite(profile), 1);
    EXPECT_EQ(manager.listSites(), std::vector<SiteProfile>{expected});
}

TEST(SiteManagerValidation, NeedsANameASupportedProtocolAHostAndAPort)
{
    SiteManager manager;
    auto blankName = makeProfile(0, "h1");
    blankName.name = " \t ";
    EXPECT_EQ(manager.addSite(blankName), 0);
    for (auto const* protocol : {"", "http", "scp", "ftpes"}) {
        EXPECT_EQ(manager.addSite(makeProfile(0, "h2", "u", protocol)), 0) << protocol;
    }
    EXPECT_EQ(manager.addSite(makeProfile(0, "   ")), 0);
    EXPECT_TRUE(manager.listSites().empty());

    auto noUser = makeProfile(0, "h3", "");
    noUser.secretRef = "";
    EXPECT_NE(manager.addSite(noUser), 0);
    for (auto const* protocol : {"ftp", "FTPS", " Sftp "}) {
        EXPECT_NE(manager.addSite(makeProfile(0, std::string("host-") + protocol, "u", protocol)), 0) << protocol;
    }

    auto badPort = makeProfile(0, "h");
    badPort.port = 65536;
    EXPECT_FALSE(manager.isValidProfile(badPort));
    badPort.port = 65535;
    EXPECT_TRUE(manager.isValidProfile(badPort));
}

TEST(SiteManagerDuplicates, TheSameHostUserAndProtocolAreOneConnectionWhateverThePortAndName)
{
    SiteManager manager;
    auto first = makeProfile(0, "files.example.com", "ana");
    first.port = 22;
    ASSERT_NE(manager.addSite(first), 0);

    auto otherPort = makeProfile(0, "files.example.com", "ana");
    otherPort.port = 2222;
    otherPort.name = "Another name";
    EXPECT_EQ(manager.addSite(otherPort), 0);
    EXPECT_EQ(manager.addSite(makeProfile(0, "  FILES.example.com ", "ana")), 0);
    EXPECT_EQ(manager.addSite(makeProfile(0, "files.example.com", " ana ", "SFTP")), 0);

    EXPECT_NE(manager.addSite(makeProfile(0, "files.example.com", "Ana")), 0); // user case counts
    EXPECT_NE(manager.addSite(makeProfile(0, "files.example.com", "ana", "ftps")), 0);
    auto sameName = makeProfile(0, "other.example.com", "ana");
    sameName.name = first.name;
    EXPECT_NE(manager.addSite(sameName), 0);
}

TEST(SiteManagerDuplicates, TheCandidateProtocolIsComparedInItsOwnCase)
{
    SiteManager manager;
    ASSERT_NE(manager.addSite(makeProfile(0, "h", "u", "sftp")), 0);
    EXPECT_TRUE(manager.hasDuplicate(makeProfile(0, " H ", "u", " sftp "), -1));
    EXPECT_FALSE(manager.hasDuplicate(makeProfile(0, "h", "u", "SFTP"), -1));
    EXPECT_FALSE(manager.hasDuplicate(makeProfile(0, "h", "U", "sftp"), -1));
    EXPECT_FALSE(manager.hasDuplicate(makeProfile(0, "h", "u", "sftp"), 1));
}

TEST(SiteManagerUpdate, ReplacesEverythingButTheIdAndExcludesTheSiteItself)
{
    SiteManager manager;
    auto const id = manager.addSite(makeProfile(0, "a.example"));
    auto const other = manager.addSite(makeProfile(0, "b.example"));

    auto same = *manager.findSite(id);
    EXPECT_TRUE(manager.updateSite(id, same));

    auto changed = makeProfile(99, " c.example ");
    changed.name = " Renamed ";
    changed.favorite = true;
    changed.transferMode = TransferMode::Eager;
    ASSERT_TRUE(manager.updateSite(id, changed));
    auto const* stored = manager.findSite(id);
    EXPECT_EQ(stored->id, id);
    EXPECT_EQ(stored->host, "c.example");
    EXPECT_EQ(stored->name, "Renamed");
    EXPECT_TRUE(stored->favorite);
    EXPECT_EQ(stored->transferMode, TransferMode::Eager);
    EXPECT_EQ(manager.findSite(99), nullptr);

    auto const before = *manager.findSite(id);
    EXPECT_FALSE(manager.updateSite(id, makeProfile(0, "B.EXAMPLE")));
    auto invalid = makeProfile(0, "d.example", "u", "gopher");
    EXPECT_FALSE(manager.updateSite(id, invalid));
    EXPECT_EQ(manager.findSite(id)->host, before.host);
    EXPECT_FALSE(manager.updateSite(12345, makeProfile(0, "e.example")));
    EXPECT_EQ(manager.findSite(other)->host, "b.example");
}

TEST(SiteManagerRemove, ErasesEveryEntryWithTheIdAndKeepsTheOthersInOrder)
{
    Snapshot snapshot;
    snapshot.profiles = {makeProfile(4, "a"), makeProfile(2, "b"), makeProfile(4, "c"), makeProfile(1, "d")};
    SiteManager manager(snapshot);
    EXPECT_TRUE(manager.removeSite(4));
    EXPECT_EQ(idsOf(manager.listSites()), (std::vector<int>{2, 1}));
    EXPECT_FALSE(manager.removeSite(4));
    EXPECT_FALSE(manager.removeSite(0));
    EXPECT_EQ(manager.addSite(makeProfile(0, "e")), 5); // the next id does not go back
}

TEST(SiteManagerSetters, ChangeOnlyTheirFieldAndRefuseUnknownIds)
{
    SiteManager manager;
    auto const id = manager.addSite(makeProfile(0, "h"));
    EXPECT_TRUE(manager.setActive(id, false));
    EXPECT_EQ(manager.findSite(id)->status, 2);
    EXPECT_TRUE(manager.setActive(id, true));
    EXPECT_EQ(manager.findSite(id)->status, 1);
    EXPECT_TRUE(manager.setFavorite(id, true));
    EXPECT_TRUE(manager.setQuickConnect(id, true));
    EXPECT_TRUE(manager.setAutoConnect(id, true));
    auto const* site = manager.findSite(id);
    EXPECT_TRUE(site->favorite && site->quickConnect && site->autoConnect);
    EXPECT_EQ(manager.findFavorites().size(), 1U);

    EXPECT_FALSE(manager.setActive(id + 1, true));
    EXPECT_FALSE(manager.setFavorite(id + 1, true));
    EXPECT_FALSE(manager.setQuickConnect(id + 1, true));
    EXPECT_FALSE(manager.setAutoConnect(id + 1, true));
}

TEST(SiteManagerClone, IsRefusedForEveryExistingSiteBecauseTheCopyIsTheSameConnection)
{
    SiteManager manager;
    auto const id = manager.addSite(makeProfile(0, "h"));
    EXPECT_EQ(manager.cloneSite(id, "copy"), 0);
    EXPECT_EQ(manager.cloneSite(id + 1, "copy"), 0);
    EXPECT_EQ(manager.listSites().size(), 1U);
}

TEST(SiteManagerQueries, CompareTrimmedWordsExactly)
{
    SiteManager manager;
    auto work = makeProfile(0, "a", "u", "sftp");
    work.group = "Work";
    manager.addSite(work);
    manager.addSite(makeProfile(0, "b", "u", "ftp"));
    auto favorite = makeProfile(0, "c", "u", "sftp");
    favorite.favorite = true;
    manager.addSite(favorite);

    EXPECT_EQ(idsOf(manager.findByProtocol(" sftp ")), (std::vector<int>{1, 3}));
    EXPECT_TRUE(manager.findByProtocol("SFTP").empty());
    EXPECT_EQ(idsOf(manager.findByGroup(" Work")), (std::vector<int>{1}));
    EXPECT_EQ(idsOf(manager.findByGroup("General")), (std::vector<int>{2, 3}));
    EXPECT_TRUE(manager.findByGroup("work").empty());
    EXPECT_EQ(idsOf(manager.findFavorites()), (std::vector<int>{3}));
}

TEST(SiteManagerSnapshot, CarriesVersionThreeTheSitesAndDefaultSettingsWhateverWasLoaded)
{
    Snapshot loaded;
    loaded.version = 1;
    loaded.settings.defaultProtocol = "ftp";
    loaded.settings.logLevel = 0;
    loaded.profiles = {makeProfile(5, "h")};
    SiteManager manager(loaded);
    auto const snapshot = manager.snapshot();
    EXPECT_EQ(snapshot.version, 3);
    EXPECT_EQ(snapshot.settings.defaultProtocol, "sftp");
    EXPECT_EQ(snapshot.settings.logLevel, 2);
    EXPECT_EQ(idsOf(snapshot.profiles), (std::vector<int>{5}));
}

TEST(SiteManagerLoad, KeepsOrderAndOddIdsDropsInvalidOnesAndLetsTheFirstDuplicateWin)
{
    Snapshot snapshot;
    auto first = makeProfile(7, "shared.example");
    first.name = "first";
    auto later = makeProfile(9, " SHARED.example ");
    later.name = "later";
    auto invalid = makeProfile(50, "x", "u", "webdav");
    snapshot.profiles = {first, makeProfile(3, "b"), later, invalid, makeProfile(0, "c"), makeProfile(-4, "d"),
        makeProfile(3, "e")};
    SiteManager manager;
    manager.addSite(makeProfile(0, "forgotten"));
    manager.loadFromSnapshot(snapshot);

    auto const sites = manager.listSites();
    EXPECT_EQ(idsOf(sites), (std::vector<int>{7, 3, 0, -4, 3}));
    EXPECT_EQ(sites.front().name, "first");
    EXPECT_EQ(manager.addSite(makeProfile(0, "new")), 8);
}

TEST(SiteManagerLoad, ADuplicateOfAnEntryWithIdMinusOneIsStillDropped)
{
    Snapshot snapshot;
    snapshot.profiles = {makeProfile(-1, "h"), makeProfile(5, "H")};
    SiteManager manager(snapshot);
    EXPECT_EQ(idsOf(manager.listSites()), (std::vector<int>{-1}));
    EXPECT_TRUE(manager.hasDuplicate(makeProfile(0, "h"), -1));
}

TEST(SiteManagerLoad, TheGreatestPossibleIdWrapsTheCounterWithoutOverflowAndAddStillGivesAnId)
{
    Snapshot snapshot;
    snapshot.profiles = {makeProfile(std::numeric_limits<int>::max(), "top")};
    SiteManager manager(snapshot);
    auto const id = manager.addSite(makeProfile(0, "next"));
    EXPECT_NE(id, 0);
    EXPECT_NE(id, std::numeric_limits<int>::max());
    EXPECT_EQ(manager.listSites().size(), 2U);
}

TEST(SiteManagerLoad, ManyProfilesLoadWithDuplicatesDroppedInLinearTime)
{
    Snapshot snapshot;
    for (int i = 0; i < 20000; ++i) {
        snapshot.profiles.push_back(makeProfile(i + 1, "host-" + std::to_string(i % 10000) + ".example"));
    }
    SiteManager manager(snapshot);
    auto const sites = manager.listSites();
    ASSERT_EQ(sites.size(), 10000U);
    EXPECT_EQ(sites.back().id, 10000);
}

TEST(SiteManagerText, NormalizeTextStripsAsciiBlanksAtBothEndsOnly)
{
    SiteManager const manager;
    EXPECT_EQ(manager.normalizeText(" \t\r\n\v\fa b\t "), "a b");
    EXPECT_EQ(manager.normalizeText("   "), "");
    EXPECT_EQ(manager.normalizeText("\xc2\xa0x\xc2\xa0"), "\xc2\xa0x\xc2\xa0");
    EXPECT_EQ(manager.normalizeText("CaSe"), "CaSe");
}

} // namespace
} // namespace perchftp::storage
