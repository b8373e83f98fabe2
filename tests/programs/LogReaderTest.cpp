#include "Programs/LogReader.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

using namespace Zent::Discovery::Programs;

namespace
{
TEST(LogReaderTest, CountsWhatTheLastUseOfTheLibraryHasDropped)
{
    LogReader reader;
    reader.Add("|Date                   |RefTime");
    for (const auto& [channel, message] : std::initializer_list<std::pair<std::string, const char*>>{
             {"MessageParser", "Message dropped : bad format !"},
             {"Start", "Start Log"},
             {"Receiver", "Thread priority Highest refused by the system."},
             {"MessageParser", "Version mismatch with received message ! [1.0.18] <> [1.0.17]."},
             {"MessageParser", "The protocol version of the message is not supported ! Message dropped."},
             {"MessageParser", "Sender of the dropped message : 10.0.0.5"},
             {"SignatureBroadcastMessage", "No Host key !!! => BAD MESSAGE FORMAT !"},
             {"MessageParser", "Message dropped : bad format !"},
             {"MessageParser", "Message : {\"a\":\"|Semaphore is full\"}"},
             {"MessageParser", "Semaphore is full (512) !!! Ignoring this datagram..."},
             {"ServerTaskProcessor", "Semaphore is full (512) !!! Ignoring this task..."},
             {"Receiver", "MessageSize is too low : 2048! Doubling it... The message is too long."},
             {"Discovery Server", "Another socket on this machine is bound to port 12001 : answers"}})
    {
        reader.Add("|25/11/2026 10:15:32.501|          0.000096|" + channel + std::string(40 - channel.size(), ' ') +
                   "|C|           |" + message + "\r");
    }
    const LogSummary& summary = reader.Summary();
    EXPECT_EQ(summary.VersionDropped, 1u);
    EXPECT_EQ(summary.Versions, std::set<std::string>{"1.0.17"});
    EXPECT_EQ(summary.VersionSenders, std::set<std::string>{"10.0.0.5"});
    EXPECT_EQ(summary.FormatDropped, 1u);
    EXPECT_EQ(summary.Defect, "No Host key");
    EXPECT_EQ(summary.QueueFull, 2u);
    EXPECT_EQ(summary.Oversize, 1u);
    EXPECT_TRUE(summary.SharesPort);
    EXPECT_TRUE(summary.IsRealTimeRefused);
}
} // namespace
