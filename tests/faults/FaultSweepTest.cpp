#include "FaultTest.h"
#include "system/Net/Sockets/SocketError.h"

#include <filesystem>
#include <ostream>

namespace Tests
{
namespace ExtC = Zent::Discovery::ExtC;
using Nfx::System::Net::Sockets::SocketError;

namespace
{
struct Kind
{
    const char* Name;
    Call What;
    std::int32_t Error;
};

constexpr Kind Kinds[] = {{"socket", Call::OpenSocket, SocketError::TooManyOpenSockets},
                          {"option", Call::SetOption, SocketError::NoBufferSpaceAvailable},
                          {"bind", Call::Bind, SocketError::AddressAlreadyInUse},
                          {"connect", Call::Connect, SocketError::NetworkUnreachable},
                          {"send", Call::Send, SocketError::HostUnreachable},
                          {"receive", Call::Receive, SocketError::NetworkDown},
                          {"shutdown", Call::Shutdown, SocketError::NetworkDown},
                          {"thread", Call::CreateThread, 0},
                          {"event", Call::CreateEvent, 0},
                          {"semaphore", Call::CreateSemaphore, 0},
                          {"release", Call::ReleaseSemaphore, 0},
                          {"wait", Call::WaitSemaphore, 0},
                          {"open", Call::OpenFile, 28},
                          {"write", Call::WriteFile, 28},
                          {"rename", Call::RenameFile, 13}};

std::ostream& operator<<(std::ostream& stream, const Kind& kind)
{
    return stream << kind.Name;
}
} // namespace

class FaultSweepTest : public FaultTest, public testing::WithParamInterface<Kind>
{
protected:
    /// The life of a host application in which one call fails; false when it is over before that call came.
    bool IsStruck(const Kind& kind, int number)
    {
        std::filesystem::remove_all(folder.PathOf("logs"));
        if (kind.What == Call::RenameFile || kind.What == Call::OpenFile)
        {
            std::filesystem::create_directory(folder.PathOf("logs"));
            folder.Write("logs/test.log", std::string(FullLog, '\n')); // the first line makes it split
        }
        Faults::Fail(kind.What, number, 1, kind.Error);
        const bool isTold = Live();
        const bool isStruck = Faults::FailedCalls() > 0;
        Faults::Clear();
        EXPECT_EQ(0, ExtC::Terminate()); // of what a failed one has left
        ExpectNothingLeft();
        EXPECT_TRUE(isTold || !isStruck || IsToldInLog(kind, number)) << Log();
        return isStruck;
    }

    /// True when a call reported a failure. A server that could be started serves, whatever has failed.
    bool Live()
    {
        if (Initialize() != 0)
        {
            return true;
        }
        const bool isStarted = ExtC::StartServer() == 0;
        bool hasFailed = !isStarted;
        if (isStarted)
        {
            hasFailed = ExtC::InitBroadcastProvider("[\"127.0.0.1\"]") != 0;
            hasFailed = ExtC::Discover() != 0 || hasFailed;
            EXPECT_TRUE(HelloArrives());
            EXPECT_TRUE(WaitUntil([&] { return ExtC::Discover() == 0 && device.Hears("AllSend", Patience); }));
        }
        hasFailed = ExtC::StopServer() != 0 || hasFailed;
        return ExtC::Terminate() != 0 || hasFailed;
    }

private:
    bool IsToldInLog(const Kind& kind, int number) const
    {
        if (kind.What == Call::WaitSemaphore)
        {
            return true; // a wait that ends early harms nobody
        }
        if (kind.What != Call::WriteFile)
        {
            return LogTellsOfAFailure();
        }
        // The opening is kept until it can be written, and the last line has no line after it to tell of its loss.
        const bool isHarmless = number <= OpeningWrites
                                    ? Count("|Start Log") == 1
                                    : Count("|Discovery Server stopped") == 1 && Count("|Close Log") == 0;
        return isHarmless || Count("|1 line lost: ") == 1;
    }

    static constexpr int OpeningWrites = 2;
    static constexpr std::chrono::milliseconds Patience{100};
    static constexpr std::size_t FullLog = 1024 * 1024;
};

TEST_P(FaultSweepTest, EveryFaultIsToldAndTheServerServesAfterIt)
{
    const Kind& kind = GetParam();
    bool isStruck = true;
    for (int number = 1; isStruck; ++number)
    {
        SCOPED_TRACE("call " + std::to_string(number));
        isStruck = IsStruck(kind, number);
        EXPECT_FALSE(Live()) << Log();
        ASSERT_FALSE(HasFailure());
    }
}

INSTANTIATE_TEST_SUITE_P(, FaultSweepTest, testing::ValuesIn(Kinds), [](const auto& test) { return test.param.Name; });
} // namespace Tests
