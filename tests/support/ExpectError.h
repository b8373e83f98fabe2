#pragma once

#include "system/Exception.h"

#include <gtest/gtest.h>

/// Expects the statement to throw an Exception with this error code.
#define EXPECT_ERROR(STATEMENT, CODE)                                                                                  \
    try                                                                                                                \
    {                                                                                                                  \
        static_cast<void>(STATEMENT);                                                                                  \
        ADD_FAILURE() << #STATEMENT " does not throw";                                                                 \
    }                                                                                                                  \
    catch (const ::Nfx::System::Exception& exception)                                                                  \
    {                                                                                                                  \
        EXPECT_EQ(exception.GetError().Code(), CODE) << exception.ToString().View();                                   \
    }                                                                                                                  \
    static_assert(true)
