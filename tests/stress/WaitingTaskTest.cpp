#include "ProcessState.h"
#include "support/Device.h"
#include "support/Gate.h"
#include "support/Server.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <iostream>
#include <string>
#include <thread>

namespace
{
using std::chrono::milliseconds;
using Tests::Server;

constexpr int TaskLimit = 512;

std::atomic<int> signatures{0};
std::atomic<Tests::Gate*> gate{nullptr};

void DISCOVERY_EXTC_CALL OnSignature(const char*)
{
    ++signatures;
    if (Tests::Gate* const closed = gate)
    {
        closed->Pass();
    }
}

class WaitingTaskTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(0, Server().Initialize(folder.PathOf("log.txt").c_str(), DiscoveryLogCritical));
        ASSERT_EQ(0, Server().SetClientSignatureReceivedEventCallBack(&OnSignature));
        ASSERT_EQ(0, Server().StartServer());
    }

    void TearDown() override
    {
        gate = nullptr;
        EXPECT_EQ(0, Server().Terminate());
    }

    static std::string Signature(const std::string& members)
    {
        return R"({"DiscoveryMessageType":"SignatureBroadcast","DiscoveryVersion":"1.0.18","Host":{"HostName":"large",)"
               R"("DeviceType":"",)" +
               members + "}}";
    }

    bool IsReported(const std::string& signature)
    {
        const int before = signatures;
        return Tests::WaitUntil([&] {
            device.Send(signature);
            return Tests::WaitUntil([&] { return signatures > before; }, milliseconds(20));
        });
    }

    /// Sends the same until a task is refused.
    void FillQueueWith(const std::string& signature)
    {
        const int before = folder.Count("Ignoring this task");
        ASSERT_TRUE(Tests::WaitUntil([&] {
            for (int count = 0; count < 50; ++count)
            {
                device.Send(signature);
                std::this_thread::sleep_for(milliseconds(1)); // the socket's own buffer holds one
            }
            return folder.Count("Ignoring this task") > before;
        }));
    }

    /// Lets signatures wait behind a callback and be worked off. Returns the resident KiB when the queue was full.
    std::int64_t RushWith(const std::string& signature)
    {
        Tests::Gate closed;
        gate = &closed;
        FillQueueWith(signature);
        const std::int64_t full = Tests::CurrentState().Memory;
        const int atOpening = signatures;
        gate = nullptr;
        closed.Open();
        EXPECT_TRUE(Tests::WaitUntil([&] { return signatures >= atOpening + TaskLimit; }));
        EXPECT_TRUE(IsReported(Signature("\"NICs\":[],\"Products\":[]")));
        return full;
    }

    const Tests::TemporaryFolder folder;
    Tests::Device device;
};

TEST_F(WaitingTaskTest, WhatWaitsTakesLittleMoreThanItsDatagrams)
{
    const auto list = [](const std::string& name, const std::string& element, int count) {
        std::string text = "\"" + name + "\":[" + element;
        for (int number = 1; number < count; ++number)
        {
            text += "," + element;
        }
        return text + "]";
    };
    std::string settings = "\"FileTransferInfos\":{\"0\":\"\"";
    for (int number = 1; number < 6000; ++number)
    {
        settings += ",\"" + std::to_string(number) + "\":\"\"";
    }
    const std::string interface = R"({"FriendlyName":"","MACAddress":"0:0:0:0:0:0","IPAddress":"0.0.0.0",)"
                                  R"("SubNetMask":"0.0.0.0","DefaultGateway":""})";
    const std::string product = R"({"ProductType":"","ProductSerialNumber":"","ProductVersion":"","ProductName":""})";
    const std::string datagrams[] = {
        Signature("\"NICs\":[],\"Products\":[]," + settings + "}"),
        Signature("\"Products\":[]," + list("NICs", interface, 570)),
        Signature("\"NICs\":[]," + list("Products", product, 780)),
    };
    ASSERT_TRUE(IsReported(datagrams[0])); // the library's buffer has grown
    const std::int64_t before = Tests::CurrentState().Memory;
    bool isGivenBack = false;
    for (const std::string& datagram : datagrams)
    {
        SCOPED_TRACE(datagram.substr(0, 160));
        const std::int64_t full = RushWith(datagram);
        const auto size = static_cast<std::int64_t>(datagram.size());
        EXPECT_LT(full, 400 * 1024);
        EXPECT_LT((full - before) * 1024, 10 * TaskLimit * size);
        const auto isNearlyAsBefore = [&] { return Tests::CurrentState().Memory <= before + before / 10; };
        isGivenBack = isGivenBack || Tests::WaitUntil(isNearlyAsBefore); // the next ones keep it for a minute
        EXPECT_TRUE(isGivenBack);
        std::cout << size << " bytes, " << (full - before) * 1024 / TaskLimit << " while waiting; " << before
                  << " KiB before, " << full << " full, " << Tests::CurrentState().Memory << " afterwards\n";
    }
}
} // namespace
