#pragma once

#include <filesystem>
#include <string>

namespace perchftp::test {

// Makes libcurl's default trust (the system bundle) include `authorityCertificate` for this
// process only: the process moves into a private mount namespace of its own and bind-mounts a
// copy of the bundle with the certificate added over the system one. Nothing outside the process
// sees the change, and it ends with the process. Needs root; returns the reason when it can't.
std::string trustInPrivateMountNamespace(std::filesystem::path const& authorityCertificate);

} // namespace perchftp::test
