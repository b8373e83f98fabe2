#include "EndThread.h"
#include "FaultTest.h"

namespace Tests
{
class ThreadExitTest : public FaultTest
{
};

TEST_F(ThreadExitTest, ACallbackThatEndsItsThreadCostsARestart)
{
    ASSERT_NO_FATAL_FAILURE(Serve());
    callbackBody = &EndThread;
    ASSERT_TRUE(HelloArrives());
    EXPECT_TRUE(HelloArrives());
    EXPECT_TRUE(DiscoverArrives());
    EXPECT_EQ(1, Count("A callback has ended the thread that it was called on."));
    EXPECT_EQ(1, Count("Asynchronous restart triggered"));
    EXPECT_EQ(0, Zent::Discovery::ExtC::StopServer());
    ExpectStopped();
}
} // namespace Tests
