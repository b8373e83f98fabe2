#include "support/ExpectError.h"
#include "system/Interface.h"
#include "system/SmartPointer.h"

#include <gtest/gtest.h>

namespace
{
using namespace Nfx::System;

class Named : public Interface
{
};

class Thing final : public Object, public Named
{
};

TEST(AdoptionTest, ASecondOneIsRefusedAndHarmsNothing)
{
    Thing* const thing = new Thing();
    const SmartPointer<Thing> owner(thing);
    EXPECT_ERROR(SmartPointer<Thing>{thing}, ErrorCodes::InvalidOperation);
    EXPECT_ERROR(SmartPointer<Named>{thing}, ErrorCodes::InvalidOperation);
    EXPECT_EQ(thing, &*owner);

    const auto made = SmartPointer<Thing>::Create();
    EXPECT_ERROR(SmartPointer<Thing>{&*made}, ErrorCodes::InvalidOperation);
}

TEST(AdoptionTest, WhatTakesThePlaceOfADeletedObjectIsAnother)
{
    for (int round = 0; round < 1000; ++round)
    {
        SmartPointer<Named> named;
        {
            const SmartPointer<Thing> thing(new Thing());
            named = thing;
        }
        named = nullptr; // deletes it by the other address
    }
}
} // namespace
