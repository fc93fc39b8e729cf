#include "fuzz_support.hpp"
#include "protocol/curl/listing_parser.hpp"

#include <algorithm>
#include <string_view>

using perchftp::fuzz::require;
using perchftp::protocol::RemoteEntry;
using perchftp::protocol::curl::detail::parseListing;

namespace {

bool isTrimmed(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

void requireSoundEntry(RemoteEntry const& entry)
{
    std::string_view const name = entry.name;
    require(!name.empty() && name != "." && name != ".." && name != "*");
    require(name.find('\n') == std::string_view::npos);
    require(!isTrimmed(name.front()) && !isTrimmed(name.back()));
    // Only a line read as columns is described, by its first column, which names a file type.
    if (!entry.permissions.empty()) {
        char const kind = entry.permissions.front();
        require(kind == '-' || kind == 'd' || kind == 'l');
        require(entry.permissions.find(' ') == std::string::npos);
    }
    require(entry.modifiedAt.empty() || !entry.permissions.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string_view const body(reinterpret_cast<char const*>(data), size);
    auto const ftp = parseListing(body, "ftp");
    auto const sftp = parseListing(body, "sftp");

    auto const lines = static_cast<std::size_t>(std::count(body.begin(), body.end(), '\n')) + 1;
    require(ftp.size() <= lines);
    require(ftp.size() == sftp.size());
    for (std::size_t index = 0; index < ftp.size(); ++index) {
        RemoteEntry const& entry = ftp[index];
        requireSoundEntry(entry);
        // The protocol decides only which column gives the size.
        RemoteEntry const& other = sftp[index];
        require(entry.name == other.name && entry.isDirectory == other.isDirectory
                && entry.permissions == other.permissions && entry.modifiedAt == other.modifiedAt);
    }
    return 0;
}
