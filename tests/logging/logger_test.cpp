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

std::vector<std::string> messagesOf(std::vector<LogEvent> const& events)
{
    std::vector<std::string> messages;
    for (auto const& event : events) {
        messages.push_back(event.message);
    }
    return messages;
}

TEST(LoggerHistory, KeepsTheNewest2500EventsByDefault)
{
    Logger logger;
    for (int i = 1; i <= 2501; ++i) {
        logger.info(std::to_string(i));
    }
    auto const history = logger.history();
    ASSERT_EQ(history.size(), 2500u);
    EXPECT_EQ(history.front().message, "2");
    EXPECT_EQ(history.back().message, "2501");
}

TEST(LoggerHistory, LimitTruncatesAtOnceAndKeepsTheNewest)
{
    Logger logger;
    for (auto const* text : {"a", "b", "c", "d"}) {
        logger.info(text);
    }
    logger.setHistoryLimit(10);
    EXPECT_EQ(messagesOf(logger.history()), (std::vector<std::string>{"a", "b", "c", "d"}));
    logger.setHistoryLimit(2);
    EXPECT_EQ(messagesOf(logger.history()), (std::vector<std::string>{"c", "d"}));
    logger.info("e");
    EXPECT_EQ(messagesOf(logger.history()), (std::vector<std::string>{"d", "e"}));
}

TEST(LoggerHistory, ZeroLimitKeepsNothingButStillTellsObservers)
{
    Logger logger;
    logger.info("before");
    logger.setHistoryLimit(0);
    EXPECT_TRUE(logger.history().empty());

    int told = 0;
    logger.addObserver([&](LogEvent const& event) {
        EXPECT_EQ(event.message, "after");
        ++told;
    });
    logger.warning("after");
    EXPECT_TRUE(logger.history().empty());
    EXPECT_EQ(told, 1);
}

TEST(LoggerHistory, FiltersByMinimumLevel)
{
    Logger logger;
    logger.info("i");
    logger.warning("w");
    logger.error("e");
    logger.emit(static_cast<EventLevel>(0x102), "odd"); // compared on its low byte: 2

    EXPECT_EQ(messagesOf(logger.history(0)), messagesOf(logger.history()));
    EXPECT_EQ(messagesOf(logger.history(1)), (std::vector<std::string>{"w", "e", "odd"}));
    EXPECT_EQ(messagesOf(logger.history(2)), (std::vector<std::string>{"e", "odd"}));
    EXPECT_TRUE(logger.history(3).empty());
    EXPECT_TRUE(logger.history(255).empty());
}

TEST(LoggerHistory, EventsCarryLevelAndWallClockTime)
{
    Logger logger;
    auto const before = static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
            .count());
    logger.error("x");
    auto const history = logger.history();
    ASSERT_EQ(history.size(), 1u);
    EXPECT_EQ(history[0].level, EventLevel::Error);
    EXPECT_GE(history[0].timestampMs, before);
    EXPECT_LT(history[0].timestampMs, before + 60'000);
}

TEST(LoggerObservers, EmptyObserversAreSkippedAndTheRestCalledInOrder)
{
    Logger logger;
    std::string calls;
    logger.addObserver([&](LogEvent const&) { calls += "1"; });
    logger.addObserver(Logger::Observer{});
    logger.addObserver([&](LogEvent const&) { calls += "2"; });
    logger.info("x");
    EXPECT_EQ(calls, "12");
}

TEST(LoggerObservers, AnObserverMayLogAgainWithoutDisturbingTheWalk)
{
    Logger logger;
    std::vector<std::string> seenByFirst;
    std::vector<std::string> seenBySecond;
    logger.addObserver([&](LogEvent const& event) {
        seenByFirst.push_back(event.message);
        if (event.message == "outer") {
            logger.info("inner");
        }
    });
    logger.addObserver([&](LogEvent const& event) { seenBySecond.push_back(event.message); });
    logger.info("outer");
    EXPECT_EQ(seenByFirst, (std::vector<std::string>{"outer", "inner"}));
    EXPECT_EQ(seenBySecond, (std::vector<std::string>{"inner", "outer"}));
    EXPECT_EQ(messagesOf(logger.history()), (std::vector<std::string>{"outer", "inner"}));
}

TEST(LoggerObservers, AnObserverAddedDuringAWalkWaitsForTheNextEvent)
{
    Logger logger;
    int lateCalls = 0;
    bool added = false;
    logger.addObserver([&](LogEvent const&) {
        if (!added) {
            added = true;
            logger.addObserver([&](LogEvent const&) { ++lateCalls; });
        }
    });
    logger.info("first");
    EXPECT_EQ(lateCalls, 0);
    logger.info("second");
    EXPECT_EQ(lateCalls, 1);
}

TEST(LoggerObservers, AnObserversExceptionLeavesEmitAndTheEventStays)
{
    Logger logger;
    int behind = 0;
    logger.addObserver([](LogEvent const&) { throw std::runtime_error("observer"); });
    logger.addObserver([&](LogEvent const&) { ++behind; });
    EXPECT_THROW(logger.info("kept"), std::runtime_error);
    EXPECT_EQ(behind, 0);
    EXPECT_EQ(messagesOf(logger.history()), (std::vector<std::string>{"kept"}));
    // The lock was released: the logger still works.
    EXPECT_THROW(logger.info("again"), std::runtime_error);
    EXPECT_EQ(logger.history().size(), 2u);
}

TEST(LoggerExport, WritesOneUnescapedLinePerEventAndTruncates)
{
    TempDir dir;
    auto const path = dir.file("log.txt");
    perchftp::test::writeFile(path, "old content that must go\n");

    Logger logger;
    logger.info("plain");
    logger.warning("comma, inside");
    logger.error("line\nbreak");
    ASSERT_TRUE(logger.exportToFile(path));

    auto const history = logger.history();
    std::string expected;
    for (auto const& event : history) {
        expected += std::to_string(event.timestampMs) + "," + std::to_string(static_cast<int>(event.level)) + "," +
                    event.message + "\n";
    }
    EXPECT_EQ(readFile(path), expected);
    EXPECT_NE(expected.find(",1,comma, inside\n"), std::string::npos);
    EXPECT_NE(expected.find(",2,line\nbreak\n"), std::string::npos);
}

TEST(LoggerExport, EmptyHistoryGivesAnEmptyFile)
{
    TempDir dir;
    Logger logger;
    ASSERT_TRUE(logger.exportToFile(dir.file("empty.txt")));
    EXPECT_TRUE(std::filesystem::exists(dir.file("empty.txt")));
    EXPECT_EQ(readFile(dir.file("empty.txt")), "");
}

TEST(LoggerExport, RefusesPathsItCannotOpenAndCreatesNothing)
{
    TempDir dir;
    Logger logger;
    logger.info("x");
    EXPECT_FALSE(logger.exportToFile(""));
    EXPECT_FALSE(logger.exportToFile(dir.file("missing/log.txt")));
    EXPECT_FALSE(std::filesystem::exists(dir.file("missing")));
    EXPECT_FALSE(logger.exportToFile(dir.path().string()));
    EXPECT_TRUE(std::filesystem::is_directory(dir.path()));
    // A regular file where a folder should be: even root cannot open below it.
    perchftp::test::writeFile(dir.file("plain"), "");
    EXPECT_FALSE(logger.exportToFile(dir.file("plain/log.txt")));
    EXPECT_TRUE(logger.history().size() == 1) << "failed exports leave no event";
}

TEST(LoggerGlobal, EmitInfoTakesNullAsTheEmptyText)
{
    EXPECT_IN_FRESH_PROCESS({
        perchftp::logging::emitInfo(nullptr);
        perchftp::logging::emitInfo("hello");
        auto const history = Logger::global().history();
        CHILD_CHECK(history.size() == 2);
        CHILD_CHECK(history[0].message.empty());
        CHILD_CHECK(history[0].level == EventLevel::Info);
        CHILD_CHECK(history[1].message == "hello");
        CHILD_CHECK(&Logger::global() == &Logger::global());
    });
}

} // namespace
