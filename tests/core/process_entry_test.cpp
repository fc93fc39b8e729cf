#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

struct RunResult {
    int status = -1;
    std::string out;
};

// Runs the program with stderr discarded and the display taken away, so that a normal-mode
// run can never open a window, and with the user's folders pointed at a place that does not exist.
RunResult runProgram(std::vector<std::string> const& arguments)
{
    std::string command = "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM HOME=/nonexistent/home"
                          " XDG_DATA_HOME=/nonexistent/data XDG_CONFIG_HOME=/nonexistent/config"
                          " PERCHFTP_INSTALL_TRACKING_URL=http://127.0.0.1:9/api/install-events.php '" PERCHFTP_BINARY "'";
    for (auto const& argument : arguments) {
        command += " '" + argument + "'";
    }
    command += " 2>/dev/null </dev/null";
    RunResult result;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) {
        return result;
    }
    std::array<char, 4096> buffer{};
    std::size_t n = 0;
    while ((n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        result.out.append(buffer.data(), n);
    }
    int const raw = ::pclose(pipe);
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return result;
}

constexpr char const* kBanner = "PerchFtp bootstrap build target ready.\nVersion: 0.1.0\n";

TEST(ProcessEntry, SmokeModePrintsTheTwoLinesAndEndsWithZero)
{
    auto const result = runProgram({"--smoke"});
    EXPECT_EQ(result.out, kBanner);
    EXPECT_EQ(result.status, 0);
}

TEST(ProcessEntry, SmokeModeIgnoresEverythingAfterTheFirstArgument)
{
    auto const result = runProgram({"--smoke", "--help", "extra"});
    EXPECT_EQ(result.out, kBanner);
    EXPECT_EQ(result.status, 0);
}

TEST(ProcessEntry, OnlyAnExactFirstArgumentIsSmokeMode)
{
    for (auto const& arguments : std::vector<std::vector<std::string>>{
             {"--SMOKE"}, {"--smoke "}, {"--smokes"}, {"-smoke"}, {""}, {"x", "--smoke"}}) {
        auto const result = runProgram(arguments);
        EXPECT_EQ(result.out, kBanner) << "first argument: " << arguments.front();
        EXPECT_NE(result.status, 0) << "normal mode without a display must not succeed: " << arguments.front();
    }
}

} // namespace
