#pragma once

#include "storage/site_profile.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace perchftp::storage {

// The saved connections in memory. Gives a new profile its id, cleans its text, refuses what is
// invalid or a duplicate, and produces the snapshot that the store writes. No file work.
//
// Two profiles are the same connection when their trimmed, lowered hosts, their trimmed users
// (case kept) and their protocols agree; the port and the name play no part.
class SiteManager {
public:
    SiteManager() = default;
    explicit SiteManager(Snapshot snapshot);

    // The new id, or 0 for an invalid profile or a duplicate. The id the argument carries is
    // ignored: ids are chosen here alone, positive and never one that an entry holds, and they
    // are not reused within a run until the counter has passed 2147483647.
    std::int32_t addSite(SiteProfile profile);

    // Replaces every field but the id. False for an unknown id, an invalid profile, or one that
    // would duplicate another entry; the stored entry is unchanged then.
    bool updateSite(int id, SiteProfile const& profile);

    // Erases every entry with this id (loadFromSnapshot may keep several).
    bool removeSite(int id);

    // The first entry with this id, or null. A change made through the pointer is not checked.
    SiteProfile* findSite(int id);
    SiteProfile const* findSite(int id) const;

    bool setActive(int id, bool active); // status 1 for true, 2 for false
    bool setFavorite(int id, bool favorite);
    bool setQuickConnect(int id, bool quickConnect);
    bool setAutoConnect(int id, bool autoConnect);

    // Adds a copy named "<name> (<label>)". The copy is the same connection as its source, so the
    // duplicate rule refuses it and the result is 0 for every existing site.
    std::int32_t cloneSite(int id, std::string const& label);

    std::vector<SiteProfile> listSites() const;
    std::vector<SiteProfile> findByProtocol(std::string const& protocol) const; // trimmed, exact
    std::vector<SiteProfile> findByGroup(std::string const& group) const; // trimmed, exact
    std::vector<SiteProfile> findFavorites() const;

    // Version 3, the sites in order, and default settings: the manager keeps none.
    Snapshot snapshot() const;

    // Starts afresh with the valid profiles of the snapshot; of two duplicates the first stays.
    // Ids are kept as they are, odd or repeated ones included.
    void loadFromSnapshot(Snapshot const& snapshot);

    // Trims name, protocol (also lowered), host, user and group (empty becomes "General"), and
    // repairs the port and the timeouts. Secret, roots, mode, status and id stay.
    void normalizeForStorage(SiteProfile& profile) const;

    // A name, a supported protocol ("ftp", "ftps", "sftp" in any case), a host and a port in
    // 1..65535, each taken trimmed. User and secret may be empty.
    bool isValidProfile(SiteProfile const& profile) const;

    // Whether another entry, ignoring those whose id is excludedId (-1 ignores none), is the same
    // connection. The candidate's protocol is compared trimmed but in its own case.
    bool hasDuplicate(SiteProfile const& profile, int excludedId) const;

    // Strips isspace() bytes from both ends; inner blanks and case stay.
    std::string normalizeText(std::string text) const;

private:
    std::int32_t takeNextId();

    std::int32_t nextId_ = 1;
    std::vector<SiteProfile> sites_;
};

} // namespace perchftp::storage
