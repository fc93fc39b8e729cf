#include "core/bootstrap.hpp"
#include "logging/logger.hpp"
#include "security/vault.hpp"
#include "support/fresh_process.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

TEST(Bootstrap, LogsItsThreeLinesInOrderAndOpensTheVault)
{
    EXPECT_STREQ(perchftp::core::version(), "0.1.0");
    EXPECT_IN_FRESH_PROCESS({
        CHILD_CHECK(perchftp::security::isLocked());
        perchftp::core::bootstrap();
        auto const history = perchftp::logging::Logger::global().history();
        CHILD_CHECK(history.size() == 3);
        CHILD_CHECK(history[0].message == "PerchFtp bootstrap initialized");
        CHILD_CHECK(history[1].message == "Vault initialized for credential cache");
        CHILD_CHECK(history[2].message == "0.1.0");
        for (auto const& event : history) {
            CHILD_CHECK(event.level == perchftp::logging::EventLevel::Info);
        }
        CHILD_CHECK(history[0].timestampMs <= history[2].timestampMs);
        CHILD_CHECK(!perchftp::security::isLocked());
    });
}

// Runs the program with stderr discarded and the display taken away, so that a normal-mode run
// can never open a window, and with the user's folders pointed at a place that does not exist.
std::pair<std::string, int> runProgram(std::vector<std::string> const& arguments)
{
    std::string command = "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM HOME=/nonexistent/home"
                          " XDG_DATA_HOME=/nonexistent/data XDG_CONFIG_HOME=/nonexistent/config"
                          " PERCHFTP_INSTALL_TRACKING_URL=http://127.0.0.1:9/api/install-events.php '" PERCHFTP_BINARY "'";
    for (auto const& argument : arguments) {
        command += " '" + argument + "'";
    }
    FILE* pipe = ::popen((command + " 2>/dev/null </dev/null").c_str(), "r");
    if (!pipe) {
        return {"", -1};
    }
    std::string out;
    std::array<char, 4096> buffer{};
    for (std::size_t n = 0; (n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        out.append(buffer.data(), n);
    }
    int const status = ::pclose(pipe);
    return {out, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

TEST(ProcessEntry, OnlyAnExactFirstArgumentIsSmokeModeAndBothModesPrintTheTwoLines)
{
    constexpr char const* kBanner = "PerchFtp bootstrap build target ready.\nVersion: 0.1.0\n";
    for (auto const& arguments : std::vector<std::vector<std::string>>{
             {"--smoke"}, {"--smoke", "--help", "extra"}, {"--SMOKE"}, {"--smoke "}, {"--smokes"}, {"-smoke"}, {""},
             {"x", "--smoke"}}) {
        auto const [out, status] = runProgram(arguments);
        EXPECT_EQ(out, kBanner) << "first argument: " << arguments.front();
        // Normal mode without a display cannot succeed.
        EXPECT_EQ(status == 0, arguments.front() == "--smoke") << "first argument: " << arguments.front();
    }
}

} // namespace
