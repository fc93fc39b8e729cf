#include "support/servers/ftp_test_server.hpp"

#include <algorithm>
#include <fstream>

namespace perchftp::test {

FtpTestServer::FtpTestServer(FtpTestServerOptions options)
    : options_(std::move(options))
    , root_(folder_.path() / "root")
{
    std::filesystem::create_directories(root_);
    process_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"/usr/bin/python3", PERCHFTP_TEST_SERVERS_DIR "/ftp_test_server.py", root_.string(),
                                 folder_.path().string(), options_.user, options_.password,
                                 std::to_string(options_.throttleBytesPerSecond)},
        folder_.file("server.log"));
    waitUntil(*process_, folder_.file("server.log"), "the FTP test server",
              [this] { return std::filesystem::exists(folder_.file("port")); });
    port_ = std::stoi(readFile(folder_.file("port")));
}

void FtpTestServer::setListing(std::string const& folder, std::string const& body)
{
    // At the folder's own path below "lists", where the server looks for it.
    std::filesystem::path const place = folder_.path() / "lists" / std::filesystem::path(folder).relative_path();
    std::filesystem::create_directories(place);
    writeFile(place / ".listing", body);
}

void FtpTestServer::setReply(std::string const& command, std::string const& reply, int times)
{
    std::ofstream(folder_.file("replies.tsv"), std::ios::app) << command << '\t' << reply << '\t' << times << '\n';
}

std::vector<std::string> FtpTestServer::receivedCommands() const
{
    std::vector<std::string> lines;
    std::ifstream in(folder_.file("record.log"), std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> FtpTestServer::receivedCommands(std::vector<std::string> const& verbs) const
{
    std::vector<std::string> lines = receivedCommands();
    std::erase_if(lines, [&verbs](std::string const& line) {
        return std::ranges::none_of(
            verbs, [&line](auto const& verb) { return line == verb || line.starts_with(verb + " "); });
    });
    return lines;
}

} // namespace perchftp::test
