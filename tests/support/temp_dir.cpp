#include "support/temp_dir.hpp"

#include "support/servers/child_process.hpp"

#include <fstream>
#include <iterator>

namespace perchftp::test {

TempDir::TempDir()
    : path_(makeScratchFolder("perchftp-test"))
{
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string readFile(std::filesystem::path const& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeFile(std::filesystem::path const& path, std::string const& bytes)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

} // namespace perchftp::test
