#pragma once

#include "system/Exceptions.h"

#include <gtest/gtest.h>

namespace Nfx::System::Threading
{
/// Whether the action throws an exception of this class from this place; failures say what it did instead.
template <class TException, class TAction>
testing::AssertionResult ThrowsAt(const char* sourceFile, std::int32_t line, const TAction& action)
{
    try
    {
        action();
    }
    catch (const Exception& exception)
    {
        if (dynamic_cast<const TException*>(&exception) != nullptr && exception.GetSourceFile() == sourceFile &&
            exception.GetSourceLine() == line)
        {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << exception.ToString().View() << " at " << exception.GetSourceFile().View()
                                           << "(" << exception.GetSourceLine() << ")";
    }
    return testing::AssertionFailure() << "no exception";
}
} // namespace Nfx::System::Threading
