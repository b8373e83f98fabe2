#include "system/SmartPointer.h"

#include "support/RunOnThreads.h"
#include "system/Int32.h"
#include "system/Interface.h"

#include <gtest/gtest.h>

namespace
{
using namespace Nfx::System;

int alive = 0;

class Base : public Object
{
public:
    Base() { ++alive; }

    ~Base() override { --alive; }
};

class Named : public Interface
{
};

class Derived final : public Base, public Named
{
};

String CountText(const SmartPointer<Base>& pointer)
{
    const String text = pointer.ToString();
    return String(text.View().substr(text.View().find("Aliases")));
}

TEST(SmartPointerTest, CountsItsAliasesAndDeletesWithTheLast)
{
    {
        SmartPointer<Base> first(new Derived());
        {
            const SmartPointer<Base> second(first);
            SmartPointer<Base> third;
            third = second;
            for (const SmartPointer<Base>* pointer : {&std::as_const(first), &second, &std::as_const(third)})
            {
                EXPECT_EQ("Aliases Count=3]", CountText(*pointer));
            }
        }
        EXPECT_EQ("Aliases Count=1]", CountText(first));
        EXPECT_TRUE(first.ToString().View().starts_with("SmartPointer [Pointer=0x"));
        first = new Derived();
        EXPECT_EQ(1, alive);
        first = nullptr;
        EXPECT_EQ(0, alive);
        EXPECT_EQ("SmartPointer [null]", first.ToString());
    }
    EXPECT_EQ(0, alive);
}

TEST(SmartPointerTest, ReleasesBeforeItTakes)
{
    SmartPointer<Base> pointer(new Base());
    const SmartPointer<Base>& itself = pointer;
    pointer = itself;
    EXPECT_TRUE(pointer.IsNull());
    EXPECT_EQ(0, alive);
}

TEST(SmartPointerTest, NamesThePlaceOfItsFailures)
{
    SmartPointer<Base> empty;
    try
    {
        *empty;
        FAIL();
    }
    catch (const NullPointerException& exception)
    {
        EXPECT_EQ("include/system/SmartPointer", exception.GetSourceFile());
        EXPECT_EQ(109, exception.GetSourceLine());
    }
    const SmartPointer<Base> kept(new Base());
    SmartPointer<Base> pointer(kept);
    try
    {
        pointer.Assign(nullptr);
        FAIL();
    }
    catch (const ArgumentNullException& exception)
    {
        EXPECT_EQ(186, exception.GetSourceLine());
    }
    EXPECT_FALSE(pointer.IsNull());
}

TEST(SmartPointerTest, ComparesByCounterThenByTheObjects)
{
    const SmartPointer<Int32> one(new Int32(1));
    const SmartPointer<Int32> alias(one);
    const SmartPointer<Int32> otherOne(new Int32(1));
    const SmartPointer<Int32> two(new Int32(2));
    const SmartPointer<Int32> empty;
    EXPECT_TRUE(one.Equals(&alias));
    EXPECT_TRUE(one.Equals(&otherOne));
    EXPECT_FALSE(one.Equals(&two));
    EXPECT_FALSE(empty.Equals(&empty));
    EXPECT_FALSE(one.Equals(&empty));
}

TEST(SmartPointerTest, SharesOneObjectUnderSeveralTypes)
{
    {
        SmartPointer<Named> named;
        {
            const SmartPointer<Base> base(new Derived());
            named = base.As<Named>();
            EXPECT_EQ("Aliases Count=2]", CountText(base));
            EXPECT_TRUE(base.As<Int32>().IsNull());
            const SmartPointer<Object> object = base;
            EXPECT_EQ("Aliases Count=3]", CountText(base));
        }
        EXPECT_EQ(1, alive);
    }
    EXPECT_EQ(0, alive);
}

TEST(SmartPointerTest, IsCopiedAndDroppedOnManyThreads)
{
    const SmartPointer<Base> shared(new Base());
    Tests::RunOnThreads(4, [&shared](int) {
        for (int round = 0; round < 10000; ++round)
        {
            const SmartPointer<Base> copy(shared);
        }
    });
    EXPECT_EQ("Aliases Count=1]", CountText(shared));
}
} // namespace
