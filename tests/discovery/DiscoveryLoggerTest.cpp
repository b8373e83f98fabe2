#include "Discovery/DiscoveryLogger.h"

#include "Discovery/ProductInfo.h"
#include "support/ExpectError.h"
#include "support/TemporaryFolder.h"
#include "system/ErrorCodes.h"
#include "system/Exceptions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using Zent::Discovery::DiscoveryLogger;
using Zent::Discovery::ProductInfo;

namespace
{
class DiscoveryLoggerTest : public testing::Test
{
protected:
    ~DiscoveryLoggerTest() override { logger.Close(); }

    void Init(const std::string& name, std::int32_t level) { logger.Init(String(folder.PathOf(name).c_str()), level); }

    bool Contains(const std::string& name, const std::string& text) const
    {
        return folder.Read(name).find(text) != std::string::npos;
    }

    const Tests::TemporaryFolder folder;
    const LogStreamChannel channel{"Receiver"};
    DiscoveryLogger& logger = DiscoveryLogger::GetInstance();
};
} // namespace

TEST_F(DiscoveryLoggerTest, LogsNothingUnlessOpen)
{
    logger.Log(channel, "before", LogStreamLevel::Critical);
    logger.Log(channel, "before", Exception("Sources/Some", 1));
    EXPECT_FALSE(logger.IsEnabled(LogStreamLevel::Critical));

    Init("test.log", LogStreamLevel::Standard);
    EXPECT_TRUE(logger.IsEnabled(LogStreamLevel::Standard));
    EXPECT_FALSE(logger.IsEnabled(LogStreamLevel::Debug));
    logger.Log(channel, "meanwhile", LogStreamLevel::Standard);
    logger.Log(channel, "too fine", LogStreamLevel::Debug);
    logger.Log(channel, "failed", ArgumentNullException("Sources/Some", 7));
    logger.Close();
    logger.Close();
    logger.Log(channel, "after", LogStreamLevel::Critical);

    const std::vector<std::string> lines = folder.ReadLines("test.log");
    ASSERT_EQ(lines.size(), 13U);
    EXPECT_EQ(lines[2], std::string("| Product : ") + ProductInfo::Product);
    EXPECT_TRUE(lines[10].ends_with("|S|           |meanwhile"));
    EXPECT_TRUE(lines[11].ends_with("|E|$0x00000009|failed Nfx::System::ArgumentNullException: Value cannot be null., "
                                    "location: Sources/Some(7)"));
    EXPECT_TRUE(lines[12].ends_with("|Close Log"));
}

TEST_F(DiscoveryLoggerTest, AnotherInitClosesTheFirstFileAndCreatesFolders)
{
    Init("first.log", LogStreamLevel::Critical);
    Init("a/b/second.log", LogStreamLevel::Critical);
    logger.Log(channel, "text", LogStreamLevel::Critical);

    EXPECT_TRUE(folder.ReadLines("first.log").back().ends_with("|Close Log"));
    EXPECT_FALSE(Contains("first.log", "|text"));
    EXPECT_TRUE(Contains("a/b/second.log", "|text"));
}

TEST_F(DiscoveryLoggerTest, FailedInitLeavesNothingOpenAndTheNextOneWorks)
{
    Init("first.log", LogStreamLevel::Critical);
    EXPECT_ERROR(Init("a/other.log", 4), ErrorCodes::ArgumentOutOfRange); // an unknown level changes nothing
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("a")));
    EXPECT_TRUE(logger.IsEnabled(LogStreamLevel::Critical));
    folder.Write("file", "");
    EXPECT_THROW(Init("", LogStreamLevel::Critical), IO::IOException);           // the folder itself
    EXPECT_THROW(Init("file/x.log", LogStreamLevel::Critical), IO::IOException); // no folder can be there
    logger.Log(channel, "nowhere", LogStreamLevel::Critical);
    EXPECT_FALSE(logger.IsEnabled(LogStreamLevel::Critical));
    EXPECT_TRUE(folder.ReadLines("first.log").back().ends_with("|Close Log"));

    Init("second.log", LogStreamLevel::Critical);
    logger.Log(channel, "here", LogStreamLevel::Critical);
    EXPECT_TRUE(Contains("second.log", "|here"));
}

TEST_F(DiscoveryLoggerTest, FilesAreSplitEarlierAtDebug)
{
    const String text(std::string(100'000, 'x').c_str());
    for (const std::int32_t level : {LogStreamLevel::Standard, LogStreamLevel::Debug})
    {
        const std::string name = std::to_string(level) + ".log";
        Init(name, level);
        for (int line = 0; line < 50; ++line)
        {
            logger.Log(channel, text, LogStreamLevel::Critical);
        }
        const bool isDebug = level == LogStreamLevel::Debug;
        for (int number = 1; number <= 4; ++number)
        {
            const std::string kept = folder.PathOf(name + "." + std::to_string(number) + ".bak");
            EXPECT_EQ(std::filesystem::exists(kept), isDebug && number <= 3) << kept;
        }
    }
}

TEST_F(DiscoveryLoggerTest, AnyThreadMayLogWhileTheLogIsOpenedAndClosed)
{
    std::atomic<bool> isDone{false};
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
    {
        threads.emplace_back([this, &isDone] {
            while (!isDone)
            {
                logger.Log(channel, "text", LogStreamLevel::Critical);
                logger.Log(channel, "text", Exception("Sources/Some", 1));
            }
        });
    }
    for (int round = 0; round < 100; ++round)
    {
        Init(std::to_string(round % 3) + ".log", LogStreamLevel::Standard);
        if (round % 2 == 0)
        {
            logger.Close();
        }
    }
    isDone = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    logger.Close();

    for (const char* name : {"0.log", "1.log", "2.log"})
    {
        std::string previous;
        for (const std::string& line : folder.ReadLines(name))
        {
            EXPECT_FALSE(previous.ends_with("|Close Log") && !line.empty()) << line;
            previous = line;
        }
    }
}
