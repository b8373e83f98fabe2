#pragma once

#include "DiscoveryServerExtCFacade.h"
#include "Os/Faults.h"
#include "Server/DiscoveryServerFacade.h"
#include "support/Device.h"
#include "support/DeviceDatagram.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"
#include "system/Threading/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <string_view>

namespace Tests
{
/// A host application of the library, and a device.
class FaultTest : public testing::Test
{
protected:
    FaultTest()
    {
        hellos = 0;
        callbackBody = nullptr;
    }

    ~FaultTest() override
    {
        Faults::Clear();
        EXPECT_EQ(0, Zent::Discovery::ExtC::Terminate());
        ExpectNothingLeft();
    }

    /// Initializes the library and starts the server.
    void Serve(DiscoveryLogLevel level = DiscoveryLogDebug)
    {
        ASSERT_EQ(0, Initialize(level));
        ASSERT_EQ(0, Zent::Discovery::ExtC::StartServer());
    }

    int Initialize(DiscoveryLogLevel level = DiscoveryLogDebug) const
    {
        const int code = Zent::Discovery::ExtC::Initialize(folder.PathOf("logs/test.log").c_str(), level);
        return code != 0 ? code : Zent::Discovery::ExtC::SetHelloMessageReceivedEventCallBack(&OnHello);
    }

    /// Announces the device until the host hears of it.
    bool HelloArrives(std::chrono::milliseconds deadline = std::chrono::seconds(10))
    {
        const int before = hellos;
        return WaitUntil(
            [&] {
                device.Send(DeviceDatagram("Hello", "1.0.18", "press-4"));
                return WaitUntil([&] { return hellos > before; }, std::chrono::milliseconds(20));
            },
            deadline);
    }

    bool DiscoverArrives() { return Zent::Discovery::ExtC::Discover() == 0 && device.Hears("AllSendYourSignature"); }

    /// No thread, and nobody on the server's port.
    static void ExpectStopped()
    {
        EXPECT_EQ(0, Nfx::System::Threading::Thread::RunningThreadIds().Count());
        EXPECT_TRUE(Device::IsServerPortFree());
    }

    /// Nor any handle.
    static void ExpectNothingLeft()
    {
        ExpectStopped();
        Zent::Discovery::Server::DiscoveryServerFacade::Destroy(); // a second Terminate leaves an idle one
        EXPECT_EQ(0, Faults::OpenHandles());
    }

    std::string Log() const { return folder.Read("logs/test.log"); }

    /// How often a text is in the log.
    int Count(std::string_view text) const { return folder.CountIn("logs/test.log", text); }

    bool LogTellsOfAFailure() const { return Count("|E|") > 0; }

    bool WaitForLine(std::string_view text, int times = 1) const
    {
        return WaitUntil([&] { return Count(text) >= times; });
    }

    static void DISCOVERY_EXTC_CALL OnHello(const char*)
    {
        ++hellos;
        Gate* const gate = callbackGate;
        if (gate != nullptr)
        {
            gate->Pass();
        }
        if (void (*const body)() = callbackBody.exchange(nullptr))
        {
            body();
        }
    }

    const TemporaryFolder folder;
    Device device;
    static inline std::atomic<int> hellos{0};
    static inline std::atomic<Gate*> callbackGate{nullptr};      // holds the callback when there is one
    static inline std::atomic<void (*)()> callbackBody{nullptr}; // then runs on its thread, once
};
} // namespace Tests
