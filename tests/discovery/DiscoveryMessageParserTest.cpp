#include "Discovery/DiscoveryMessageParser.h"

#include "support/Gate.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"
#include "system/Exceptions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <stdexcept>

namespace
{
using namespace Zent::Discovery;
namespace ErrorCodes = Nfx::System::ErrorCodes;
using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using namespace Nfx::System::Net;
using Nfx::System::Threading::Thread;
using Tests::Gate;
using Tests::LogCapture;
using Tests::WaitUntil;

class ScriptedParser final : public DiscoveryMessageParser
{
public:
    explicit ScriptedParser(std::function<void(const String&)> process)
        : DiscoveryMessageParser("Scripted")
        , process(std::move(process))
    {
    }

    void Give(const char* text)
    {
        Enqueue(
            SmartPointer<Datagram>(new Datagram(SmartPointer<String>(new String(text)), IPEndPoint(IPAddress(), 0))));
    }

protected:
    void ProcessDatagram(const SmartPointer<Datagram>& datagram) override { process(*datagram->Message); }

private:
    const std::function<void(const String&)> process;
};

class FullQueueTest : public testing::Test
{
protected:
    /// Holds the parser up at a datagram, and lets as many wait as fit.
    void SetUp() override
    {
        parser.Start();
        parser.Give("held");
        ASSERT_TRUE(first.WaitForArrivals(1));
        for (int count = 0; count < DiscoveryMessageParser::MaximumPending; ++count)
        {
            parser.Give("waits");
        }
        EXPECT_FALSE(log.Has("Semaphore is full"));
    }

    const LogCapture log{LogStreamLevel::Critical};
    Gate first;
    std::atomic<int> processed{0};
    ScriptedParser parser{[this](const String&) {
        EXPECT_TRUE(first.Pass());
        ++processed;
    }};
};

TEST_F(FullQueueTest, RefusesWhatDoesNotFitAndAcceptsAgainAsSoonAsOneIsTaken)
{
    parser.Give("too many");
    EXPECT_EQ(1, log.Count("Semaphore is full (512) !!! Ignoring this datagram..."));
    first.Open();
    ASSERT_TRUE(WaitUntil([&] { return processed == DiscoveryMessageParser::MaximumPending + 1; }));
    parser.Give("fits again");
    ASSERT_TRUE(WaitUntil([&] { return processed == DiscoveryMessageParser::MaximumPending + 2; }));
    parser.Stop();
    EXPECT_EQ(1, log.Count("Semaphore is full"));
}

TEST_F(FullQueueTest, StopsAndDropsWhatWaits)
{
    std::thread stopper([this] { parser.Stop(); });
    EXPECT_TRUE(log.WaitFor("Stopping message parser"));
    first.Open();
    stopper.join();
    EXPECT_FALSE(log.Has("Semaphore error")) << log.Text();
    EXPECT_LE(processed, 3);
    EXPECT_GE(parser.PendingCount(), DiscoveryMessageParser::MaximumPending - 2);
    parser.Stop();
}

TEST(DiscoveryMessageParserTest, AFailingDatagramCostsItselfAndALine)
{
    const LogCapture log(LogStreamLevel::Critical);
    std::atomic<bool> good{false};
    ScriptedParser parser([&](const String& text) {
        if (text == "format")
        {
            throw Exception(ErrorCodes::InvalidFormat, "tests/discovery", 1);
        }
        if (text == "other")
        {
            throw InvalidOperationException("of all things", "tests/discovery", 2);
        }
        if (text == "memory")
        {
            throw std::bad_alloc();
        }
        if (text == "foreign")
        {
            throw std::runtime_error("what the host says");
        }
        good = true;
    });
    parser.Start();
    for (const char* text : {"format", "other", "memory", "foreign", "good"})
    {
        parser.Give(text);
    }
    ASSERT_TRUE(WaitUntil([&] { return good.load(); }));
    parser.Stop();
    EXPECT_EQ(1, log.Count("Invalid format : message dropped"));
    EXPECT_EQ(1, log.Count("|E|$0x0000001E|Error while parsing/processing message "
                           "Nfx::System::InvalidOperationException: of all things, location: tests/discovery(2)"))
        << log.Text();
    EXPECT_EQ(1, log.Count("|E|$0x0000001B|Error while parsing/processing message "));
    EXPECT_EQ(1, log.Count("Error while parsing/processing message Nfx::System::Exception: what the host says"))
        << log.Text();
    EXPECT_TRUE(
        log.HasInOrder({"---Waiting for messages...", "Stopping message parser", "---Message parser stopped---"}));
}

TEST(DiscoveryMessageParserTest, AnAbortEndsTheThreadThoughEverythingElseIsCaught)
{
    const LogCapture log(LogStreamLevel::Critical);
    ScriptedParser parser([](const String&) { throw Thread::AbortSignal(); });
    parser.Start();
    parser.Give("aborts");
    parser.Give("waits");
    EXPECT_TRUE(WaitUntil([&] { return parser.PendingCount() == 1; }));
    parser.Stop();
    EXPECT_EQ(1, parser.PendingCount());
    EXPECT_FALSE(log.Has("Error while parsing/processing message")) << log.Text();
}

TEST(DiscoveryMessageParserTest, StopsWithoutHavingStarted)
{
    ScriptedParser parser([](const String&) {});
    parser.Stop();
    parser.Stop();
}
} // namespace
