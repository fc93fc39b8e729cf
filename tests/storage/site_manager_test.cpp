#include "storage/site_manager.hpp"

#include "storage/store_fixture.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace perchftp::storage {
namespace {

using test::makeProfile;
using Ids = std::vector<int>;

Ids idsOf(std::vector<SiteProfile> const& sites)
{
    Ids ids;
    for (auto const& site : sites) {
        ids.push_back(site.id);
    }
    return ids;
}

TEST(SiteManagerAdd, GivesNewIdsFromOneAndStoresTheProfileTrimmedAndRepaired)
{
    SiteManager manager;
    EXPECT_EQ(manager.addSite(makeProfile(77, "a.example")), 1);
    EXPECT_EQ(manager.addSite(makeProfile(-3, "b.example")), 2);
    EXPECT_TRUE(manager.removeSite(2));
    EXPECT_EQ(manager.addSite(makeProfile(0, "c.example")), 3); // ids are not reused within a run

    auto profile = makeProfile(0, "  Files.Example.COM \t");
    profile.name = "  My server ";
    profile.protocol = "SFTP ";
    profile.user = " Ana ";
    profile.group = "  ";
    profile.secretRef = "  secret  ";
    profile.localRoot = " /l ";
    profile.port = 0; // repaired, not refused
    profile.connectTimeoutMs = -1;
    profile.transferTimeoutMs = 0;
    profile.status = 7;
    ASSERT_EQ(manager.addSite(profile), 4);
    EXPECT_EQ(test::describe(*manager.findSite(4)),
              "4|My server|sftp|Files.Example.COM|21|Ana|  secret  | /l |/srv/www|7|General|000|0|10000|60000|1");
    EXPECT_EQ(idsOf(manager.listSites()), (Ids{1, 3, 4}));
}

TEST(SiteManagerAdd, NeedsANameASupportedProtocolAHostAndAPort)
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
    auto port = makeProfile(0, "h");
    port.port = 65536;
    EXPECT_FALSE(manager.isValidProfile(port));
    port.port = 65535;
    EXPECT_TRUE(manager.isValidProfile(port));
}

TEST(SiteManagerDuplicates, TheSameHostUserAndProtocolAreOneConnectionWhateverThePortAndName)
{
    SiteManager manager;
    auto first = makeProfile(0, "files.example.com", "ana");
    ASSERT_EQ(manager.addSite(first), 1);
    auto otherPort = makeProfile(0, "files.example.com", "ana");
    otherPort.port = 2222;
    otherPort.name = "Another name";
    EXPECT_EQ(manager.addSite(otherPort), 0);
    EXPECT_EQ(manager.addSite(makeProfile(0, "  FILES.example.com ", "ana")), 0);
    EXPECT_EQ(manager.addSite(makeProfile(0, "files.example.com", " ana ", "SFTP")), 0);
    EXPECT_EQ(manager.cloneSite(1, "copy"), 0) << "a copy is the same connection";
    EXPECT_EQ(manager.cloneSite(99, "copy"), 0);

    EXPECT_NE(manager.addSite(makeProfile(0, "files.example.com", "Ana")), 0); // user case counts
    EXPECT_NE(manager.addSite(makeProfile(0, "files.example.com", "ana", "ftps")), 0);
    auto sameName = makeProfile(0, "other.example.com", "ana");
    sameName.name = first.name;
    EXPECT_NE(manager.addSite(sameName), 0);

    // The candidate's protocol is compared in its own case, only trimmed.
    EXPECT_TRUE(manager.hasDuplicate(makeProfile(0, " FILES.example.com ", "ana", " sftp "), -1));
    EXPECT_FALSE(manager.hasDuplicate(makeProfile(0, "files.example.com", "ana", "SFTP"), -1));
    EXPECT_FALSE(manager.hasDuplicate(makeProfile(0, "files.example.com", "ana", "sftp"), 1));
}

TEST(SiteManagerUpdate, ReplacesEverythingButTheIdAndExcludesOnlyTheSiteItself)
{
    SiteManager manager;
    auto const id = manager.addSite(makeProfile(0, "a.example"));
    auto const other = manager.addSite(makeProfile(0, "b.example"));
    EXPECT_TRUE(manager.updateSite(id, *manager.findSite(id)));

    auto changed = makeProfile(99, " c.example ");
    changed.name = " Renamed ";
    changed.favorite = true;
    changed.transferMode = TransferMode::Eager;
    ASSERT_TRUE(manager.updateSite(id, changed));
    EXPECT_EQ(test::describe(*manager.findSite(id)),
              "1|Renamed|sftp|c.example|22|ana|pw-99|/home/ana|/srv/www|1|General|100|2|10000|60000|1");
    EXPECT_EQ(manager.findSite(99), nullptr);

    EXPECT_FALSE(manager.updateSite(id, makeProfile(0, "B.EXAMPLE")));
    EXPECT_FALSE(manager.updateSite(id, makeProfile(0, "d.example", "u", "gopher")));
    EXPECT_EQ(manager.findSite(id)->host, "c.example");
    EXPECT_FALSE(manager.updateSite(12345, makeProfile(0, "e.example")));
    EXPECT_EQ(manager.findSite(other)->host, "b.example");
}

TEST(SiteManagerUpdate, SettersChangeOnlyTheirFieldAndRemoveErasesEveryEntryWithTheId)
{
    SiteManager manager;
    auto const id = manager.addSite(makeProfile(0, "h"));
    EXPECT_TRUE(manager.setActive(id, false));
    EXPECT_EQ(manager.findSite(id)->status, 2);
    EXPECT_TRUE(manager.setActive(id, true));
    EXPECT_TRUE(manager.setFavorite(id, true));
    EXPECT_TRUE(manager.setQuickConnect(id, true));
    EXPECT_TRUE(manager.setAutoConnect(id, true));
    EXPECT_EQ(test::describe(*manager.findSite(id)), "1|Site 0|sftp|h|22|ana|pw-0|/home/ana|/srv/www|1|General|111|0|10000|60000|1");
    EXPECT_FALSE(manager.setActive(id + 1, true));
    EXPECT_FALSE(manager.setFavorite(id + 1, true));
    EXPECT_FALSE(manager.setQuickConnect(id + 1, true));
    EXPECT_FALSE(manager.setAutoConnect(id + 1, true));

    Snapshot snapshot;
    snapshot.profiles = {makeProfile(4, "a"), makeProfile(2, "b"), makeProfile(4, "c"), makeProfile(1, "d")};
    SiteManager loaded(snapshot);
    EXPECT_TRUE(loaded.removeSite(4));
    EXPECT_EQ(idsOf(loaded.listSites()), (Ids{2, 1}));
    EXPECT_FALSE(loaded.removeSite(4));
    EXPECT_FALSE(loaded.removeSite(0));
    EXPECT_EQ(loaded.addSite(makeProfile(0, "e")), 5); // the next id does not go back
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

    EXPECT_EQ(idsOf(manager.findByProtocol(" sftp ")), (Ids{1, 3}));
    EXPECT_TRUE(manager.findByProtocol("SFTP").empty());
    EXPECT_EQ(idsOf(manager.findByGroup(" Work")), (Ids{1}));
    EXPECT_EQ(idsOf(manager.findByGroup("General")), (Ids{2, 3}));
    EXPECT_TRUE(manager.findByGroup("work").empty());
    EXPECT_EQ(idsOf(manager.findFavorites()), (Ids{3}));

    EXPECT_EQ(manager.normalizeText(" \t\r\n\v\fa b\t "), "a b");
    EXPECT_EQ(manager.normalizeText("   "), "");
    EXPECT_EQ(manager.normalizeText("\xc2\xa0x\xc2\xa0"), "\xc2\xa0x\xc2\xa0");
    EXPECT_EQ(manager.normalizeText("CaSe"), "CaSe");
}

TEST(SiteManagerSnapshot, LoadingKeepsOrderAndOddIdsDropsInvalidOnesAndLetsTheFirstDuplicateWin)
{
    Snapshot snapshot;
    snapshot.version = 1;
    snapshot.settings.defaultProtocol = "ftp";
    snapshot.settings.logLevel = 0;
    auto first = makeProfile(7, "shared.example");
    first.name = "first";
    snapshot.profiles = {first, makeProfile(3, "b"), makeProfile(9, " SHARED.example "),
                         makeProfile(50, "x", "u", "webdav"), makeProfile(0, "c"), makeProfile(-4, "d"), makeProfile(3, "e")};
    SiteManager manager;
    manager.addSite(makeProfile(0, "forgotten"));
    manager.loadFromSnapshot(snapshot);
    EXPECT_EQ(idsOf(manager.listSites()), (Ids{7, 3, 0, -4, 3}));
    EXPECT_EQ(manager.listSites().front().name, "first");
    EXPECT_EQ(manager.addSite(makeProfile(0, "new")), 8);

    // The snapshot carries version 3 and default settings whatever was loaded.
    auto const saved = manager.snapshot();
    EXPECT_EQ(saved.version, 3);
    EXPECT_EQ(saved.settings, AppSettings{});
    EXPECT_EQ(idsOf(saved.profiles), (Ids{7, 3, 0, -4, 3, 8}));

    // An entry with id -1 still takes part in the duplicate check.
    snapshot.profiles = {makeProfile(-1, "h"), makeProfile(5, "H")};
    manager.loadFromSnapshot(snapshot);
    EXPECT_EQ(idsOf(manager.listSites()), (Ids{-1}));
    EXPECT_TRUE(manager.hasDuplicate(makeProfile(0, "h"), -1));

    // The greatest id wraps the counter without overflow, and add still gives an id.
    snapshot.profiles = {makeProfile(std::numeric_limits<int>::max(), "top")};
    manager.loadFromSnapshot(snapshot);
    auto const id = manager.addSite(makeProfile(0, "next"));
    EXPECT_NE(id, 0);
    EXPECT_NE(id, std::numeric_limits<int>::max());
    EXPECT_EQ(manager.listSites().size(), 2U);
}

} // namespace
} // namespace perchftp::storage
