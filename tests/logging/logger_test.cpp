#include "logging/logger.hpp"
#include "support/fresh_process.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

namespace {

using perchftp::logging::EventLevel;
using perchftp::logging::LogEvent;
using perchftp::logging::Logger;
using perchftp::test::readFile;
using perchftp::test::TempDir;
using perchftp::test::writeFile;
using Messages = std::vector<std::string>;

Messages messagesOf(std::vector<LogEvent> const& events)
{
    Messages messages;
    for (auto const& event : events) {
        messages.push_back(event.message);
    }
    return messages;
}

TEST(LoggerHistory, KeepsTheNewestEventsUpToTheLimitWhichTruncatesAtOnce)
{
    Logger logger;
    auto const before = static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch()).count());
    for (int i = 1; i <= 2501; ++i) {
        logger.error(std::to_string(i));
    }
    auto const history = logger.history();
    ASSERT_EQ(history.size(), 2500u);
    EXPECT_EQ(history.front().message, "2");
    EXPECT_TRUE(history.back().level == EventLevel::Error && history.back().timestampMs >= before);

    logger.setHistoryLimit(2);
    EXPECT_EQ(messagesOf(logger.history()), (Messages{"2500", "2501"}));
    logger.info("e");
    EXPECT_EQ(messagesOf(logger.history()), (Messages{"2501", "e"}));

    int told = 0;
    logger.addObserver([&told](LogEvent const&) { ++told; });
    logger.setHistoryLimit(0);
    EXPECT_TRUE(logger.history().empty());
    logger.warning("after");
    EXPECT_TRUE(logger.history().empty() && told == 1) << "no history, yet observers are told";
}

TEST(LoggerHistory, FiltersByMinimumLevelComparedOnTheLowByte)
{
    Logger logger;
    logger.info("i");
    logger.warning("w");
    logger.error("e");
    logger.emit(static_cast<EventLevel>(0x102), "odd"); // level 2 in its low byte
    EXPECT_EQ(messagesOf(logger.history(0)), messagesOf(logger.history()));
    EXPECT_EQ(messagesOf(logger.history(1)), (Messages{"w", "e", "odd"}));
    EXPECT_EQ(messagesOf(logger.history(2)), (Messages{"e", "odd"}));
    EXPECT_TRUE(logger.history(3).empty());
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

TEST(LoggerObservers, AnObserversExceptionLeavesEmitAndTheEventStays)
{
    Logger logger;
    logger.addObserver([](LogEvent const&) { throw std::runtime_error("observer"); });
    EXPECT_THROW(logger.info("kept"), std::runtime_error);
    EXPECT_EQ(messagesOf(logger.history()), (Messages{"kept"}));
    EXPECT_THROW(logger.info("again"), std::runtime_error) << "the lock was released";
}

TEST(LoggerExport, WritesOneUnescapedLinePerEventTruncatingAndRefusesPathsItCannotOpen)
{
    TempDir dir;
    auto const path = dir.file("log.txt");
    Logger logger;
    writeFile(path, "old content that must go\n");
    logger.info("plain");
    logger.warning("comma, inside");
    logger.error("line\nbreak");
    ASSERT_TRUE(logger.exportToFile(path));
    std::string expected;
    for (auto const& event : logger.history()) {
        expected += std::to_string(event.timestampMs) + "," + std::to_string(static_cast<int>(event.level)) + ","
                    + event.message + "\n";
    }
    EXPECT_EQ(readFile(path), expected);
    EXPECT_NE(expected.find(",2,line\nbreak\n"), std::string::npos);

    EXPECT_FALSE(logger.exportToFile(""));
    EXPECT_FALSE(logger.exportToFile(dir.file("missing/log.txt")));
    EXPECT_FALSE(std::filesystem::exists(dir.file("missing")));
    EXPECT_FALSE(logger.exportToFile(dir.path().string()));
}

TEST(LoggerGlobal, EmitInfoTakesNullAsTheEmptyText)
{
    EXPECT_IN_FRESH_PROCESS({
        perchftp::logging::emitInfo(nullptr);
        perchftp::logging::emitInfo("hello");
        auto const history = Logger::global().history();
        CHILD_CHECK(history.size() == 2 && history[0].message.empty() && history[1].message == "hello");
        CHILD_CHECK(history[0].level == EventLevel::Info);
    });
}

} // namespace
