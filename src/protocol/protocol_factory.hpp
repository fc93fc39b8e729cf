#pragma once

#include "protocol/remote_session.hpp"

namespace perchftp::protocol {

// Turns a protocol name into a new session. The built-in protocols are registered by the first
// create(); names are matched exactly ("ftp" is found, "FTP" is not).
class ProtocolFactory {
public:
    // Stores maker under name, replacing any maker registered there before.
    static void registerProtocol(char const* name, IRemoteSession* (*maker)());
    // A new session that the caller owns, or nullptr when no maker is registered under name.
    static IRemoteSession* create(char const* name);
};

// Registers the built-in protocols, once per process. Not thread-safe.
void ensureDefaultProtocolAdapters();

} // namespace perchftp::protocol
