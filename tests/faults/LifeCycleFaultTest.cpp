#include "FaultTest.h"
#include "system/Net/Sockets/SocketError.h"

#include <atomic>
#include <cstdint>
#include <iterator>
#include <thread>

namespace Tests
{
namespace ExtC = Zent::Discovery::ExtC;
using Nfx::System::Net::Sockets::SocketError;

namespace
{
constexpr const char* Restart = "Asynchronous restart triggered";
constexpr const char* StillWaiting = "Still waiting for the worker, or for a callback that it called, to return";
constexpr int Requests = 300;
} // namespace

class LifeCycleFaultTest : public FaultTest
{
protected:
    /// Fails the receive after the one that waits now.
    void LoseSocket()
    {
        Faults::Fail(Call::Receive, 1, 1, SocketError::NetworkDown);
        device.Send("{}");
    }

    /// Stops the server while the stopper is held up where it closes the socket.
    void StopHeldAt(Call place)
    {
        Gate stopper;
        Gate callback;
        ASSERT_NO_FATAL_FAILURE(Serve());
        callbackGate = &callback;
        ASSERT_TRUE(HelloArrives());
        for (int number = 0; number < Requests; ++number)
        {
            ASSERT_EQ(0, ExtC::Discover());
        }
        Faults::Hold(place, stopper);
        std::thread stop([] { EXPECT_EQ(0, ExtC::StopServer()); });
        EXPECT_TRUE(stopper.WaitForArrivals(1));
        callbackGate = nullptr;
        callback.Open(); // now the requests find a socket that is being closed
        EXPECT_TRUE(WaitForLine("Message not sent", Requests));
        stopper.Open();
        stop.join();
        Faults::Clear();
        EXPECT_EQ(0, Count(Restart));
        EXPECT_EQ(1, Count("Discovery Server stopped"));
        ExpectStopped();
    }
};

TEST_F(LifeCycleFaultTest, NothingRestartsAServerThatIsAboutToCloseItsSocket)
{
    StopHeldAt(Call::BeforeClose);
}

TEST_F(LifeCycleFaultTest, NothingRestartsAServerThatHasJustClosedItsSocket)
{
    StopHeldAt(Call::AfterClose);
}

TEST_F(LifeCycleFaultTest, WhateverWakesTheReceiverOfAStoppingServerIsTheEndOfItsSocket)
{
    constexpr std::int32_t WakeUps[] = {SocketError::Interrupted, SocketError::InvalidArgument, SocketError::NotSocket,
                                        SocketError::OperationAborted};
    ASSERT_EQ(0, Initialize());
    for (const std::int32_t wakeUp : WakeUps)
    {
        Gate receiver;
        Gate stopper;
        ASSERT_EQ(0, ExtC::StartServer());
        ASSERT_TRUE(HelloArrives());
        Faults::Hold(Call::Receive, receiver);
        Faults::Fail(Call::Receive, 1, 1, wakeUp);
        Faults::Hold(Call::AfterClose, stopper);
        device.Send("{}");
        EXPECT_TRUE(receiver.WaitForArrivals(1));
        std::thread stop([] { EXPECT_EQ(0, ExtC::StopServer()); });
        EXPECT_TRUE(stopper.WaitForArrivals(1));
        receiver.Open();
        stopper.Open();
        stop.join();
        Faults::Clear();
    }
    EXPECT_EQ(std::ssize(WakeUps), Count("The socket has been closed : ending worker."));
    EXPECT_EQ(0, Count("Unexpected socket error") + Count("Operation attempted on a non-socket object"));
}

TEST_F(LifeCycleFaultTest, LongTwoThousandStopsUnderTrafficAreFinal)
{
    constexpr int Rounds = 2000;
    std::atomic<bool> isOver{false};
    std::thread traffic([&] {
        while (!isOver)
        {
            device.Send(DeviceDatagram("Hello", "1.0.18", "press-4"));
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    });
    EXPECT_EQ(0, Initialize(DiscoveryLogCritical));
    for (int round = 0; round < Rounds && !HasFailure(); ++round)
    {
        EXPECT_EQ(0, ExtC::StartServer());
        EXPECT_EQ(0, ExtC::InitBroadcastProvider("[\"127.0.0.1\"]"));
        EXPECT_EQ(0, ExtC::Discover());
        std::this_thread::sleep_for(std::chrono::microseconds(round % 16 * 100)); // to stop at every moment of a start
        EXPECT_EQ(0, ExtC::StopServer());
        ExpectStopped();
    }
    isOver = true;
    traffic.join();
    ExpectStopped(); // and without a thread nothing can come later
    EXPECT_EQ(Rounds, Count("Starting Discovery Server service"));
    EXPECT_EQ(0, Count(Restart));
    EXPECT_EQ(0, Count("Unexpected socket error"));
}

TEST_F(LifeCycleFaultTest, LongNoMomentOfARestartOutlastsAStop)
{
    for (int round = 0; round < 500 && !HasFailure(); ++round)
    {
        SCOPED_TRACE(round);
        ASSERT_NO_FATAL_FAILURE(Serve(DiscoveryLogCritical));
        ASSERT_TRUE(HelloArrives());
        LoseSocket();
        std::this_thread::sleep_for(std::chrono::milliseconds(round % 51));
        if (round % 2 == 0)
        {
            EXPECT_EQ(0, ExtC::StopServer());
            ExpectStopped();
        }
        EXPECT_EQ(0, ExtC::Terminate());
        ExpectNothingLeft();
        Faults::Clear();
    }
}

TEST_F(LifeCycleFaultTest, LongAStopSaysThatItWaitsForACallbackAndASecondOneReturnsNoEarlier)
{
    Gate callback;
    ASSERT_NO_FATAL_FAILURE(Serve());
    callbackGate = &callback;
    ASSERT_TRUE(HelloArrives());
    std::atomic<int> returned{0};
    const auto stop = [&] {
        EXPECT_EQ(0, ExtC::StopServer());
        ++returned;
    };
    std::thread first(stop);
    EXPECT_TRUE(WaitForLine("Stopping Task Processor")); // which waits for the callback
    std::thread second(stop);
    EXPECT_TRUE(WaitForLine(StillWaiting));
    EXPECT_EQ(0, returned);
    callbackGate = nullptr;
    callback.Open();
    first.join();
    second.join();
    EXPECT_EQ(1, Count("Discovery Server stopped"));
}

TEST_F(LifeCycleFaultTest, LongAStopThatTheSocketResistsWaitsForTheReceiverAllTheSame)
{
    Gate receiver;
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(HelloArrives());
    Faults::Hold(Call::Receive, receiver);
    device.Send("{}");
    ASSERT_TRUE(receiver.WaitForArrivals(1));
    Faults::Fail(Call::Shutdown, 1, 1, SocketError::NetworkDown);
    std::atomic<bool> isOver{false};
    std::thread stop([&] {
        EXPECT_NE(0, ExtC::StopServer());
        isOver = true;
    });
    EXPECT_TRUE(WaitForLine(StillWaiting));
    EXPECT_EQ(1, Faults::FailedCalls());
    EXPECT_FALSE(isOver);
    receiver.Open();
    stop.join();
    Faults::Clear();
}

TEST_F(LifeCycleFaultTest, ALossWhileARestartIsNotYetThroughIsAnsweredToo)
{
    Gate starter;
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(HelloArrives());
    Faults::Hold(Call::AfterCreateThread, starter,
                 4); // the background's, the task processor's, the parser's, then this
    Faults::Fail(Call::Receive, 1, 2, SocketError::NetworkDown);
    device.Send("{}");
    EXPECT_TRUE(starter.WaitForArrivals(1));
    EXPECT_TRUE(WaitForLine("Unexpected socket error", 2));
    EXPECT_TRUE(WaitForLine(Restart, 2));
    starter.Open();
    EXPECT_TRUE(HelloArrives());
    EXPECT_TRUE(DiscoverArrives());
    EXPECT_EQ(2, Count(Restart));
    EXPECT_EQ(0, ExtC::StopServer()); // the last thread at the gate has left it
}

TEST_F(LifeCycleFaultTest, ALossWhileARestartFailsIsAnsweredByTheNextOne)
{
    Gate starter;
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(HelloArrives());
    Faults::Hold(Call::CreateThread, starter, 3); // the background's, the task processor's, then the parser's
    Faults::Fail(Call::CreateThread, 3);
    LoseSocket();
    ASSERT_TRUE(starter.WaitForArrivals(1));
    Faults::Fail(Call::Send, 1, 1, SocketError::NetworkDown);
    EXPECT_EQ(0, ExtC::Discover());
    ASSERT_TRUE(starter.WaitForArrivals(2)); // the task processor calls for another restart
    starter.Open();
    EXPECT_TRUE(HelloArrives());
    EXPECT_TRUE(DiscoverArrives());
    EXPECT_EQ(1, Count("Restart failed, trying again in 1 s"));
    EXPECT_EQ(2, Count(Restart));
    EXPECT_EQ(0, ExtC::StopServer()); // the last thread at the gate has left it
}

TEST_F(LifeCycleFaultTest, ARestartStartsOnTheSocketThatItHasTriedThePortWith)
{
    ASSERT_NO_FATAL_FAILURE(Serve());
    Faults::Fail(Call::OpenSocket, 2, 1, SocketError::TooManyOpenSockets);
    LoseSocket();
    EXPECT_TRUE(WaitForLine("---Listening...", 2));
    EXPECT_TRUE(HelloArrives());
    EXPECT_EQ(1, Faults::FailedCalls()); // the receive
}

TEST_F(LifeCycleFaultTest, AStartWhileARestartWaitsTakesItsPlaceOrChangesNothing)
{
    struct Case
    {
        Call Failing;
        int Number; // 0 for none
        int Code;
    };

    constexpr int NullPointer = 41;
    const auto unheard = [this] { return Count("Notifying receipt of Hello message") - hellos; };
    int waits = 0;
    for (const Case& start : {Case{Call::Bind, 1, 73}, Case{Call::CreateThread, 3, 27}, Case{Call::Bind, 0, 0}})
    {
        SCOPED_TRACE(start.Code);
        const int before = unheard();
        ASSERT_NO_FATAL_FAILURE(Serve());
        ASSERT_TRUE(HelloArrives());
        ASSERT_EQ(0, ExtC::InitBroadcastProvider("[\"127.0.0.1\"]"));
        Faults::Fail(Call::Bind, 1, Faults::Always, SocketError::AddressAlreadyInUse);
        LoseSocket();
        ASSERT_TRUE(WaitForLine("trying again in 4 s", ++waits));
        Faults::Clear();
        Faults::Fail(start.Failing, start.Number, 1, SocketError::AddressAlreadyInUse);
        EXPECT_EQ(start.Code, ExtC::StartServer());
        EXPECT_EQ(start.Code == 0 ? 0 : NullPointer, ExtC::Discover());
        Faults::Clear();
        EXPECT_TRUE(HelloArrives());
        EXPECT_TRUE(DiscoverArrives());
        EXPECT_TRUE(WaitForLine("Sending from 127.0.0.1..."));
        EXPECT_TRUE(WaitUntil([&] { return unheard() == before; })); // each is heard once
        EXPECT_EQ(0, ExtC::Terminate());
        ExpectStopped();
    }
}

TEST_F(LifeCycleFaultTest, AStopOrStartInPlaceOfARestartEndsWhatThatCouldNotStop)
{
    for (const bool isStopped : {true, false})
    {
        SCOPED_TRACE(isStopped);
        ASSERT_EQ(0, ExtC::StartServer());
        ASSERT_EQ(0, ExtC::InitBroadcastProvider("[\"127.0.0.1\"]"));
        Faults::Fail(Call::Shutdown, 1, 1, SocketError::NetworkDown);
        LoseSocket();
        ASSERT_TRUE(WaitUntil([] { return Faults::FailedCalls() == 2; })); // the receiver's and the restart's
        if (isStopped)
        {
            EXPECT_EQ(0, ExtC::StopServer());
            ExpectStopped();
        }
        EXPECT_EQ(0, Initialize()); // is no reason to give up a restart that waits
        EXPECT_EQ(0, ExtC::StartServer());
        EXPECT_TRUE(HelloArrives());
        EXPECT_TRUE(DiscoverArrives());
        EXPECT_EQ(!isStopped, Count("Sending from 127.0.0.1...") > 0);
        EXPECT_EQ(0, ExtC::Terminate());
        Faults::Clear();
    }
}

TEST_F(LifeCycleFaultTest, InitializeGetsRidOfAServerThatFailedToStart)
{
    Faults::Fail(Call::Bind, 1, 1, SocketError::AddressAlreadyInUse);
    EXPECT_NE(0, ExtC::StartServer());
    EXPECT_EQ(0, ExtC::Terminate());
    ASSERT_NO_FATAL_FAILURE(Serve());
    EXPECT_TRUE(HelloArrives());
}

TEST_F(LifeCycleFaultTest, LongWaitForThePortGetsLongerUpToTenSeconds)
{
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(HelloArrives());
    Faults::Fail(Call::Bind, 1, Faults::Always, SocketError::AddressAlreadyInUse);
    LoseSocket();
    for (const char* delay : {"in 1 s", "in 2 s", "in 4 s", "in 8 s", "in 10 s"})
    {
        EXPECT_TRUE(WaitForLine(std::string("No socket for the restart yet, trying again ") + delay)) << delay;
    }
    Faults::Clear();
    EXPECT_TRUE(HelloArrives(std::chrono::seconds(15)));
}

TEST_F(LifeCycleFaultTest, AStopCancelsTheWaitForThePort)
{
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(HelloArrives());
    Faults::Fail(Call::Bind, 1, Faults::Always, SocketError::AddressAlreadyInUse);
    LoseSocket();
    ASSERT_TRUE(WaitForLine("trying again in 4 s"));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(0, ExtC::StopServer());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    Faults::Clear();
    ExpectStopped();
    EXPECT_EQ(0, ExtC::StartServer());
    EXPECT_TRUE(HelloArrives());
}

TEST_F(LifeCycleFaultTest, LongARestartOutlivesAFailureOfEachOfItsCalls)
{
    struct Case
    {
        Call What;
        std::int32_t Error;
    };

    for (const Case& failing : {Case{Call::OpenSocket, SocketError::TooManyOpenSockets},
                                Case{Call::SetOption, SocketError::NoBufferSpaceAvailable},
                                Case{Call::Bind, SocketError::AddressAlreadyInUse}, Case{Call::CreateThread, 0},
                                Case{Call::CreateSemaphore, 0}, Case{Call::ReleaseSemaphore, 0},
                                Case{Call::Shutdown, SocketError::NetworkDown}})
    {
        bool isStruck = true;
        for (int number = 1; isStruck; ++number)
        {
            SCOPED_TRACE(testing::Message() << static_cast<int>(failing.What) << ", " << number);
            ASSERT_NO_FATAL_FAILURE(Serve());
            ASSERT_TRUE(HelloArrives());
            const int restartsBefore = Count(Restart);
            Faults::Fail(failing.What, number, 1, failing.Error);
            LoseSocket();
            ASSERT_TRUE(WaitForLine(Restart, restartsBefore + 1));
            EXPECT_TRUE(HelloArrives()) << Log();
            isStruck = Faults::FailedCalls() > 1; // the receive is one
            ExtC::StopServer();
            Faults::Clear();
            EXPECT_EQ(0, ExtC::Terminate());
            ExpectNothingLeft();
        }
    }
}

TEST_F(LifeCycleFaultTest, ARestartTellsHowMuchItDiscards)
{
    constexpr int Tasks = 5;
    constexpr int Datagrams = 7;
    Gate parser;
    Gate callback;
    ASSERT_NO_FATAL_FAILURE(Serve());
    callbackGate = &callback;
    device.Send(DeviceDatagram("Hello", "1.0.18", "press-4"));
    ASSERT_TRUE(WaitUntil([] { return hellos == 1; }));
    Faults::Hold(Call::WaitSemaphore, parser);
    device.Send("{}"); // wakes the parser, or waits already when that is not asleep yet
    ASSERT_TRUE(parser.WaitForArrivals(1));
    for (int number = 0; number < Datagrams; ++number)
    {
        device.Send("{}");
    }
    ASSERT_TRUE(WaitForLine("|Message received", 2 + Datagrams));
    for (int number = 0; number < Tasks; ++number)
    {
        ASSERT_EQ(0, ExtC::RefreshClient("00:1A:2B:3C:4D:5E"));
    }
    LoseSocket();
    EXPECT_TRUE(WaitForLine("Stopping message parser"));
    parser.Open();
    EXPECT_TRUE(WaitForLine("Stopping worker", 2)); // the task processor, after the receiver
    callbackGate = nullptr;
    callback.Open();
    ASSERT_TRUE(WaitForLine("Starting Discovery Server service", 2));
    const int left = Count("|Message received") - Count("|Message type") - Count("|Invalid format : message dropped");
    EXPECT_LT(0, left);
    EXPECT_EQ(1, Count("|Discarded what was still queued : " + std::to_string(Tasks) + " tasks, " +
                       std::to_string(left) + " datagrams."))
        << Log();
    Faults::Clear();
    EXPECT_TRUE(HelloArrives());
}

TEST_F(LifeCycleFaultTest, ATaskWhoseWakeUpFailsIsDoneWithTheNext)
{
    ASSERT_NO_FATAL_FAILURE(Serve());
    std::string mac;
    int number = 10;
    ASSERT_TRUE(WaitUntil([&] { // the task processor has to sleep
        mac = "02:00:00:00:00:" + std::to_string(number++);
        Faults::Fail(Call::ReleaseSemaphore, 1);
        EXPECT_EQ(0, ExtC::RefreshClient(mac.c_str()));
        return Faults::FailedCalls() > 0;
    }));
    EXPECT_EQ(1, Count("Task queued, but the processor not woken"));
    EXPECT_EQ(0, ExtC::Discover());
    EXPECT_TRUE(device.Hears(mac));
}
} // namespace Tests
