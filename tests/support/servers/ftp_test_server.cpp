#include "support/servers/ftp_test_server.hpp"

#include <fstream>

namespace perchftp::test {

namespace {

void writeBytes(std::filesystem::path const& path, std::string const& bytes, std::ios::openmode mode)
{
    std::ofstream(path, std::ios::binary | mode) << bytes;
}

} // namespace

FtpTestServer::FtpTestServer(FtpTestServerOptions options)
    : options_(std::move(options))
    , folder_(makeScratchFolder("perchftp-ftp"))
    , root_(folder_ / "root")
    , control_(folder_ / "control")
{
    std::filesystem::create_directories(root_);
    std::filesystem::create_directories(control_ / "lists");
    std::filesystem::path const portFile = folder_ / "port";
    std::vector<std::string> argv = {"/usr/bin/python3", PERCHFTP_TEST_SERVERS_DIR "/ftp_test_server.py",
                                     root_.string(), control_.string(), portFile.string(), options_.user,
                                     options_.password, std::to_string(options_.throttleBytesPerSecond)};
    if (options_.implicitTls) {
        argv.insert(argv.end(), {options_.certificateFile.string(), options_.keyFile.string()});
    }
    process_ = std::make_unique<ChildProcess>(argv, folder_ / "server.log");
    try {
        waitUntil(*process_, folder_ / "server.log", "the FTP test server",
                  [&] { return std::filesystem::exists(portFile); });
    } catch (...) {
        process_.reset();
        std::filesystem::remove_all(folder_);
        throw;
    }
    port_ = std::stoi(readBytes(portFile));
}

FtpTestServer::~FtpTestServer()
{
    process_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::filesystem::path FtpTestServer::local(std::string const& remotePath) const
{
    return root_ / remotePath.substr(std::min(remotePath.find_first_not_of('/'), remotePath.size()));
}

void FtpTestServer::setListing(std::string const& folder, std::string const& body)
{
    // Named by the hex of the folder without trailing slashes, as the server looks it up.
    std::string key = folder.substr(0, std::max<std::size_t>(folder.find_last_not_of('/') + 1, 1));
    std::string hex;
    for (unsigned char const c : key.empty() ? std::string("/") : key) {
        hex += "0123456789abcdef"[c >> 4];
        hex += "0123456789abcdef"[c & 0x0f];
    }
    writeBytes(control_ / "lists" / hex, body, std::ios::trunc);
}

void FtpTestServer::setReply(std::string const& command, std::string const& reply, int times)
{
    writeBytes(control_ / "replies.tsv", command + "\t" + reply + "\t" + std::to_string(times) + "\n", std::ios::app);
}

void FtpTestServer::clearReplies()
{
    std::filesystem::remove(control_ / "replies.tsv");
}

std::vector<std::string> FtpTestServer::receivedCommands() const
{
    std::vector<std::string> lines;
    std::ifstream in(control_ / "record.log", std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> FtpTestServer::receivedCommands(std::vector<std::string> const& verbs) const
{
    std::vector<std::string> matching;
    for (std::string const& line : receivedCommands()) {
        for (std::string const& verb : verbs) {
            if (line == verb || line.starts_with(verb + " ")) {
                matching.push_back(line);
                break;
            }
        }
    }
    return matching;
}

void FtpTestServer::clearReceivedCommands()
{
    std::filesystem::remove(control_ / "record.log");
}

void FtpTestServer::kill()
{
    if (process_) {
        process_->kill();
    }
}

} // namespace perchftp::test
