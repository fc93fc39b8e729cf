#include "core/bootstrap.hpp"
#include "logging/logger.hpp"
#include "security/vault.hpp"
#include "support/fresh_process.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(Bootstrap, VersionIsAConstantText)
{
    EXPECT_STREQ(perchftp::core::version(), "0.1.0");
    EXPECT_EQ(perchftp::core::version(), perchftp::core::version());
}

TEST(Bootstrap, LogsItsThreeLinesInOrderAndOpensTheVault)
{
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

} // namespace
