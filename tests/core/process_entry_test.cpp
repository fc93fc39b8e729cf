#include "core/bootstrap.hpp"
#include "logging/logger.hpp"
#include "security/vault.hpp"
#include "support/fresh_process.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

TEST(Bootstrap, LogsItsThreeLinesInOrderAndOpensTheVault)
{
    EXPECT_IN_FRESH_PROCESS({
        CHILD_CHECK(perchftp::security::isLocked());
        perchftp::core::bootstrap();
        std::string lines;
        for (auto const& event : perchftp::logging::Logger::global().history()) {
            bool const info = event.level == perchftp::logging::EventLevel::Info;
            lines += (info ? "" : "(not info) ") + event.message + "\n";
        }
        CHILD_CHECK(lines == "PerchFtp bootstrap initialized\nVault initialized for credential cache\n0.1.0\n");
        CHILD_CHECK(!perchftp::security::isLocked()); // the empty key opens the vault at once
    });
}

// Runs the program with stderr discarded and the display taken away, so that a normal-mode run
// can never open a window, and with the user's folders pointed at a place that does not exist.
std::pair<std::string, int> runProgram(std::string const& arguments)
{
    std::string const command = "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM HOME=/nonexistent/home"
                                " XDG_DATA_HOME=/nonexistent/data XDG_CONFIG_HOME=/nonexistent/config"
                                " PERCHFTP_INSTALL_TRACKING_URL=http://127.0.0.1:9/api/install-events.php '" PERCHFTP_BINARY
                                "' " + arguments + " 2>/dev/null </dev/null";
    FILE* pipe = ::popen(command.c_str(), "r");
    std::string out;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        out.push_back(static_cast<char>(c));
    }
    int const status = ::pclose(pipe);
    return {out, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

TEST(ProcessEntry, OnlyAnExactFirstArgumentIsSmokeModeAndBothModesPrintTheTwoLines)
{
    for (auto const& [arguments, smoke] : std::vector<std::pair<std::string, bool>>{
             {"--smoke", true}, {"--smoke --help extra", true}, {"--SMOKE", false}, {"'--smoke '", false},
             {"--smokes", false}, {"x --smoke", false}}) {
        auto const [out, status] = runProgram(arguments);
        EXPECT_EQ(out, "PerchFtp bootstrap build target ready.\nVersion: 0.1.0\n") << arguments;
        EXPECT_EQ(status == 0, smoke) << arguments << ": normal mode without a display cannot succeed";
    }
}

} // namespace
