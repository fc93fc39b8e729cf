#include "support/servers/ftp_test_server.hpp"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace perchftp::test {

namespace {

std::string hexOf(std::string const& text)
{
    static char const digits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char const c : text) {
        hex += digits[c >> 4];
        hex += digits[c & 0x0f];
    }
    return hex;
}

std::string folderKey(std::string folder)
{
    while (folder.size() > 1 && folder.back() == '/') {
        folder.pop_back();
    }
    return folder.empty() ? "/" : folder;
}

void writeBytes(std::filesystem::path const& path, std::string const& bytes, std::ios::openmode mode)
{
    std::ofstream out(path, std::ios::binary | mode);
    out << bytes;
}

} // namespace

std::filesystem::path testServersFolder()
{
    return PERCHFTP_TEST_SERVERS_DIR;
}

FtpTestServer::FtpTestServer(FtpTestServerOptions options)
    : options_(std::move(options))
    , folder_(makeScratchFolder("perchftp-ftp"))
    , root_(folder_ / "root")
    , control_(folder_ / "control")
{
    std::filesystem::create_directories(root_);
    std::filesystem::create_directories(control_ / "lists");
    std::filesystem::path const portFile = folder_ / "port";
    std::vector<std::string> argv = {"/usr/bin/python3", (testServersFolder() / "ftp_test_server.py").string(),
                                     "--root", root_.string(), "--control", control_.string(),
                                     "--port-file", portFile.string(), "--user", options_.user,
                                     "--password", options_.password};
    if (options_.implicitTls) {
        argv.insert(argv.end(), {"--implicit-tls", "--cert", options_.certificateFile.string(), "--key",
                                 options_.keyFile.string()});
    }
    if (options_.throttleBytesPerSecond > 0) {
        argv.insert(argv.end(), {"--throttle", std::to_string(options_.throttleBytesPerSecond)});
    }
    process_ = std::make_unique<ChildProcess>(argv, folder_ / "server.log");

    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!std::filesystem::exists(portFile)) {
        if (!process_->running() || std::chrono::steady_clock::now() > deadline) {
            std::string const log = readBytes(folder_ / "server.log");
            process_.reset();
            std::filesystem::remove_all(folder_);
            throw std::runtime_error("the FTP test server did not start: " + log);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
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
    std::string relative = remotePath;
    while (!relative.empty() && relative.front() == '/') {
        relative.erase(0, 1);
    }
    return root_ / relative;
}

void FtpTestServer::setListing(std::string const& folder, std::string const& body)
{
    writeBytes(control_ / "lists" / hexOf(folderKey(folder)), body, std::ios::trunc);
}

void FtpTestServer::setDefaultListing(std::string const& body)
{
    writeBytes(control_ / "lists" / "default", body, std::ios::trunc);
}

void FtpTestServer::setReply(std::string const& command, std::string const& reply, int times)
{
    std::string rule = command;
    rule.append("\t").append(reply);
    if (times >= 0) {
        rule.append("\t").append(std::to_string(times));
    }
    rule.append("\n");
    writeBytes(control_ / "replies.tsv", rule, std::ios::app);
}

void FtpTestServer::clearReplies()
{
    std::error_code ignored;
    std::filesystem::remove(control_ / "replies.tsv", ignored);
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
            if (line == verb || line.rfind(verb + " ", 0) == 0) {
                matching.push_back(line);
                break;
            }
        }
    }
    return matching;
}

void FtpTestServer::clearReceivedCommands()
{
    std::error_code ignored;
    std::filesystem::remove(control_ / "record.log", ignored);
}

void FtpTestServer::kill()
{
    if (process_) {
        process_->kill();
    }
}

} // namespace perchftp::test
