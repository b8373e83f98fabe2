#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "discovery/HostileDatagrams.h"
#include "support/LogCapture.h"
#include "system/Exceptions.h"
#include "system/Memory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <iostream>
#include <string>

using Nfx::System::Memory;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using namespace Zent::Discovery;

namespace
{
/// Deserializes a text and, when that works, writes the message and its host as the callbacks need it.
void Handle(const std::string& text)
{
    try
    {
        const SmartPointer<DiscoveryMessage> message = DiscoveryMessageDeserializer().Deserialize(String(text));
        EXPECT_LT(message->ToJson().Length(), 7 * text.size());
    }
    catch (const Nfx::System::Exception&)
    {
    }
}

/// How long a text takes at the level that logs most. What it allocates must be gone afterwards.
double MillisecondsOf(const std::string& text)
{
    const Tests::LogCapture log(LogStreamLevel::Debug);
    const std::int64_t before = Memory::LiveCount();
    const auto start = std::chrono::steady_clock::now();
    Handle(text);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(Memory::LiveCount(), before);
    return taken.count();
}

/// How much a text writes to the log. At Standard, where the file is not split so soon.
std::size_t LoggedBytesOf(const std::string& text)
{
    const Tests::LogCapture log(LogStreamLevel::Standard);
    const std::size_t before = log.Text().size();
    Handle(text);
    return log.Text().size() - before;
}

/// The case with the largest amount.
struct Most
{
    double Amount = -1;
    std::string What;

    void Note(double amount, const std::string& text)
    {
        if (amount > Amount)
        {
            *this = {amount, Tests::BeginningOf(text)};
        }
    }
};

TEST(HostileDatagramTest, AnyDatagramIsDoneInTimeAndLeavesNothingBehind)
{
    Most slowest;
    Most talkative;
    for (const std::string& text : Tests::LargestHostileDatagrams())
    {
        SCOPED_TRACE(Tests::BeginningOf(text));
        const double milliseconds = MillisecondsOf(text);
        slowest.Note(milliseconds, text);
        EXPECT_LT(milliseconds, TIME_SCALE * 500); // a few, unless something is quadratic
        const std::size_t logged = LoggedBytesOf(text);
        talkative.Note(static_cast<double>(logged), text);
        EXPECT_LT(logged, 16 * 1024);
    }
    std::cout << "slowest, " << slowest.Amount << " ms: " << slowest.What << "\nmost talkative, " << talkative.Amount
              << " bytes: " << talkative.What << "\n";
}
} // namespace
