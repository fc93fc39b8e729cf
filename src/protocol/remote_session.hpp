#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace perchftp::protocol {

// The outcome of a session operation. The message is filled on success too and always begins
// with the session's protocol name.
struct SessionResult {
    bool ok = false;
    std::int32_t code = 0; // 0 success, 1 session/connection, 3 local path, 4 mode, 5 transfer
    std::string message;
};

struct RemoteEntry {
    std::string name;
    bool isDirectory = false;
    std::uint64_t size = 0;     // bytes, 0 when not known
    std::string permissions;    // as the server printed it, empty when not known
    std::string modifiedAt;     // the server's date columns joined by single blanks, never parsed
};

struct TransferParams {
    std::string localPath;
    std::string remotePath;
    bool transferFlag = false; // not read by any session
};

struct TransferProgress {
    std::string path; // the local path, for uploads and downloads alike
    std::uint64_t transferred = 0;
    std::uint64_t total = 0; // 0 when not known
};

enum class TransferEventType {
    Started = 0,
    Progress = 1,
    Completed = 2,
    Failed = 3,
};

// May be empty; called on the caller's thread from inside the blocking transfer.
using TransferCallback = std::function<void(TransferEventType, TransferProgress const&)>;

// A remote server behind one protocol. Every operation is synchronous and blocks until the
// remote work is done. A session holds no open connection: each operation logs in anew.
class IRemoteSession {
public:
    virtual ~IRemoteSession() = default;

    virtual SessionResult connect(std::string const& host, int port, std::string const& username,
                                  std::string const& password) = 0;
    virtual SessionResult disconnect() = 0;
    virtual SessionResult list(std::string const& path, std::vector<RemoteEntry>& entries) = 0;
    virtual SessionResult upload(TransferParams const& params, TransferCallback callback) = 0;
    virtual SessionResult download(TransferParams const& params, TransferCallback callback) = 0;
    virtual SessionResult rename(std::string const& from, std::string const& to) = 0;
    virtual SessionResult remove(std::string const& path) = 0;
    virtual SessionResult mkdir(std::string const& path) = 0;
    virtual SessionResult chmod(std::string const& path, int mode) = 0;
    // True when the last connect probe worked; nothing else changes it but disconnect.
    virtual bool isConnected() const = 0;
};

} // namespace perchftp::protocol
