#include "DiscoveryServerExtCFacade.h"
#include "support/MemoryFaults.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace Tests
{
namespace ExtC = Zent::Discovery::ExtC;

/// Processes that use the library for the first time while they have no memory left: then its tables are made.
class FirstUseDeathTest : public testing::Test
{
protected:
    FirstUseDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); } // each in a process of its own

    void Sweep(int step, int count)
    {
        bool isStruck = true;
        const auto hasEnded = [&isStruck](int status) {
            isStruck = WIFEXITED(status) && WEXITSTATUS(status) == Struck;
            return isStruck || testing::ExitedWithCode(0)(status);
        };
        for (int number = 1; isStruck; number += step)
        {
            EXPECT_EXIT(Live(number, count), hasEnded, "") << "allocation " << number;
            ASSERT_FALSE(HasFailure());
        }
    }

private:
    static constexpr int Struck = 77; // the exit code of a process in which memory was short

    [[noreturn]] static void Live(int first, int count)
    {
        alarm(30); // a call that never returns is no better than one that ends the process
        const bool isStruck = UseLibrary(first, count);
        std::_Exit(isStruck ? Struck : 0);
    }

    static bool UseLibrary(int first, int count)
    {
        const TemporaryFolder folder;
        const std::string path = folder.PathOf("test.log");
        MemoryFaults::Fail(first, count);
        ExtC::Initialize(path.c_str(), DiscoveryLogDebug);
        ExtC::StartServer();
        ExtC::InitBroadcastProvider("[\"127.0.0.1\"]");
        ExtC::Discover();
        ExtC::StopServer();
        ExtC::Terminate();
        ExtC::Discover();
        return MemoryFaults::Clear() > 0;
    }
};

TEST_F(FirstUseDeathTest, EndsNoProcessForWantOfOneAllocation)
{
    Sweep(7, 1);
}

TEST_F(FirstUseDeathTest, EndsNoProcessForWantOfMemory)
{
    Sweep(7, MemoryFaults::Always);
}

TEST_F(FirstUseDeathTest, LongEndsNoProcessForWantOfOneAllocation)
{
    Sweep(1, 1);
}

TEST_F(FirstUseDeathTest, LongEndsNoProcessForWantOfMemory)
{
    Sweep(1, MemoryFaults::Always);
}
} // namespace Tests
