#include "support/MemoryFaults.h"
#include "system/IO/StreamWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>

namespace Tests
{
using namespace Nfx::System;
using namespace Nfx::System::IO;

namespace
{
/// Takes only so many bytes, and takes all memory with them.
class GreedyStream final : public Stream
{
public:
    std::size_t Write(std::string_view bytes) override
    {
        const std::size_t count = std::min(bytes.size(), Room);
        Room -= count;
        bytes.substr(0, count).copy(Taken + Length, count);
        Length += count;
        MemoryFaults::Fail(1, MemoryFaults::Always);
        return count;
    }

    String GetFailureText() const override { return "no room"; }

    void Close() override {}

    std::string_view Text() const { return {Taken, Length}; }

    char Taken[200] = {};
    std::size_t Length = 0;
    std::size_t Room = 0;
};
} // namespace

TEST(LogMemoryTest, ALineOfWhichAPartIsWrittenIsCompletedThoughMemoryRunsOut)
{
    GreedyStream* const target = new GreedyStream();
    StreamWriter writer{SmartPointer<Stream>(target)};
    const std::string line(50, 'l');
    target->Room = 10;
    const bool isBegun = writer.TryWrite(line);
    target->Room = 100;
    const bool isCompleted = writer.TryWrite("next");
    MemoryFaults::Clear();
    EXPECT_TRUE(isBegun && isCompleted);
    EXPECT_EQ(target->Text(), line + "next");
}
} // namespace Tests
