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
// the id, "r" removes it, "c" clones it with the name as label; a run of "l" lines is loaded as
// one snapshot, each with its own id.
struct Step {
    char op = 0;
    SiteProfile profile;
};

std::int32_t number(std::string_view text)
{
    std::int32_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string_view nextField(std::string_view& line)
{
    auto const end = line.find('|');
    auto const field = line.substr(0, end);
    line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
    return field;
}

Step parseStep(std::string_view line)
{
    Step step;
    step.op = line.empty() ? 0 : line.front();
    nextField(line);
    auto& profile = step.profile;
    profile.id = number(nextField(line));
    profile.name = nextField(line);
    profile.protocol = nextField(line);
    profile.host = nextField(line);
    profile.port = number(nextField(line));
    profile.user = nextField(line);
    profile.group = nextField(line);
    profile.secretRef = nextField(line);
    return step;
}

bool taken(std::vector<SiteProfile> const& sites, std::int32_t id)
{
    return std::any_of(sites.begin(), sites.end(), [id](SiteProfile const& site) { return site.id == id; });
}

// A new id is positive and held by no entry before; a refusal changes nothing.
void requireFreshIdOrNothing(std::int32_t id, std::vector<SiteProfile> const& before, SiteManager const& sites)
{
    auto const after = sites.listSites();
    if (id == 0) {
        require(after == before);
        return;
    }
    require(id > 0 && !taken(before, id));
    require(after.size() == before.size() + 1 && after.back().id == id);
}

void apply(Step const& step, SiteManager& sites)
{
    auto const before = sites.listSites();
    auto const id = step.profile.id;
    switch (step.op) {
    case 'a':
        requireFreshIdOrNothing(sites.addSite(step.profile), before, sites);
        break;
    case 'c':
        requireFreshIdOrNothing(sites.cloneSite(id, step.profile.name), before, sites);
        break;
    case 'u':
        if (!sites.updateSite(id, step.profile)) {
            require(sites.listSites() == before);
        }
        break;
    case 'r':
        require(sites.removeSite(id) == taken(before, id));
        require(!taken(sites.listSites(), id));
        break;
    default:
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string_view text(reinterpret_cast<char const*>(data), size);
    SiteManager sites;
    Snapshot loading;
    while (!text.empty()) {
        auto const end = text.find('\n');
        Step const step = parseStep(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (step.op == 'l') {
            loading.profiles.push_back(step.profile);
            continue;
        }
        if (!loading.profiles.empty()) {
            sites.loadFromSnapshot(std::exchange(loading, Snapshot{}));
        }
        apply(step, sites);
        // Every entry is stored clean, valid and unique: loading the manager's own snapshot keeps
        // all of them unchanged.
        require(SiteManager(sites.snapshot()).listSites() == sites.listSites());
    }
    return 0;
}
