#include "logging/logger.hpp"
#include "support/fresh_process.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <filesystem>

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

TEST(LoggerHistory, KeepsTheNewestEventsUpToTheLimitWhichTruncatesAtOnceAndFiltersByTheLevelsLowByte)
{
    Logger logger;
    for (int i = 1; i <= 2501; ++i) {
        logger.info(std::to_string(i));
    }
    ASSERT_EQ(logger.history().size(), 2500u);
    EXPECT_EQ(logger.history().front().message, "2");
    logger.setHistoryLimit(4);
    logger.warning("w");
    logger.error("e");
    logger.emit(static_cast<EventLevel>(0x102), "odd"); // level 2 in its low byte
    EXPECT_EQ(messagesOf(logger.history(0)), (Messages{"2501", "w", "e", "odd"}));
    EXPECT_EQ(messagesOf(logger.history(1)), (Messages{"w", "e", "odd"}));
    EXPECT_EQ(messagesOf(logger.history(2)), (Messages{"e", "odd"}));
    EXPECT_TRUE(logger.history(3).empty());

    int told = 0;
    logger.addObserver([&told](LogEvent const&) { ++told; });
    logger.setHistoryLimit(0);
    EXPECT_TRUE(logger.history().empty());
    logger.warning("after");
    EXPECT_TRUE(logger.history().empty() && told == 1) << "no history, yet observers are told";
}

TEST(LoggerObservers, AreCalledInOrderOutsideTheLockWithEmptyOnesSkipped)
{
    Logger logger;
    Messages seenByFirst;
    Messages seenBySecond;
    int lateCalls = 0;
    logger.addObserver([&](LogEvent const& event) {
        seenByFirst.push_back(event.message);
        if (event.message == "outer") {
            logger.addObserver([&](LogEvent const&) { ++lateCalls; }); // not called for "outer"
            logger.info("inner"); // re-entrant: the walk of "outer" goes on afterwards
        }
    });
    logger.addObserver(Logger::Observer{});
    logger.addObserver([&](LogEvent const& event) { seenBySecond.push_back(event.message); });
    logger.info("outer");
    EXPECT_EQ(seenByFirst, (Messages{"outer", "inner"}));
    EXPECT_EQ(seenBySecond, (Messages{"inner", "outer"}));
    EXPECT_EQ(messagesOf(logger.history()), (Messages{"outer", "inner"}));
    EXPECT_EQ(lateCalls, 1) << "an observer added during a walk waits for the next event, \"inner\"";
}

TEST(LoggerExport, WritesOneUnescapedLinePerEventTruncatingAndRefusesPathsItCannotOpen)
{
    perchftp::test::TempDir dir;
    auto const path = dir.file("log.txt");
    perchftp::test::writeFile(path, "old content that must go\n");
    Logger logger;
    logger.info("comma, inside");
    logger.error("line\nbreak");
    ASSERT_TRUE(logger.exportToFile(path));
    auto const history = logger.history();
    EXPECT_EQ(perchftp::test::readFile(path), std::to_string(history[0].timestampMs) + ",0,comma, inside\n"
                                                 + std::to_string(history[1].timestampMs) + ",2,line\nbreak\n");
    EXPECT_GT(history[0].timestampMs, 1700000000000U) << "milliseconds since the epoch";

    EXPECT_FALSE(logger.exportToFile(""));
    EXPECT_FALSE(logger.exportToFile(dir.file("missing/log.txt")));
    EXPECT_FALSE(std::filesystem::exists(dir.file("missing")));
    EXPECT_FALSE(logger.exportToFile(dir.path().string()));
}

TEST(LoggerGlobal, EmitInfoTakesNullAsTheEmptyText)
{
    EXPECT_IN_FRESH_PROCESS({
        perchftp::logging::emitInfo(nullptr);
        auto const history = Logger::global().history();
        CHILD_CHECK(history.size() == 1 && history[0].message.empty() && history[0].level == EventLevel::Info);
    });
}

} // namespace
