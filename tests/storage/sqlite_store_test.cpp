#include "storage/legacy_snapshot.hpp"
#include "storage/persistent_store.hpp"

#include "storage/store_fixture.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>

namespace perchftp::storage {
namespace {

using test::makeProfile;
using test::permissionBits;
using test::RawDatabase;
namespace fs = std::filesystem;

constexpr char const* kLegacyText = "3 1\n1\n2\n3\n1\n30000\n2\n{}\n"
                                    "4\nLegacy\nftp\nold.example\n21\nbob\nhunter2\n/l\n/r\n1\nGroup\n0\n0\n0\nbinary\n"
                                    "10000\n60000\n1\n";

Snapshot withProfiles(std::vector<SiteProfile> profiles)
{
    Snapshot snapshot;
    snapshot.profiles = std::move(profiles);
    return snapshot;
}

class SqliteStoreTest : public testing::Test {
protected:
    std::string databasePath() const { return dir.file("perchftp-sites.db"); }
    std::unique_ptr<IPersistentStore> store() const { return createFileStore(databasePath()); }

    test::TempDir dir;
};

TEST_F(SqliteStoreTest, SaveMakesMissingFoldersAndWritesTheSecretInClearAndTheModeAsItsWord)
{
    EXPECT_FALSE(store()->load().has_value());
    EXPECT_TRUE(fs::is_empty(dir.path())) << "a load without a file creates nothing";

    auto const path = (dir.path() / "a" / "b" / "perchftp-sites.db").string();
    // Every other field's trip through the database, ordering and repairs included, is the fuzz
    // targets' ground.
    auto full = makeProfile(9, "files.example.com");
    full.secretRef = std::string("p@ss w0rd\"'\0tail", 16); // kept whole, NUL byte and all
    full.transferMode = TransferMode::Eager;
    Snapshot snapshot = withProfiles({full});
    snapshot.version = 1;
    ASSERT_TRUE(createFileStore(path)->save(snapshot));

    // The secret stands in clear in its column, the mode as its word, the version as 3.
    RawDatabase raw(path);
    EXPECT_EQ(raw.text("SELECT secret_ref FROM site_profiles WHERE id = 9"), "p@ss w0rd\"'");
    EXPECT_EQ(raw.text("SELECT length(CAST(secret_ref AS BLOB)) FROM site_profiles WHERE id = 9"), "16");
    EXPECT_EQ(raw.text("SELECT transfer_mode FROM site_profiles WHERE id = 9"), "eager");
    EXPECT_EQ(raw.text("SELECT version FROM app_settings WHERE id = 1"), "3");
    EXPECT_EQ(raw.text("PRAGMA journal_mode"), "wal");
}

TEST_F(SqliteStoreTest, LoadCreatesMissingTablesReadsBadValuesAsDefaultsAndKeepsTheRowsBeforeAFailingStep)
{
    ASSERT_TRUE(RawDatabase(databasePath()).exec("PRAGMA user_version = 7"));
    EXPECT_EQ(store()->load(), Snapshot{});
    EXPECT_EQ(RawDatabase(databasePath()).text("SELECT count(*) FROM sqlite_master"), "2");
    ASSERT_TRUE(
        RawDatabase(databasePath()).exec("INSERT INTO app_settings VALUES (1, 1, 1, -7, 0, 1, '', 0, -1, '')"));
    // Log level 0, not the default 2; the counts are left as they are.
    EXPECT_EQ(test::describe(store()->load()->settings), "1|-7|0|1|sftp|30000|0|{}");

    fs::remove(databasePath());
    {
        // A looser table than the store's own, which CREATE TABLE IF NOT EXISTS leaves in place.
        RawDatabase raw(databasePath());
        ASSERT_TRUE(raw.exec("CREATE TABLE site_profiles (id INTEGER PRIMARY KEY, name, protocol, host, port, "
                             "user, secret_ref, local_root, remote_root, status, profile_group, favorite, "
                             "quick_connect, auto_connect, transfer_mode, connect_timeout_ms, "
                             "transfer_timeout_ms, use_encryption)"));
        ASSERT_TRUE(raw.exec("INSERT INTO site_profiles VALUES (1, 'a', 'ftp', 'h', 0, NULL, NULL, NULL, NULL, "
                             "1, NULL, 5, 0, 0, 'Ascii', 0, 0, 0), (2, 'b', 'ftp', 'h2', 21, 'u', 's', 'l', 'r', "
                             "1, 'G', 0, 0, 0, 'eager', 10, 20, 1)"));
    }
    auto const loaded = store()->load();
    ASSERT_TRUE(loaded.has_value());
    ASSERT_EQ(loaded->profiles.size(), 2U);
    EXPECT_EQ(test::describe(loaded->profiles[0]), "1|a|ftp|h|21|||||1|General|100|0|10000|60000|0");
    EXPECT_EQ(loaded->profiles[1].transferMode, TransferMode::Eager);

    // Rows read before a step that fails stand.
    fs::remove(databasePath());
    {
        RawDatabase raw(databasePath());
        ASSERT_TRUE(raw.exec("CREATE TABLE profile_rows (id INTEGER PRIMARY KEY, host TEXT)"));
        ASSERT_TRUE(raw.exec("INSERT INTO profile_rows VALUES (1, 'one'), (2, 'two'), (3, 'three'), (4, 'four')"));
        // The third row raises an integer overflow when it is evaluated, in the middle of the scan.
        ASSERT_TRUE(raw.exec("CREATE VIEW site_profiles AS SELECT id, 'n' AS name, 'ftp' AS protocol, host, "
                             "21 AS port, '' AS user, '' AS secret_ref, '' AS local_root, '' AS remote_root, "
                             "1 AS status, 'G' AS profile_group, CASE WHEN id = 3 THEN abs(-9223372036854775808) "
                             "ELSE 0 END AS favorite, 0 AS quick_connect, 0 AS auto_connect, 'binary' AS "
                             "transfer_mode, 1 AS connect_timeout_ms, 1 AS transfer_timeout_ms, 1 AS "
                             "use_encryption FROM profile_rows"));
    }
    auto const partial = store()->load();
    ASSERT_TRUE(partial.has_value());
    ASSERT_EQ(partial->profiles.size(), 2U);
    EXPECT_EQ(partial->profiles[1].host, "two");
}

TEST_F(SqliteStoreTest, ADatabaseOrPathItCannotUseIsLeftAsItIsWhileAnyOtherFileGivesWayToASave)
{
    {
        RawDatabase raw(databasePath());
        ASSERT_TRUE(raw.exec("CREATE TABLE site_profiles (id INTEGER PRIMARY KEY, name TEXT)"));
        ASSERT_TRUE(raw.exec("INSERT INTO site_profiles VALUES (1, 'old')"));
    }
    EXPECT_EQ(store()->load(), Snapshot{}) << "other columns: no profiles";
    EXPECT_FALSE(store()->save(withProfiles({makeProfile(1, "h")})));
    EXPECT_EQ(RawDatabase(databasePath()).text("SELECT name FROM site_profiles"), "old");

    std::string const damaged = std::string("SQLite format 3", 16) + std::string(4000, 'x');
    test::writeFile(databasePath(), damaged);
    EXPECT_FALSE(store()->load().has_value());
    EXPECT_FALSE(store()->save(Snapshot{}));
    EXPECT_EQ(test::readFile(databasePath()), damaged);

    // A regular file where a folder should be: even root cannot use it.
    test::writeFile(dir.path() / "blocker", "not a folder");
    auto const blocked = createFileStore((dir.path() / "blocker" / "sub" / "perchftp-sites.db").string());
    EXPECT_FALSE(blocked->save(Snapshot{}));
    EXPECT_EQ(test::readFile(dir.path() / "blocker"), "not a folder");

    // Any other file at the path gives way to a save, even one that then fails.
    test::writeFile(databasePath(), std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
    EXPECT_FALSE(store()->load().has_value());
    ASSERT_TRUE(store()->save(withProfiles({makeProfile(3, "fresh.example")})));
    EXPECT_EQ(store()->load()->profiles.at(0).host, "fresh.example");

    fs::remove(databasePath());
    test::writeFile(databasePath(), kLegacyText);
    EXPECT_EQ(store()->load()->profiles.at(0).secretRef, "hunter2");
    EXPECT_FALSE(store()->save(withProfiles({makeProfile(4, "x"), makeProfile(4, "y")}))) << "one id twice";
    EXPECT_EQ(store()->load(), Snapshot{}) << "the legacy content is gone";
}

TEST_F(SqliteStoreTest, ALockedDatabaseStillLoadsItsCommittedContentAndRefusesASaveAtOnce)
{
    ASSERT_TRUE(store()->save(withProfiles({makeProfile(1, "committed.example")})));
    RawDatabase writer(databasePath());
    ASSERT_TRUE(writer.exec("BEGIN IMMEDIATE TRANSACTION"));
    ASSERT_TRUE(writer.exec("UPDATE site_profiles SET host = 'uncommitted.example'"));
    auto const loaded = store()->load();
    ASSERT_TRUE(loaded.has_value());
    EXPECT_EQ(loaded->profiles.at(0).host, "committed.example");

    auto const started = std::chrono::steady_clock::now();
    EXPECT_FALSE(store()->save(Snapshot{}));
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(500));
    ASSERT_TRUE(writer.exec("ROLLBACK"));
    EXPECT_EQ(store()->load()->profiles.size(), 1U);
}

TEST_F(SqliteStoreTest, NewFoldersAreOwnerOnlyAndTheDatabaseAndItsCompanionsPrivateWhateverTheUmask)
{
    auto const previousMask = ::umask(0);
    auto const before = permissionBits(dir.path());
    auto const path = (dir.path() / "data" / "PerchFtp" / "perchftp-sites.db").string();
    ASSERT_TRUE(createFileStore(path)->save(Snapshot{}));
    EXPECT_EQ(permissionBits(dir.path()), before);
    EXPECT_EQ(permissionBits(dir.path() / "data"), 0700);
    EXPECT_EQ(permissionBits(dir.path() / "data" / "PerchFtp"), 0700);
    EXPECT_EQ(permissionBits(path), 0600);

    // A reader that stays open keeps the write-ahead log and the shared-memory file in place;
    // a rewrite narrows all three.
    RawDatabase reader(path);
    ASSERT_EQ(reader.text("SELECT count(*) FROM site_profiles"), "0");
    ASSERT_EQ(reader.text("SELECT count(*) FROM app_settings"), "1") << "one settings row, even when empty";
    for (auto const* suffix : {"", "-wal", "-shm"}) {
        ASSERT_TRUE(fs::exists(path + suffix)) << suffix;
        fs::permissions(path + suffix, fs::perms(0644));
    }
    ASSERT_TRUE(createFileStore(path)->save(withProfiles({makeProfile(1, "h")})));
    for (auto const* suffix : {"", "-wal", "-shm"}) {
        EXPECT_EQ(permissionBits(path + suffix), 0600) << suffix;
    }
    ::umask(previousMask);
}

} // namespace
} // namespace perchftp::storage
