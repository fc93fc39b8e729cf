#include "fuzz_support.hpp"
#include "platform/install_tracker.hpp"

#include <iterator>
#include <limits>

using perchftp::fuzz::require;
using perchftp::platform::InstallTracker;

namespace {

// No endpoint: nothing ever leaves the process.
InstallTracker trackerFor(std::string const& statePath)
{
    return InstallTracker({statePath, "", "0.1.0", "linux", "", std::chrono::hours(72)});
}

std::string contentOf(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const path = perchftp::fuzz::scratchFile("install-tracker.state", data, size);
    InstallTracker tracker = trackerFor(path);
    require(tracker.loadState());
    // Whatever times the file holds, the heartbeat's arithmetic must not overflow (UBSan watches).
    for (long long const now : {0LL, std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max()}) {
        static_cast<void>(tracker.shouldSendHeartbeat(now));
    }
    std::string const idBefore = tracker.installId();
    require(tracker.ensureInstallId());
    require(idBefore.empty() ? tracker.installId().size() == 36 : tracker.installId() == idBefore);

    // The saved state is four lines, and it reads back as itself.
    require(tracker.saveState());
    std::string const saved = contentOf(path);
    require(saved.rfind("install_id=", 0) == 0 && std::count(saved.begin(), saved.end(), '\n') == 4);
    InstallTracker reread = trackerFor(path);
    require(reread.loadState() && reread.saveState());
    require(contentOf(path) == saved);
    return 0;
}
