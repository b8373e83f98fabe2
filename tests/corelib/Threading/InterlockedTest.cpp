#include "system/Threading/Interlocked.h"

#include "support/ExpectError.h"
#include "support/RunOnThreads.h"

#include <gtest/gtest.h>

namespace Nfx::System::Threading
{
namespace
{
template <class TNumber>
class InterlockedTest : public testing::Test
{
};

using Numbers = testing::Types<Int32, Int64>;
TYPED_TEST_SUITE(InterlockedTest, Numbers);

TYPED_TEST(InterlockedTest, ReturnsTheNumberAfterAStepAndBeforeAnExchange)
{
    TypeParam number(5);
    EXPECT_EQ(Interlocked::Increment(&number), 6);
    EXPECT_EQ(Interlocked::Decrement(&number), 5);
    EXPECT_EQ(Interlocked::Exchange(&number, 8), 5);
    EXPECT_EQ(Interlocked::CompareExchange(&number, 9, 7), 8);
    EXPECT_EQ(number, 8);
    EXPECT_EQ(Interlocked::CompareExchange(&number, 9, 8), 8);
    EXPECT_EQ(number, 9);

    TypeParam* const none = nullptr;
    EXPECT_ERROR(Interlocked::Increment(none), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(Interlocked::Decrement(none), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(Interlocked::Exchange(none, 1), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(Interlocked::CompareExchange(none, 1, 0), ErrorCodes::ArgumentNull);
}

TYPED_TEST(InterlockedTest, LosesNoStepOfManyThreads)
{
    constexpr int rounds = 20000;
    TypeParam number(0);
    Tests::RunOnThreads(4, [&number](int) {
        for (int round = 0; round < rounds; ++round)
        {
            Interlocked::Increment(&number);
        }
    });
    EXPECT_EQ(number, 4 * rounds);
}
} // namespace
} // namespace Nfx::System::Threading
