#pragma once

#include <filesystem>
#include <string>

namespace perchftp::test {

// A fresh folder under the system's temporary folder, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;

    std::filesystem::path const& path() const { return path_; }
    std::string file(std::string const& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

// The bytes of a file; empty when it can't be read.
std::string readFile(std::filesystem::path const& path);
void writeFile(std::filesystem::path const& path, std::string const& bytes);

} // namespace perchftp::test
