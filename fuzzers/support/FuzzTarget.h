#pragma once

#include "system/ErrorCodes.h"
#include "system/Exception.h"

#include <string_view>

namespace Fuzzing
{
/// What each fuzzer consists of: handles one input, which may be any bytes. Called twice for each, the second time with
/// an allocation that fails. Nothing may leave it but, when an allocation failed, an Exception or std::bad_alloc.
void Fuzz(std::string_view input);

/// Ends the program with a finding when the condition does not hold. After a failed allocation, which makes results
/// differ, it does nothing.
void Check(bool condition, const char* what);

/// Runs an attempt to read a text. False when it is refused, which must be for its format.
template <class TAttempt>
bool IsAccepted(TAttempt&& attempt)
{
    try
    {
        attempt();
        return true;
    }
    catch (const Nfx::System::Exception& exception)
    {
        Check(exception.GetError().Code() == Nfx::System::ErrorCodes::InvalidFormat, "refused for its format");
        return false;
    }
}
} // namespace Fuzzing
