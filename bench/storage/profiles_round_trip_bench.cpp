// Saves and loads a snapshot of 10,000 distinct profiles through the site manager and the SQLite
// store, and prints the time against the 0.5 s target.
#include "storage/persistent_store.hpp"
#include "storage/site_manager.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>
#include <string>
#include <vector>

namespace {

using namespace perchftp::storage;

constexpr int kProfiles = 10000;
constexpr double kTargetSeconds = 0.5;

Snapshot distinctProfiles()
{
    Snapshot snapshot;
    for (int i = 1; i <= kProfiles; ++i) {
        SiteProfile profile;
        profile.id = i;
        profile.name = "  Customer site " + std::to_string(i) + " ";
        profile.protocol = i % 3 == 0 ? "SFTP" : (i % 3 == 1 ? "ftp" : "ftps");
        profile.host = " Host-" + std::to_string(i) + ".Example.com";
        profile.port = 2000 + i % 1000;
        profile.user = "deploy";
        profile.secretRef = "secret-" + std::to_string(i * 7919);
        profile.localRoot = "/home/user/sites/" + std::to_string(i);
        profile.remoteRoot = "/var/www/site-" + std::to_string(i);
        profile.group = i % 2 ? "Clients" : "";
        snapshot.profiles.push_back(profile);
    }
    return snapshot;
}

struct Timing {
    double seconds = 0;
    std::size_t loaded = 0;
};

Timing runOnce(Snapshot const& source, std::string const& path)
{
    std::filesystem::remove(path);
    auto const started = std::chrono::steady_clock::now();
    SiteManager manager;
    manager.loadFromSnapshot(source);
    auto const store = createFileStore(path);
    if (!store->save(manager.snapshot())) {
        std::fprintf(stderr, "save failed\n");
        std::exit(1);
    }
    auto const loaded = store->load();
    SiteManager reloaded;
    reloaded.loadFromSnapshot(loaded.value());
    Timing timing;
    timing.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    timing.loaded = reloaded.listSites().size();
    return timing;
}

} // namespace

int main()
{
    auto const folder = std::filesystem::temp_directory_path() / ("perchftp-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    auto const path = (folder / "perchftp-sites.db").string();
    auto const source = distinctProfiles();

    std::vector<double> runs;
    std::size_t loaded = 0;
    for (int run = 0; run < 5; ++run) {
        auto const timing = runOnce(source, path);
        runs.push_back(timing.seconds);
        loaded = timing.loaded;
    }
    std::filesystem::remove_all(folder);
    std::sort(runs.begin(), runs.end());
    double const median = runs[runs.size() / 2];
    std::printf("site storage: %d distinct profiles, loadFromSnapshot + snapshot + save + load + loadFromSnapshot\n",
        kProfiles);
    std::printf("  best %.3f s, median %.3f s over %zu runs; target %.1f s; median/target = %.2f; %zu profiles back\n",
        runs.front(), median, runs.size(), kTargetSeconds, median / kTargetSeconds, loaded);
    return loaded == static_cast<std::size_t>(kProfiles) ? 0 : 1;
}
