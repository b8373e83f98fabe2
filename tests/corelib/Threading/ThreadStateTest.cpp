#include "system/Threading/ThreadState.h"

#include "support/ExpectError.h"
#include "system/ErrorCodes.h"

#include <gtest/gtest.h>

namespace Nfx::System::Threading
{
namespace
{
TEST(ThreadStateTest, TextNamesTheFlagsInAscendingOrderAndNoOtherIsRead)
{
    const std::pair<std::int32_t, const char*> cases[] = {
        {ThreadState::Running, "Running"},
        {ThreadState::Aborted, "Aborted"},
        {ThreadState::WaitSleepJoin | ThreadState::Background, "Background, WaitSleepJoin"},
        {ThreadState::AbortRequested | ThreadState::StopRequested | ThreadState::Suspended,
         "StopRequested, Suspended, AbortRequested"}};
    for (const auto& [value, text] : cases)
    {
        EXPECT_EQ(ThreadState(value).ToString(), text);
        EXPECT_EQ(ThreadState::Parse(text), value);
    }
    EXPECT_EQ(ThreadState(512 + 16).ToString(), "528"); // not all of it has a name
    for (const char* text : {"", "running", "Background,WaitSleepJoin", "Background, ", ", Background", "4"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(ThreadState::Parse(text), ErrorCodes::InvalidFormat);
    }
}
} // namespace
} // namespace Nfx::System::Threading
