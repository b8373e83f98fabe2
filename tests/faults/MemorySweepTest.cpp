#include "FaultTest.h"
#include "support/MemoryFaults.h"
#include "system/ErrorCodes.h"
#include "system/Net/Sockets/SocketError.h"
#include "system/Threading/Lock.h"

#include <filesystem>

namespace Tests
{
namespace ErrorCodes = Nfx::System::ErrorCodes;
namespace ExtC = Zent::Discovery::ExtC;
using Nfx::System::Net::Sockets::SocketError;

namespace
{
// The check of adoptions does without its notes when there is no memory for them.
#if defined(NFX_CHECK_ADOPTION)
constexpr bool MayBeSilent = true;
#else
constexpr bool MayBeSilent = false;
#endif
} // namespace

/// The lives of host applications in which memory runs out, once or for a while.
class MemorySweepTest : public FaultTest
{
protected:
    ~MemorySweepTest() override { MemoryFaults::Clear(); }

    /// Lets the allocations from first on fail, then from a later one, until a life is over before that.
    void Sweep(int first, int step, int count)
    {
        bool isStruck = true;
        for (int number = first; isStruck; number += step)
        {
            SCOPED_TRACE("allocation " + std::to_string(number));
            isStruck = IsStruck(number, count);
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_FALSE(Live()) << Log();
    }

    /// True when a call reported a failure. A server that could be started serves as soon as there is memory again.
    bool Live()
    {
        hasFailed = false;
        const std::string path = folder.PathOf("logs/test.log");
        if (!Succeeds([&] { return ExtC::Initialize(path.c_str(), DiscoveryLogDebug); }) ||
            !Succeeds([] { return ExtC::SetHelloMessageReceivedEventCallBack(&OnHello); }))
        {
            return true;
        }
        if (Succeeds([] { return ExtC::StartServer(); }))
        {
            BeServed();
        }
        Succeeds([] { return ExtC::StopServer(); });
        Succeeds([] { return ExtC::Terminate(); });
        return hasFailed;
    }

    void BeServed()
    {
        Succeeds([] { return ExtC::InitBroadcastProvider("[\"127.0.0.1\"]"); });
        Succeeds([] { return ExtC::RefreshClient("00:1A:2B:3C:4D:5E"); });
        Succeeds([] { return ExtC::ReachClient("127.0.0.1"); });
        Succeeds([] { return ExtC::ChangeClientsHostName("press-4", "00:1A:2B:3C:4D:5E"); });
        Succeeds([] { return ExtC::ChangeClientsIPConfigurations("[]"); });
        EXPECT_TRUE(HelloArrives()) << Log();
        EXPECT_TRUE(WaitUntil([this] {
            return Succeeds([] { return ExtC::Discover(); }) && device.Hears("AllSend", std::chrono::milliseconds(100));
        })) << Log();
    }

private:
    bool IsStruck(int number, int count)
    {
        std::filesystem::remove_all(folder.PathOf("logs"));
        MemoryFaults::Fail(number, count);
        const bool isTold = Live();
        const bool isStruck = MemoryFaults::Clear() > 0;
        EXPECT_EQ(0, ExtC::Terminate()); // of what a failed one has left
        ExpectNothingLeft();
        // The last line of a log has no line after it to tell of its loss. A message is refused for want of memory as
        // it is for its format.
        EXPECT_TRUE(isTold || !isStruck || MayBeSilent || LogTellsOfAFailure() ||
                    Count("|out of memory") + Count(" lost") + Count("BAD MESSAGE FORMAT !") > 0 ||
                    Count("Close Log") == 0)
            << Log();
        return isStruck;
    }

    /// Calls the library while this thread's memory is as short as that of all others.
    template <class TCall>
    bool Succeeds(const TCall& call)
    {
        std::int32_t code = 0;
        {
            const MemoryFaults::Scope shortage(true);
            code = call();
        }
        // IO: the platform refuses a semaphore. NullPointer: the server does not run.
        EXPECT_TRUE(code == 0 || code == ErrorCodes::OutOfMemory || code == ErrorCodes::IO ||
                    code == ErrorCodes::NullPointer)
            << code << Log();
        hasFailed = hasFailed || code != 0;
        return code == 0;
    }

    const MemoryFaults::Scope spared{false};
    bool hasFailed = false;
};

TEST_F(MemorySweepTest, ASingleFailureIsToldAndCostsNoMoreThanWhatItStruck)
{
    Sweep(1, 5, 1);
}

TEST_F(MemorySweepTest, LongEverySingleFailureIsTold)
{
    Sweep(1, 1, 1);
}

TEST_F(MemorySweepTest, AShortageIsToldAndOutlived)
{
    Sweep(1, 11, 30);
}

TEST_F(MemorySweepTest, AStopNeedsNoMemory)
{
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(WaitUntil([] {
        Faults::Fail(Call::ReleaseSemaphore, 1);
        EXPECT_EQ(0, ExtC::Discover());
        return Faults::FailedCalls() > 0; // nobody wakes the task processor, and the stop has something to discard
    }));
    std::int32_t code = 0;
    {
        const MemoryFaults::Scope shortage(true);
        MemoryFaults::Fail(1, MemoryFaults::Always);
        code = ExtC::StopServer();
        MemoryFaults::Clear();
    }
    EXPECT_EQ(0, code) << Log();
    ExpectStopped();
}

TEST_F(MemorySweepTest, LongARestartOutlivesAShortage)
{
    bool isStruck = true;
    for (int number = 1; isStruck; number += 10)
    {
        SCOPED_TRACE("allocation " + std::to_string(number));
        ASSERT_NO_FATAL_FAILURE(Serve());
        ASSERT_TRUE(HelloArrives());
        Faults::Fail(Call::Receive, 1, 1, SocketError::NetworkDown);
        MemoryFaults::Fail(number, 3);
        device.Send("{}");
        EXPECT_TRUE(HelloArrives()) << Log();
        isStruck = MemoryFaults::Clear() > 0;
        EXPECT_EQ(0, ExtC::StopServer());
        Faults::Clear();
        EXPECT_EQ(0, ExtC::Terminate());
        ExpectNothingLeft();
        std::filesystem::remove_all(folder.PathOf("logs"));
        ASSERT_FALSE(HasFailure());
    }
}

TEST(ObjectMonitorsTest, KeepNothingOfAnObjectThatNoThreadLocks)
{
    const Nfx::System::String object;
    const auto allocations = [&object] {
        MemoryFaults::Fail(MemoryFaults::Always);
        const Nfx::System::Threading::Lock lock(object);
        MemoryFaults::Clear();
        return MemoryFaults::Seen();
    };
    allocations();
    EXPECT_GT(allocations(), 0); // for the same object again
}
} // namespace Tests
