#pragma once

#include <optional>
#include <string>
#include <string_view>

// A process-wide, in-memory credential cache under a master key and a lock flag.
// Secrets are combined with the key by a repeating exclusive-or: obscurity, not protection.
namespace perchftp::security {

struct Credentials {
    std::string user;
    std::string secret;
};

// Always true. Empties the cache; a non-empty key leaves the vault locked until unlock(key).
bool initialize(std::string_view masterKey);

// Refused before initialize, while locked, or when any argument is empty.
bool storeCredential(std::string const& key, std::string const& user, std::string const& secret);

// The secret comes back repeated or cut to the size of the master key.
std::optional<Credentials> readCredential(std::string const& key);

// Works whether or not the vault is initialised or locked.
bool removeCredential(std::string const& key);

bool rotateCredentialKey(std::string const& oldKey, std::string const& newKey);

bool isLocked();
bool lock();
bool unlock(std::string_view candidate);
void clear();

} // namespace perchftp::security
