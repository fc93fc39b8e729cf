#include "logging/logger.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

namespace {

using perchftp::logging::EventLevel;
using perchftp::logging::LogEvent;
using perchftp::logging::Logger;
using Messages = std::vector<std::string>;

Messages messagesOf(std::vector<LogEvent> const& events)
{
    Messages messages;
    for (auto const& event : events) {
        messages.push_back(event.message);
    }
    return messages;
}

// Only the start-up code and the install tracker log; history, observers and export are the
// logger's surface for whoever reads it.
TEST(Logger, KeepsTheNewestEventsUpToTheLimitFiltersByTheLowByteExportsUnescapedAndTellsObservers)
{
    Logger logger;
    for (int i = 1; i <= 2501; ++i) {
        logger.info(std::to_string(i));
    }
    ASSERT_EQ(logger.history().size(), 2500u);
    EXPECT_EQ(logger.history().front().message, "2");
    logger.setHistoryLimit(3);
    logger.warning("comma, and\nbreak");
    logger.emit(static_cast<EventLevel>(0x102), "odd"); // level 2 in its low byte
    EXPECT_EQ(messagesOf(logger.history(0)), (Messages{"2501", "comma, and\nbreak", "odd"}));
    EXPECT_EQ(messagesOf(logger.history(2)), (Messages{"odd"}));
    EXPECT_TRUE(logger.history(3).empty());

    perchftp::test::TempDir dir;
    auto const path = dir.file("log.txt");
    perchftp::test::writeFile(path, "old content that must go\n");
    ASSERT_TRUE(logger.exportToFile(path));
    auto const history = logger.history();
    auto const stamp = [&history](std::size_t index) { return std::to_string(history[index].timestampMs); };
    EXPECT_EQ(perchftp::test::readFile(path),
              stamp(0) + ",0,2501\n" + stamp(1) + ",1,comma, and\nbreak\n" + stamp(2) + ",258,odd\n");
    EXPECT_GT(history[0].timestampMs, 1700000000000U) << "milliseconds since the epoch";
    EXPECT_FALSE(logger.exportToFile(""));
    EXPECT_FALSE(logger.exportToFile(dir.file("missing/log.txt")));

    Messages seen;
    logger.addObserver([&](LogEvent const& event) {
        seen.push_back(event.message);
        if (event.message == "outer") {
            logger.error("inner"); // would deadlock if observers ran under the lock
        }
    });
    logger.addObserver(Logger::Observer{});
    logger.setHistoryLimit(0);
    logger.info("outer");
    EXPECT_EQ(seen, (Messages{"outer", "inner"}));
    EXPECT_TRUE(logger.history().empty()) << "no history, yet observers are told";
}

} // namespace
