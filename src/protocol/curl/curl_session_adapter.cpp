#include "protocol/curl/curl_protocol.hpp"

#include "protocol/curl/command_ladders.hpp"
#include "protocol/curl/curl_handles.hpp"
#include "protocol/curl/listing_parser.hpp"
#include "protocol/curl/orderly_close.hpp"
#include "protocol/curl/remote_paths.hpp"
#include "protocol/protocol_factory.hpp"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace perchftp::protocol::curl {

namespace {

using detail::EasyHandle;

// Transfer buffers larger than libcurl's defaults (16 KiB down, 64 KiB up): on loopback they keep
// SFTP downloads from crawling in 16 KiB reads and cut the system calls of FTP transfers.
constexpr long kDownloadBufferSize = 256L * 1024;
constexpr long kUploadBufferSize = 256L * 1024;

SessionResult succeeded(std::string message)
{
    return {true, 0, std::move(message)};
}

SessionResult failed(std::int32_t code, std::string message)
{
    return {false, code, std::move(message)};
}

std::string curlText(CURLcode code)
{
    return curl_easy_strerror(code);
}

struct TransferProgressState {
    std::uint64_t total = 0;
    std::uint64_t lastTransferred = 0;
    TransferCallback callback;
    std::string path;
};

std::size_t writeToString(char* data, std::size_t size, std::size_t count, void* target)
{
    if (target == nullptr) {
        return 0;
    }
    std::size_t const bytes = size * count;
    static_cast<std::string*>(target)->append(data, bytes);
    return bytes;
}

std::size_t readFromFile(char* buffer, std::size_t size, std::size_t count, void* stream)
{
    auto* input = static_cast<std::ifstream*>(stream);
    if (input == nullptr || !input->is_open()) {
        return 0;
    }
    input->read(buffer, static_cast<std::streamsize>(size * count));
    return static_cast<std::size_t>(input->gcount());
}

// A failed write is not reported to libcurl: the transfer ends as if everything had been stored.
std::size_t writeToFile(char* buffer, std::size_t size, std::size_t count, void* stream)
{
    auto* output = static_cast<std::ofstream*>(stream);
    if (output == nullptr || !output->is_open()) {
        return 0;
    }
    std::size_t const bytes = size * count;
    output->write(buffer, static_cast<std::streamsize>(bytes));
    return bytes;
}

// Compares the total, not the current count, with the last report: once a transfer of unknown
// size has reported a positive count, it stays silent.
int progressCallback(void* state, curl_off_t downloadTotal, curl_off_t downloadNow, curl_off_t uploadTotal,
                     curl_off_t uploadNow)
{
    auto* progress = static_cast<TransferProgressState*>(state);
    if (progress == nullptr || !progress->callback) {
        return 0;
    }
    auto const total = static_cast<std::uint64_t>(downloadTotal > 0 ? downloadTotal : uploadTotal);
    auto const now = static_cast<std::uint64_t>(downloadNow > 0 ? downloadNow : uploadNow);
    if (total < progress->lastTransferred) {
        return 0;
    }
    progress->callback(TransferEventType::Progress, TransferProgress{progress->path, now, total});
    progress->lastTransferred = now;
    return 0;
}

bool openUploadSource(std::ifstream& input, std::string const& localPath, std::uint64_t& total)
{
    input.open(localPath, std::ios::binary);
    if (!input.is_open()) {
        return false;
    }
    input.seekg(0, std::ios::end);
    std::streamoff const end = input.tellg();
    total = end > 0 ? static_cast<std::uint64_t>(end) : 0;
    input.seekg(0, std::ios::beg);
    return true;
}

void attachUploadSource(CURL* curl, std::ifstream& input, std::uint64_t total)
{
    curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, readFromFile);
    curl_easy_setopt(curl, CURLOPT_READDATA, &input);
    curl_easy_setopt(curl, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(total));
    curl_easy_setopt(curl, CURLOPT_UPLOAD_BUFFERSIZE, kUploadBufferSize);
}

// Makes the missing folders and empties an existing file before anything has been fetched.
bool openDownloadTarget(std::ofstream& output, std::string const& localPath)
{
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(localPath).parent_path(), ignored);
    output.open(localPath, std::ios::binary | std::ios::trunc);
    return output.is_open();
}

void attachDownloadTarget(CURL* curl, std::ofstream& output)
{
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, writeToFile);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &output);
    curl_easy_setopt(curl, CURLOPT_BUFFERSIZE, kDownloadBufferSize);
}

class CurlSessionAdapter final : public IRemoteSession {
public:
    explicit CurlSessionAdapter(std::string const& protocol)
        : protocol_(protocol)
    {
    }

    SessionResult connect(std::string const& host, int port, std::string const& username,
                          std::string const& password) override;
    SessionResult disconnect() override;
    SessionResult list(std::string const& path, std::vector<RemoteEntry>& entries) override;
    SessionResult upload(TransferParams const& params, TransferCallback callback) override;
    SessionResult download(TransferParams const& params, TransferCallback callback) override;
    SessionResult rename(std::string const& from, std::string const& to) override;
    SessionResult remove(std::string const& path) override;
    SessionResult mkdir(std::string const& path) override;
    SessionResult chmod(std::string const& path, int mode) override;
    bool isConnected() const override { return connected_; }

private:
    SessionResult connectProbe();
    EasyHandle makeHandle(std::string const& path) const;
    SessionResult performList(std::string const& path, std::vector<RemoteEntry>& entries);
    SessionResult performTransfer(std::string const& localPath, std::string const& remotePath, bool isUpload,
                                  TransferCallback const& callback);
    SessionResult performCommand(std::string const& path, std::vector<std::string> const& commands);
    SessionResult performCommandAtContext(std::string const& contextPath, std::vector<std::string> const& commands);
    SessionResult climb(detail::CommandLadder const& ladder, SessionResult failure);
    bool hasEndpoint() const { return !host_.empty() && port_ > 0; }

    bool connected_ = false;
    // The folder the server puts a login in, as its answer to PWD during the probe said; "" when
    // unknown. Every handle logs in anew there, so the ladders read relative commands against it.
    std::string loginFolder_;
    std::string host_;
    std::string username_;
    std::string password_;
    int port_ = 0;
    std::string const protocol_;
};

EasyHandle CurlSessionAdapter::makeHandle(std::string const& path) const
{
    EasyHandle handle(curl_easy_init());
    if (!handle) {
        return handle;
    }
    std::string const url = detail::baseUrl(host_, port_, username_, password_, protocol_)
                            + detail::normalizePath(path);
    CURL* const curl = handle.get();
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, 10L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 60L);
    curl_easy_setopt(curl, CURLOPT_VERBOSE, 0L);
    if (detail::isFtpFamily(protocol_)) {
        curl_easy_setopt(curl, CURLOPT_FTP_SKIP_PASV_IP, 1L);
    }
    if (protocol_ == "ftps") {
        curl_easy_setopt(curl, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
        curl_easy_setopt(curl, CURLOPT_CLOSESOCKETFUNCTION, detail::closeSocketInOrder);
    }
    return handle;
}

SessionResult CurlSessionAdapter::connect(std::string const& host, int port, std::string const& username,
                                          std::string const& password)
{
    host_ = host;
    port_ = port;
    username_ = username;
    password_ = password;
    loginFolder_.clear();
    if (!hasEndpoint()) {
        connected_ = false;
        return failed(1, protocol_ + " connect: invalid endpoint");
    }
    SessionResult probe = connectProbe();
    connected_ = probe.ok;
    if (probe.ok) {
        return succeeded(protocol_ + " connect");
    }
    return probe;
}

// Connected means: libcurl reached the server and logged in on the bare URL, fetching nothing.
SessionResult CurlSessionAdapter::connectProbe()
{
    if (!hasEndpoint()) {
        return failed(1, protocol_ + " connect: invalid endpoint");
    }
    EasyHandle handle = makeHandle("");
    if (!handle) {
        return failed(1, protocol_ + " connect: cannot initialize curl");
    }
    curl_easy_setopt(handle.get(), CURLOPT_NOBODY, 1L);
    CURLcode const result = curl_easy_perform(handle.get());
    if (result != CURLE_OK) {
        return failed(1, protocol_ + " connect: " + curlText(result));
    }
    char* entryPath = nullptr;
    if (curl_easy_getinfo(handle.get(), CURLINFO_FTP_ENTRY_PATH, &entryPath) == CURLE_OK && entryPath != nullptr) {
        loginFolder_ = entryPath;
    }
    return succeeded(protocol_ + " connect");
}

SessionResult CurlSessionAdapter::disconnect()
{
    connected_ = false;
    return succeeded(protocol_ + " disconnect");
}

SessionResult CurlSessionAdapter::list(std::string const& path, std::vector<RemoteEntry>& entries)
{
    return performList(path, entries);
}

SessionResult CurlSessionAdapter::performList(std::string const& path, std::vector<RemoteEntry>& entries)
{
    if (!connected_) {
        return failed(1, protocol_ + " list: not connected");
    }
    std::string const context = detail::isFtpFamily(protocol_) ? detail::listContextPath(path) : path;
    EasyHandle handle = makeHandle(context);
    if (!handle) {
        return failed(1, protocol_ + " list: cannot initialize curl");
    }
    std::string body;
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, writeToString);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &body);
    CURLcode const result = curl_easy_perform(handle.get());
    handle.reset();
    if (result != CURLE_OK) {
        return failed(1, protocol_ + " list: " + curlText(result));
    }
    entries = detail::parseListing(body, protocol_);
    return succeeded(protocol_ + " list");
}

SessionResult CurlSessionAdapter::upload(TransferParams const& params, TransferCallback callback)
{
    return performTransfer(params.localPath, params.remotePath, true, callback);
}

SessionResult CurlSessionAdapter::download(TransferParams const& params, TransferCallback callback)
{
    return performTransfer(params.localPath, params.remotePath, false, callback);
}

SessionResult CurlSessionAdapter::performTransfer(std::string const& localPath, std::string const& remotePath,
                                                  bool isUpload, TransferCallback const& callback)
{
    std::string const label = isUpload ? " upload: " : " download: ";
    if (!connected_) {
        return failed(1, protocol_ + label + "not connected");
    }
    if (localPath.empty() || remotePath.empty()) {
        return failed(3, protocol_ + label + "invalid path");
    }
    EasyHandle handle = makeHandle(remotePath);
    if (!handle) {
        return failed(1, protocol_ + label + "cannot initialize curl");
    }
    CURL* const curl = handle.get();
    std::uint64_t total = 0;
    std::ifstream input;
    std::ofstream output;
    if (isUpload) {
        if (!openUploadSource(input, localPath, total)) {
            return failed(3, protocol_ + " upload: local file not found");
        }
        if (callback) {
            callback(TransferEventType::Started, TransferProgress{localPath, 0, total});
        }
        attachUploadSource(curl, input, total);
    } else {
        if (!openDownloadTarget(output, localPath)) {
            return failed(3, protocol_ + " download: cannot open local path");
        }
        attachDownloadTarget(curl, output);
    }

    TransferProgressState state{total, 0, callback, localPath};
    if (callback) {
        curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, progressCallback);
        curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &state);
    }
    CURLcode const result = curl_easy_perform(curl);
    handle.reset();

    if (callback) {
        if (result == CURLE_OK) {
            callback(TransferEventType::Completed, TransferProgress{localPath, total, total});
        } else {
            callback(TransferEventType::Failed, TransferProgress{localPath, state.lastTransferred, state.total});
        }
    }
    if (result != CURLE_OK) {
        return failed(5, protocol_ + label + curlText(result));
    }
    return succeeded(protocol_ + (isUpload ? " upload" : " download"));
}

// Commands go out straight after login. libcurl then carries on with the ordinary request for the
// context URL (a listing or a file fetch), whose body lands on standard output since no write
// callback is set; its result judges the commands and that request together.
SessionResult CurlSessionAdapter::performCommandAtContext(std::string const& contextPath,
                                                          std::vector<std::string> const& commands)
{
    if (!connected_) {
        return failed(1, protocol_ + " operation: not connected");
    }
    EasyHandle handle = makeHandle(contextPath);
    if (!handle) {
        return failed(1, protocol_ + " operation: cannot initialize curl");
    }
    detail::StringList quote;
    for (std::string const& command : commands) {
        curl_slist* const appended = curl_slist_append(quote.get(), command.c_str());
        if (appended != nullptr) {
            (void)quote.release();
            quote.reset(appended);
        }
    }
    curl_easy_setopt(handle.get(), CURLOPT_QUOTE, quote.get());
    CURLcode const result = curl_easy_perform(handle.get());
    handle.reset();
    quote.reset();
    if (result != CURLE_OK) {
        return failed(1, protocol_ + " operation failed: " + curlText(result));
    }
    return succeeded(protocol_ + " operation");
}

SessionResult CurlSessionAdapter::performCommand(std::string const& path, std::vector<std::string> const& commands)
{
    if (!connected_) {
        return failed(1, protocol_ + " operation: not connected");
    }
    std::string const context = detail::isFtpFamily(protocol_) ? detail::commandContextPath(path) : path;
    return performCommandAtContext(context, commands);
}

// Runs the attempts in order until one works. When none does, the caller sees the failure of the
// first attempt, or the ladder's own failure when it has no attempt at all.
SessionResult CurlSessionAdapter::climb(detail::CommandLadder const& ladder, SessionResult failure)
{
    bool replaced = false;
    for (detail::CommandAttempt const& attempt : ladder) {
        SessionResult result = performCommandAtContext(attempt.context, attempt.commands);
        if (result.ok) {
            return result;
        }
        if (!replaced) {
            failure = std::move(result);
            replaced = true;
        }
    }
    return failure;
}

SessionResult CurlSessionAdapter::rename(std::string const& from, std::string const& to)
{
    if (!connected_) {
        return failed(1, protocol_ + " rename: not connected");
    }
    if (!detail::isFtpFamily(protocol_)) {
        return performCommand(from, {"RNFR " + from, "RNTO " + to});
    }
    return climb(detail::renameLadder(from, to, loginFolder_),
                 failed(1, protocol_ + " rename failed: unknown rename failure"));
}

SessionResult CurlSessionAdapter::remove(std::string const& path)
{
    if (!connected_) {
        return failed(1, protocol_ + " delete: not connected");
    }
    if (!detail::isFtpFamily(protocol_)) {
        return performCommand(path, {"DELE " + path});
    }
    return climb(detail::removeLadder(path, loginFolder_),
                 failed(1, protocol_ + " operation failed: unknown delete failure"));
}

SessionResult CurlSessionAdapter::mkdir(std::string const& path)
{
    if (!connected_) {
        return failed(1, protocol_ + " mkdir: not connected");
    }
    if (!detail::isFtpFamily(protocol_)) {
        return performCommand(path, {"MKD " + path});
    }
    return climb(detail::mkdirLadder(path, loginFolder_),
                 failed(1, protocol_ + " operation failed: unknown mkdir failure"));
}

// The mode goes out in decimal as it came: the digits the server sees are those of the number.
SessionResult CurlSessionAdapter::chmod(std::string const& path, int mode)
{
    if (!connected_) {
        return failed(1, protocol_ + " chmod: not connected");
    }
    if (mode < 0) {
        return failed(4, protocol_ + " chmod: invalid mode");
    }
    if (protocol_ == "sftp") {
        return succeeded(protocol_ + " chmod (SFTP passthrough)");
    }
    return performCommand(path, {"SITE CHMOD " + std::to_string(mode) + " " + path});
}

IRemoteSession* makeFtpSession()
{
    return new CurlSessionAdapter("ftp");
}

IRemoteSession* makeFtpsSession()
{
    return new CurlSessionAdapter("ftps");
}

IRemoteSession* makeSftpSession()
{
    return new CurlSessionAdapter("sftp");
}

} // namespace

void registerCurlProtocolAdapters()
{
    ProtocolFactory::registerProtocol("ftp", makeFtpSession);
    ProtocolFactory::registerProtocol("ftps", makeFtpsSession);
    ProtocolFactory::registerProtocol("sftp", makeSftpSession);
}

} // namespace perchftp::protocol::curl
