#include "system/IO/StreamWriter.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Nfx::System;
using namespace Nfx::System::IO;

namespace
{
/// Takes only so many bytes.
class NarrowStream final : public Stream
{
public:
    std::size_t Write(std::string_view bytes) override
    {
        const std::size_t count = std::min(bytes.size(), Room);
        Taken.append(bytes.substr(0, count));
        Room -= count;
        return count;
    }

    String GetFailureText() const override { return "no room"; }

    void Close() override {}

    std::string Taken;
    std::size_t Room = 0;
};
} // namespace

TEST(StreamWriterTest, TextThatWasTakenInPartIsCompletedBeforeTheNext)
{
    NarrowStream* const target = new NarrowStream();
    const SmartPointer<Stream> stream(target);
    StreamWriter writer(stream);
    EXPECT_FALSE(writer.TryWrite("never"));

    target->Room = 3;
    EXPECT_TRUE(writer.TryWrite("first"));
    EXPECT_EQ(writer.GetUnfinishedText(), "first");
    target->Room = 1;
    EXPECT_FALSE(writer.TryWrite("second"));
    target->Room = 100;
    EXPECT_TRUE(writer.TryWrite("third"));
    EXPECT_EQ(target->Taken, "firstthird");
    EXPECT_EQ(writer.GetUnfinishedText(), "");
}

TEST(StreamWriterTest, WriteKeepsWhatFindsNoRoom)
{
    NarrowStream* const target = new NarrowStream();
    const SmartPointer<Stream> stream(target);
    StreamWriter writer(stream);
    writer.Write("one ");
    target->Room = 2;
    writer.Write("two ");
    EXPECT_FALSE(writer.TryFlush());
    target->Room = 100;
    EXPECT_TRUE(writer.TryFlush());
    EXPECT_EQ(target->Taken, "one two ");
}
