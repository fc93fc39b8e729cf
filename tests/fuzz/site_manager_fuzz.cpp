#include "fuzz_support.hpp"
#include "storage/site_manager.hpp"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

using namespace perchftp::storage;
using perchftp::fuzz::require;

namespace {

// One line per step: "op|id|name|protocol|host|port|user|group|secret". Op "a" adds, "u" updates
// the id, "r" removes it; a run of "l" lines is loaded as one snapshot, each with its own id.
SiteProfile profileOf(std::string_view line)
{
    std::string fields[9];
    for (auto& field : fields) {
        auto const end = std::min(line.find('|'), line.size());
        field = line.substr(0, end);
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    auto const number = [](std::string const& text) {
        std::int32_t value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    };
    SiteProfile profile;
    profile.id = number(fields[1]);
    profile.name = fields[2];
    profile.protocol = fields[3];
    profile.host = fields[4];
    profile.port = number(fields[5]);
    profile.user = fields[6];
    profile.group = fields[7];
    profile.secretRef = fields[8];
    return profile;
}

bool taken(std::vector<SiteProfile> const& sites, std::int32_t id)
{
    return std::any_of(sites.begin(), sites.end(), [id](SiteProfile const& site) { return site.id == id; });
}

// A new id is positive and held by no entry before; a refused change changes nothing.
void apply(char op, SiteProfile const& profile, SiteManager& sites)
{
    auto const before = sites.listSites();
    auto const id = profile.id;
    if (op == 'a') {
        auto const added = sites.addSite(profile);
        auto const after = sites.listSites();
        require(added == 0 ? after == before
                           : added > 0 && !taken(before, added) && after.size() == before.size() + 1
                                 && after.back().id == added);
    } else if (op == 'u' && !sites.updateSite(id, profile)) {
        require(sites.listSites() == before);
    } else if (op == 'r') {
        require(sites.removeSite(id) == taken(before, id) && !taken(sites.listSites(), id));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string_view text(reinterpret_cast<char const*>(data), size);
    SiteManager sites;
    Snapshot loading;
    while (!text.empty()) {
        auto const end = std::min(text.find('\n'), text.size());
        char const op = text.front();
        SiteProfile const profile = profileOf(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (op == 'l') {
            loading.profiles.push_back(profile);
            continue;
        }
        if (!loading.profiles.empty()) {
            sites.loadFromSnapshot(std::exchange(loading, Snapshot{}));
        }
        apply(op, profile, sites);
        // Every entry is stored clean, valid and unique: loading the manager's own snapshot keeps
        // all of them unchanged.
        require(SiteManager(sites.snapshot()).listSites() == sites.listSites());
    }
    return 0;
}
