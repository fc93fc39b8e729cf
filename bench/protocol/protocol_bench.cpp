// Figures for the remote session: listing parse speed, and large transfers through the session
// against the curl command line (and OpenSSH's sftp) on the same loopback servers, in one run.
// Usage: protocol_bench [megabytes]   (default 1024; SFTP figures need root for the test user)
#include "bench_figures.hpp"
#include "protocol/curl/listing_parser.hpp"
#include "protocol/protocol_factory.hpp"
#include "support/servers/child_process.hpp"
#include "support/servers/ftp_test_server.hpp"
#include "support/servers/sshd_test_server.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <time.h>
#include <vector>

namespace {

using perchftp::bench::median;

using namespace perchftp;
using Clock = std::chrono::steady_clock;

double timeSeconds(std::function<void()> const& work)
{
    auto const start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double cpuSeconds(std::function<void()> const& work)
{
    timespec start{};
    timespec end{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &start);
    work();
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
    return static_cast<double>(end.tv_sec - start.tv_sec) + static_cast<double>(end.tv_nsec - start.tv_nsec) * 1e-9;
}

long peakResidentKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void require(bool condition, char const* what)
{
    if (!condition) {
        std::fprintf(stderr, "failed: %s\n", what);
        std::exit(1);
    }
}

std::string unixListing(int lines)
{
    std::string body = "total 100000\r\n";
    for (int i = 0; i < lines; ++i) {
        body += "-rw-r--r--   1 owner    group    " + std::to_string(1000 + i) + " Jan  5 10:30 file-"
                + std::to_string(i) + ".txt\r\n";
    }
    return body;
}

void benchListing(test::FtpTestServer& server)
{
    std::string const body = unixListing(100000);
    std::vector<double> parse;
    std::vector<double> parseCpu;
    auto const parseOnce = [&] {
        auto const entries = protocol::curl::detail::parseListing(body, "ftp");
        require(entries.size() == 100001, "parse count");
    };
    for (int run = 0; run < 5; ++run) {
        parse.push_back(timeSeconds(parseOnce));
        parseCpu.push_back(cpuSeconds(parseOnce));
    }
    std::printf("listing parse, 100000 unix lines: median %.1f ms wall, %.1f ms cpu (limit 40 ms)\n",
                median(parse) * 1e3, median(parseCpu) * 1e3);

    server.setListing("/", body);
    std::unique_ptr<protocol::IRemoteSession> session(protocol::ProtocolFactory::create("ftp"));
    require(session->connect("127.0.0.1", server.port(), server.user(), server.password()).ok, "connect");
    std::string const url = "ftp://" + server.user() + ":" + server.password() + "@127.0.0.1:"
                            + std::to_string(server.port()) + "/";
    std::vector<double> list;
    std::vector<double> curl;
    for (int run = 0; run < 5; ++run) {
        list.push_back(timeSeconds([&] {
            std::vector<protocol::RemoteEntry> entries;
            require(session->list("/", entries).ok && entries.size() == 100001, "list");
        }));
        curl.push_back(timeSeconds([&] { require(test::runCommand("curl -s -o /dev/null '" + url + "'"), "curl list"); }));
    }
    std::printf("list end to end: median %.1f ms; curl fetching the same listing: %.1f ms; ratio %.2f\n",
                median(list) * 1e3, median(curl) * 1e3, median(list) / median(curl));
}

void makeFile(std::filesystem::path const& path, std::size_t megabytes)
{
    std::string chunk(1 << 20, '\0');
    for (std::size_t i = 0; i < chunk.size(); ++i) {
        chunk[i] = static_cast<char>((i * 2654435761u) >> 13);
    }
    std::ofstream out(path, std::ios::binary);
    for (std::size_t i = 0; i < megabytes; ++i) {
        out.write(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    }
}

struct Endpoint {
    char const* protocol;
    int port;
    std::string user;
    std::string password;
    std::string remoteFolder; // absolute, ends in "/"
};

// Alternates session and reference runs so that both see the same machine state.
void benchTransfers(Endpoint const& endpoint, std::filesystem::path const& source, std::filesystem::path const& folder,
                    std::size_t megabytes, std::string const& extraReference = {})
{
    std::unique_ptr<protocol::IRemoteSession> session(protocol::ProtocolFactory::create(endpoint.protocol));
    require(session->connect("127.0.0.1", endpoint.port, endpoint.user, endpoint.password).ok, "connect");
    std::string const url = std::string(endpoint.protocol) + "://" + endpoint.user + ":" + endpoint.password
                            + "@127.0.0.1:" + std::to_string(endpoint.port) + endpoint.remoteFolder;
    std::string const insecure = std::string(endpoint.protocol) == "sftp" ? " --insecure" : "";
    std::filesystem::path const target = folder / "downloaded.bin";
    std::vector<double> up, curlUp, down, curlDown, extra;
    std::function<void()> const sessionUpload = [&] {
        up.push_back(timeSeconds([&] {
            require(session->upload({source.string(), endpoint.remoteFolder + "session.bin", false}, {}).ok, "upload");
        }));
    };
    std::function<void()> const referenceUpload = [&] {
        curlUp.push_back(timeSeconds([&] {
            require(test::runCommand("curl -s" + insecure + " -T '" + source.string() + "' '" + url + "curl.bin'"),
                    "curl -T");
        }));
    };
    std::function<void()> const sessionDownload = [&] {
        down.push_back(timeSeconds([&] {
            require(session->download({target.string(), endpoint.remoteFolder + "session.bin", false}, {}).ok,
                    "download");
        }));
        std::filesystem::remove(target);
    };
    std::function<void()> const referenceDownload = [&] {
        curlDown.push_back(timeSeconds([&] {
            require(test::runCommand("curl -s" + insecure + " -o '" + target.string() + "' '" + url + "curl.bin'"),
                    "curl -o");
        }));
        std::filesystem::remove(target);
    };
    // Who goes first alternates, so that neither side always meets the other's unwritten pages.
    for (int run = 0; run < 3; ++run) {
        bool const sessionFirst = run % 2 == 0;
        (sessionFirst ? sessionUpload : referenceUpload)();
        (sessionFirst ? referenceUpload : sessionUpload)();
        (sessionFirst ? sessionDownload : referenceDownload)();
        (sessionFirst ? referenceDownload : sessionDownload)();
        if (!extraReference.empty()) {
            extra.push_back(timeSeconds([&] { require(test::runCommand(extraReference), "reference"); }));
            std::filesystem::remove(target);
        }
    }
    double const mb = static_cast<double>(megabytes);
    std::printf("%s %zu MiB upload: session %.2f s (%.0f MiB/s), curl -T %.2f s; ratio %.3f\n", endpoint.protocol,
                megabytes, median(up), mb / median(up), median(curlUp), median(up) / median(curlUp));
    std::printf("%s %zu MiB download: session %.2f s (%.0f MiB/s), curl -o %.2f s; ratio %.3f\n", endpoint.protocol,
                megabytes, median(down), mb / median(down), median(curlDown), median(down) / median(curlDown));
    if (!extra.empty()) {
        std::printf("%s %zu MiB OpenSSH sftp put+get: %.2f s\n", endpoint.protocol, megabytes, median(extra));
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t const megabytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1024;
    std::filesystem::path const folder = test::makeScratchFolder("perchftp-bench");
    std::filesystem::path const source = folder / "source.bin";
    {
        test::FtpTestServer ftp;
        benchListing(ftp);
        std::printf("peak resident memory after the listings: %ld KiB\n", peakResidentKilobytes());
        makeFile(source, megabytes);
        benchTransfers({"ftp", ftp.port(), ftp.user(), ftp.password(), "/"}, source, folder, megabytes);
    }
    if (test::SshdTestServer::whyUnavailable().empty()) {
        test::SshdTestServer sshd;
        std::string const home = sshd.home().string() + "/";
        std::string const batch = (folder / "sftp-batch").string();
        std::ofstream(batch) << "put " << source.string() << " " << home << "openssh.bin\nget " << home
                             << "openssh.bin " << (folder / "downloaded.bin").string() << "\n";
        std::string const openssh = "sftp -q -b " + batch + " -i " + sshd.privateKey().string() + " -P "
                                    + std::to_string(sshd.port())
                                    + " -o StrictHostKeyChecking=no -o UserKnownHostsFile=/dev/null " + sshd.user()
                                    + "@127.0.0.1 >/dev/null 2>&1";
        benchTransfers({"sftp", sshd.port(), sshd.user(), sshd.password(), home}, source, folder, megabytes, openssh);
    } else {
        std::printf("sftp skipped: %s\n", test::SshdTestServer::whyUnavailable().c_str());
    }
    std::printf("peak resident memory after the transfers: %ld KiB\n", peakResidentKilobytes());
    std::filesystem::remove_all(folder);
    return 0;
}
