#pragma once

#include "storage/site_profile.hpp"

#include <istream>
#include <optional>
#include <string>

// Reader of the plain-text format that earlier versions kept under today's database name.
// Internal to storage; the store reaches it through load().
namespace perchftp::storage::detail {

// Whether the file begins with the 15 bytes "SQLite format 3". False for a file that cannot be
// opened or is shorter.
bool fileLooksLikeSqliteDatabase(std::string const& path);

// Empty only when the file cannot be opened or does not begin with two integers (the version and
// the profile count). Every other fault degrades to defaults or to fewer profiles.
std::optional<Snapshot> loadLegacySnapshotFromPath(std::string const& path);

// Each reads one item. On failure it stores the fallback, clears the stream's error state and
// returns false, leaving the input that failed to parse for the next read.
bool readOrDefault(std::istream& in, int& value, int fallback); // an integer, white space skipped first
bool readOrDefault(std::istream& in, bool& value, bool fallback); // an integer, true when not 0
bool readOrDefault(std::istream& in, std::string& value, std::string const& fallback); // the rest of the line

// One profile record; false at the first item that cannot be read.
bool readSiteProfile(std::istream& in, SiteProfile& profile);

Snapshot legacyToCurrent(Snapshot const& snapshot);

// A decimal integer at the start (after white space), letters behind it ignored; the fallback for
// an empty text, no number, or one out of the range of 32 bits.
int parseIntOrDefault(std::string const& text, int fallback);

} // namespace perchftp::storage::detail
