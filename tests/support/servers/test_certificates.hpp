#pragma once

#include "support/temp_dir.hpp"

#include <filesystem>
#include <string>

namespace perchftp::test {

// A throwaway certificate authority and a server certificate for 127.0.0.1 and localhost signed
// by it, made with the openssl command line in a temporary folder that goes with this object.
class TestCertificates {
public:
    TestCertificates();

    std::filesystem::path authorityCertificate() const { return folder_.file("ca.pem"); }
    std::filesystem::path serverCertificate() const { return folder_.file("server.pem"); }
    std::filesystem::path serverKey() const { return folder_.file("server.key"); }

private:
    TempDir folder_;
};

// Makes libcurl's default trust (the system bundle) include `authorityCertificate` for this
// process only: the process moves into a private mount namespace of its own and bind-mounts a
// copy of the bundle with the certificate added over the system one. Nothing outside the process
// sees the change, and it ends with the process. Needs root; returns the reason when it can't.
std::string trustInPrivateMountNamespace(std::filesystem::path const& authorityCertificate);

} // namespace perchftp::test
