#pragma once

#include <filesystem>
#include <string_view>

// Files and folders that hold secrets or ids are the user's alone: folders this program makes are
// 0700 and such files are 0600, whatever the umask. Internal to the core.
namespace perchftp::platform::detail {

// Makes every missing level of the folder, each 0700; existing levels are left as they are.
// False with the reason in error when a level cannot be made (a file stands in the way, say).
bool createPrivateDirectories(std::filesystem::path const& folder, std::error_code& error);

// Creates the file empty with mode 0600 if it is missing, or narrows an existing one to 0600.
// False when it can be neither created nor changed.
bool createPrivateFile(std::filesystem::path const& file);

// Narrows an existing file to 0600; false when it is missing or cannot be changed.
bool restrictToOwner(std::filesystem::path const& file);

// Opens the file for writing with truncation as 0600, writes the bytes and closes it. False only
// when it cannot be opened; a short write is not reported.
bool writePrivateFile(std::filesystem::path const& file, std::string_view bytes);

} // namespace perchftp::platform::detail
