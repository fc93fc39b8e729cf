#include "storage/site_manager.hpp"

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <utility>

namespace perchftp::storage {
namespace {

// isspace() of the C locale, whatever locale the process runs in.
bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

std::string trimmed(std::string text)
{
    auto const first = std::find_if_not(text.begin(), text.end(), isBlank);
    text.erase(text.begin(), first);
    auto const last = std::find_if_not(text.rbegin(), text.rend(), isBlank).base();
    text.erase(last, text.end());
    return text;
}

std::string toLower(std::string text)
{
    for (auto& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

bool isSupportedProtocol(std::string const& protocol)
{
    auto const lowered = toLower(protocol);
    return lowered == "ftp" || lowered == "ftps" || lowered == "sftp";
}

// Ids wrap instead of overflowing; addSite steps over the ones below 1.
std::int32_t following(std::int32_t id)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(id) + 1U);
}

// What makes two profiles the same connection, as one text: the host trimmed and lowered, the
// user trimmed, and the protocol as the caller prepared it. Lengths go first so that no choice of
// characters can make two different triples meet.
std::string connectionKey(std::string const& host, std::string const& user, std::string const& protocol)
{
    auto key = std::to_string(host.size()) + ':' + host + std::to_string(user.size()) + ':' + user;
    key += protocol;
    return key;
}

std::string storedConnectionKey(SiteProfile const& site)
{
    return connectionKey(toLower(trimmed(site.host)), trimmed(site.user), toLower(trimmed(site.protocol)));
}

std::string candidateConnectionKey(SiteProfile const& candidate)
{
    return connectionKey(toLower(trimmed(candidate.host)), trimmed(candidate.user), trimmed(candidate.protocol));
}

template <typename Predicate>
std::vector<SiteProfile> copiesWhere(std::vector<SiteProfile> const& sites, Predicate predicate)
{
    std::vector<SiteProfile> found;
    std::copy_if(sites.begin(), sites.end(), std::back_inserter(found), predicate);
    return found;
}

template <typename Change>
bool changeIfFound(SiteProfile* site, Change change)
{
    if (!site) {
        return false;
    }
    change(*site);
    return true;
}

// Whether an entry that `leftOut` does not skip is the same connection as the candidate.
template <typename LeftOut>
bool sameConnectionAsAnEntry(std::vector<SiteProfile> const& sites, SiteProfile const& candidate, LeftOut leftOut)
{
    auto const key = candidateConnectionKey(candidate);
    return std::any_of(sites.begin(), sites.end(),
                       [&](SiteProfile const& site) { return !leftOut(site) && storedConnectionKey(site) == key; });
}

} // namespace

SiteManager::SiteManager(Snapshot snapshot)
{
    loadFromSnapshot(snapshot);
}

std::int32_t SiteManager::addSite(SiteProfile profile)
{
    normalizeForStorage(profile);
    if (!isValidProfile(profile) || hasDuplicate(profile, -1)) {
        return 0;
    }
    profile.id = takeNextId();
    sites_.push_back(std::move(profile));
    return sites_.back().id;
}

// The counter's value, stepping over the ones below 1. Ids loaded out of order, or a loaded
// 2147483647 that wraps the counter, can leave it on an id that is held or below 1: then the next
// free id above it is taken, starting again from 1 past the top.
std::int32_t SiteManager::takeNextId()
{
    std::int32_t id = nextId_;
    nextId_ = following(nextId_);
    if (id < 1) {
        id = nextId_;
        nextId_ = following(nextId_);
    }
    while (id < 1 || findSite(id)) {
        id = id < 1 ? 1 : following(id);
    }
    if (id >= nextId_) {
        nextId_ = following(id);
    }
    return id;
}

bool SiteManager::updateSite(int id, SiteProfile const& profile)
{
    auto* const stored = findSite(id);
    if (!stored) {
        return false;
    }
    SiteProfile copy = profile;
    normalizeForStorage(copy);
    // Ids read from a file may repeat, and may be -1, which hasDuplicate reads as "leave none
    // out": only the entry being changed is left out of the duplicate rule, so that no update
    // can make two entries the same connection, and an entry can always keep its own details.
    auto const isStored = [stored](SiteProfile const& site) { return &site == stored; };
    if (!isValidProfile(copy) || sameConnectionAsAnEntry(sites_, copy, isStored)) {
        return false;
    }
    copy.id = stored->id;
    *stored = std::move(copy);
    return true;
}

bool SiteManager::removeSite(int id)
{
    return std::erase_if(sites_, [id](SiteProfile const& site) { return site.id == id; }) > 0;
}

SiteProfile* SiteManager::findSite(int id)
{
    auto const it = std::find_if(sites_.begin(), sites_.end(), [id](SiteProfile const& site) { return site.id == id; });
    return it == sites_.end() ? nullptr : &*it;
}

SiteProfile const* SiteManager::findSite(int id) const
{
    return const_cast<SiteManager*>(this)->findSite(id);
}

bool SiteManager::setActive(int id, bool active)
{
    return changeIfFound(findSite(id), [active](SiteProfile& site) { site.status = active ? 1 : 2; });
}

bool SiteManager::setFavorite(int id, bool favorite)
{
    return changeIfFound(findSite(id), [favorite](SiteProfile& site) { site.favorite = favorite; });
}

bool SiteManager::setQuickConnect(int id, bool quickConnect)
{
    return changeIfFound(findSite(id), [quickConnect](SiteProfile& site) { site.quickConnect = quickConnect; });
}

bool SiteManager::setAutoConnect(int id, bool autoConnect)
{
    return changeIfFound(findSite(id), [autoConnect](SiteProfile& site) { site.autoConnect = autoConnect; });
}

std::int32_t SiteManager::cloneSite(int id, std::string const& label)
{
    auto const* const source = findSite(id);
    if (!source) {
        return 0;
    }
    SiteProfile copy = *source;
    copy.id = 0;
    copy.name = normalizeText(copy.name) + " (" + label + ")";
    copy.group = normalizeText(copy.group);
    copy.favorite = false;
    return addSite(std::move(copy));
}

std::vector<SiteProfile> SiteManager::listSites() const
{
    return sites_;
}

std::vector<SiteProfile> SiteManager::findByProtocol(std::string const& protocol) const
{
    auto const wanted = normalizeText(protocol);
    return copiesWhere(sites_, [&](SiteProfile const& site) { return normalizeText(site.protocol) == wanted; });
}

std::vector<SiteProfile> SiteManager::findByGroup(std::string const& group) const
{
    auto const wanted = normalizeText(group);
    return copiesWhere(sites_, [&](SiteProfile const& site) { return normalizeText(site.group) == wanted; });
}

std::vector<SiteProfile> SiteManager::findFavorites() const
{
    return copiesWhere(sites_, [](SiteProfile const& site) { return site.favorite; });
}

Snapshot SiteManager::snapshot() const
{
    Snapshot snapshot;
    snapshot.version = kCurrentSchemaVersion;
    snapshot.profiles = sites_;
    return snapshot;
}

void SiteManager::loadFromSnapshot(Snapshot const& snapshot)
{
    sites_.clear();
    nextId_ = 1;
    // Equivalent to hasDuplicate(copy, -1) against the entries accepted so far: every accepted
    // entry and every candidate is normalised, so stored and candidate keys are formed alike.
    std::unordered_set<std::string> acceptedConnections;
    acceptedConnections.reserve(snapshot.profiles.size());
    for (auto profile : snapshot.profiles) {
        normalizeForStorage(profile);
        if (!isValidProfile(profile) || !acceptedConnections.insert(storedConnectionKey(profile)).second) {
            continue;
        }
        if (profile.id >= nextId_) {
            nextId_ = following(profile.id);
        }
        sites_.push_back(std::move(profile));
    }
}

void SiteManager::normalizeForStorage(SiteProfile& profile) const
{
    profile.name = normalizeText(std::move(profile.name));
    profile.protocol = toLower(normalizeText(std::move(profile.protocol)));
    profile.host = normalizeText(std::move(profile.host));
    profile.user = normalizeText(std::move(profile.user));
    profile.group = normalizeText(std::move(profile.group));
    if (profile.group.empty()) {
        profile.group = "General";
    }
    if (profile.port <= 0 || profile.port >= 65536) {
        profile.port = 21;
    }
    if (profile.connectTimeoutMs <= 0) {
        profile.connectTimeoutMs = 10000;
    }
    if (profile.transferTimeoutMs <= 0) {
        profile.transferTimeoutMs = 60000;
    }
}

bool SiteManager::isValidProfile(SiteProfile const& profile) const
{
    auto const protocol = normalizeText(profile.protocol);
    return !normalizeText(profile.name).empty() && !protocol.empty() && isSupportedProtocol(protocol)
        && !normalizeText(profile.host).empty() && profile.port > 0 && profile.port < 65536;
}

bool SiteManager::hasDuplicate(SiteProfile const& profile, int excludedId) const
{
    return sameConnectionAsAnEntry(
        sites_, profile, [excludedId](SiteProfile const& site) { return excludedId != -1 && site.id == excludedId; });
}

std::string SiteManager::normalizeText(std::string text) const
{
    return trimmed(std::move(text));
}

} // namespace perchftp::storage
