#include "app/pane/pane_local_listing.hpp"

#include "app/pane/pane_file_names.hpp"
#include "app/pane/pane_paths.hpp"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace perchftp::app::detail {

namespace {

fs::path nativePath(QString const& path)
{
    return fs::path(encodeFileName(path));
}

struct NamedChild {
    QString name;
    bool dir = false;
};

} // namespace

bool isLocalDirectory(QString const& path)
{
    std::error_code error;
    return !path.isEmpty() && fs::is_directory(nativePath(path), error);
}

LocalListing listLocalDirectory(QString const& folder)
{
    LocalListing listing;
    std::error_code error;
    fs::directory_iterator children(nativePath(folder), error);
    std::vector<NamedChild> named;
    for (; !error && children != fs::directory_iterator(); children.increment(error)) {
        std::error_code statError;
        // is_directory follows links, so a link to a folder is a folder and a broken link a file.
        bool const dir = fs::is_directory(children->path(), statError);
        named.push_back({decodeFileName(children->path().filename().native()), dir});
    }
    if (error) {
        listing.error = QString::fromStdString(error.message());
        return listing;
    }
    std::sort(named.begin(), named.end(), [](NamedChild const& left, NamedChild const& right) {
        int const order = left.name.compare(right.name, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : left.name < right.name;
    });
    listing.readable = true;
    listing.entries.reserve(qsizetype(named.size()));
    for (NamedChild& child : named) {
        PaneEntry entry;
        entry.path = appendingPathComponent(folder, child.name);
        entry.name = displayFileName(child.name);
        entry.dir = child.dir;
        listing.entries.append(std::move(entry));
    }
    return listing;
}

} // namespace perchftp::app::detail
