#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

// What every fuzz target shares: a property check that stops the run, and a scratch folder of
// this process under $TMPDIR, removed when the run ends.
namespace perchftp::fuzz {

// A broken property aborts, so libFuzzer keeps the input that broke it.
inline void require(bool property)
{
    if (!property) {
        __builtin_trap();
    }
}

class ScratchFolder {
public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "perchftp-fuzz-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr);
        path_ = pattern;
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;

    std::string file(std::string const& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

inline ScratchFolder const& scratch()
{
    static ScratchFolder const folder;
    return folder;
}

inline void writeBytes(std::string const& path, std::uint8_t const* data, std::size_t size)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
    require(static_cast<bool>(out));
}

} // namespace perchftp::fuzz
