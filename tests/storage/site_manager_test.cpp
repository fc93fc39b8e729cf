#include "storage/site_manager.hpp"

#include "storage/store_fixture.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace perchftp::storage {
namespace {

using test::makeProfile;
using Ids = std::vector<int>;

constexpr int kTopId = std::numeric_limits<int>::max();

Ids idsOf(std::vector<SiteProfile> const& sites)
{
    Ids ids;
    for (auto const& site : sites) {
        ids.push_back(site.id);
    }
    return ids;
}

SiteManager loadedWithIds(Ids const& ids)
{
    Snapshot snapshot;
    for (int const id : ids) {
        snapshot.profiles.push_back(makeProfile(id, "host-" + std::to_string(id)));
    }
    return SiteManager(snapshot);
}

TEST(SiteManagerAdd, GivesNewIdsFromOneAndStoresTheProfileTrimmedAndRepairedWithAPortIn1To65535)
{
    SiteManager manager;
    EXPECT_EQ(manager.addSite(makeProfile(77, "a.example")), 1);
    EXPECT_EQ(manager.addSite(makeProfile(-3, "b.example")), 2);
    EXPECT_TRUE(manager.removeSite(2));
    EXPECT_EQ(manager.addSite(makeProfile(0, "c.example")), 3); // ids are not reused within a run

    auto profile = makeProfile(0, " \v\fFiles.Example.COM \t\r\n");
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
    for (auto const& [port, kept] : std::vector<std::pair<int, int>>{{1, 1}, {65535, 65535}, {65536, 21}}) {
        profile.port = port;
        ASSERT_TRUE(manager.updateSite(4, profile));
        EXPECT_EQ(manager.findSite(4)->port, kept) << port;
    }
}

TEST(SiteManagerAdd, NeverHandsOutAnIdBelowOneOrOneThatIsHeld)
{
    // After 2147483647 the counter wraps; the new ids start again from the lowest free one.
    auto afterTop = loadedWithIds({2, kTopId});
    EXPECT_EQ(afterTop.addSite(makeProfile(0, "new.example")), 1);
    EXPECT_EQ(afterTop.addSite(makeProfile(0, "newer.example")), 3);

    // Loaded out of order, the counter lands on a held id and steps past it.
    auto outOfOrder = loadedWithIds({65536, kTopId, 65535});
    EXPECT_EQ(outOfOrder.addSite(makeProfile(0, "new.example")), 65537);
    EXPECT_EQ(outOfOrder.addSite(makeProfile(0, "newer.example")), 65538);

    // Elsewhere the next id is one more than the greatest loaded one, as before.
    EXPECT_EQ(loadedWithIds({7, 3}).addSite(makeProfile(0, "new.example")), 8);
    EXPECT_EQ(loadedWithIds({kTopId - 1}).addSite(makeProfile(0, "new.example")), kTopId);
}

TEST(SiteManagerAdd, NeedsANameASupportedProtocolAndAHostAndRefusesTheSameConnectionTwice)
{
    for (auto const& [protocol, accepted] : std::vector<std::pair<char const*, bool>>{
             {"", false}, {"http", false}, {"ftpes", false}, {"ftp", true}, {"FTPS", true}, {" Sftp ", true}}) {
        EXPECT_EQ(SiteManager().addSite(makeProfile(0, "h", "u", protocol)) != 0, accepted) << protocol;
    }
    SiteManager manager;
    auto blankName = makeProfile(0, "h1");
    blankName.name = " \t ";
    EXPECT_EQ(manager.addSite(blankName), 0);
    auto noUserNoSecret = makeProfile(0, "h3", "");
    noUserNoSecret.secretRef = "";
    EXPECT_EQ(manager.addSite(noUserNoSecret), 1);

    // The same host, user and protocol are one connection, whatever the name.
    ASSERT_EQ(manager.addSite(makeProfile(0, "files.example.com", "ana")), 2);
    // Each accepted row has the name of the first ("Site 0"): names never make a duplicate.
    for (auto const& [host, user, protocol, duplicate] : std::vector<std::tuple<char const*, char const*, char const*, bool>>{
             {"  FILES.example.com ", "ana", "sftp", true}, {"files.example.com", " ana ", "SFTP", true},
             {"files.example.com", "Ana", "sftp", false}, {"files.example.com", "ana", "ftps", false}}) {
        EXPECT_EQ(manager.addSite(makeProfile(0, host, user, protocol)) == 0, duplicate) << host << user << protocol;
    }
}

TEST(SiteManagerUpdate, ReplacesEverythingButTheIdAndExcludesOnlyTheSiteItselfFromTheDuplicateRule)
{
    SiteManager manager;
    auto const id = manager.addSite(makeProfile(0, "a.example"));
    manager.addSite(makeProfile(0, "b.example"));
    EXPECT_TRUE(manager.updateSite(id, *manager.findSite(id)));

    auto changed = makeProfile(99, " c.example ");
    changed.name = " Renamed ";
    changed.favorite = true;
    changed.transferMode = TransferMode::Eager;
    ASSERT_TRUE(manager.updateSite(id, changed));
    EXPECT_EQ(test::describe(*manager.findSite(id)),
              "1|Renamed|sftp|c.example|22|ana|pw-99|/home/ana|/srv/www|1|General|100|2|10000|60000|1");
    EXPECT_FALSE(manager.updateSite(id, makeProfile(0, "B.EXAMPLE")));
    EXPECT_FALSE(manager.updateSite(12345, makeProfile(0, "e.example")));

    // Ids loaded from a file may repeat or be -1; still only the entry itself is left out.
    Snapshot loaded;
    loaded.profiles = {makeProfile(0, "a.example"), makeProfile(0, "b.example"), makeProfile(-1, "c.example")};
    SiteManager repeated(loaded);
    EXPECT_FALSE(repeated.updateSite(0, makeProfile(0, "b.example"))) << "the other entry of id 0 is another site";
    EXPECT_TRUE(repeated.updateSite(-1, makeProfile(0, "c.example")));
    EXPECT_EQ(SiteManager(repeated.snapshot()).listSites(), repeated.listSites());
}

TEST(SiteManagerSnapshot, LoadingKeepsOrderAndOddIdsDropsInvalidOnesAndLetsTheFirstDuplicateWin)
{
    Snapshot snapshot;
    snapshot.version = 1;
    snapshot.settings.defaultProtocol = "ftp";
    auto first = makeProfile(7, "shared.example");
    first.name = "first";
    snapshot.profiles = {first, makeProfile(3, "b"), makeProfile(9, " SHARED.example "),
                         makeProfile(50, "x", "u", "webdav"), makeProfile(0, "c"), makeProfile(-4, "d"), makeProfile(3, "e")};
    SiteManager manager;
    manager.addSite(makeProfile(0, "forgotten"));
    manager.loadFromSnapshot(snapshot);
    EXPECT_EQ(idsOf(manager.listSites()), (Ids{7, 3, 0, -4, 3}));
    EXPECT_EQ(manager.listSites().front().name, "first");

    // The snapshot carries version 3 and default settings whatever was loaded.
    auto const saved = manager.snapshot();
    EXPECT_TRUE(saved.version == 3 && saved.settings == AppSettings{});
    EXPECT_EQ(idsOf(saved.profiles), (Ids{7, 3, 0, -4, 3}));
}

} // namespace
} // namespace perchftp::storage
