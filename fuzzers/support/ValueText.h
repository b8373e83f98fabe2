#pragma once

#include "support/FuzzTarget.h"
#include "system/String.h"

#include <optional>

namespace Fuzzing
{
/// Reads a text as a value of type T. It must be accepted when it is valid and only then; what is read, written and
/// read again must be the same value.
template <class T>
void FuzzValueText(std::string_view text, bool isValid)
{
    std::optional<T> value;
    const bool isAccepted = IsAccepted([&] { value = T::Parse(Nfx::System::String(text)); });
    Check(isAccepted == isValid, "valid texts and no others are accepted");
    if (value.has_value())
    {
        const Nfx::System::String written = value->ToString();
        const T again = T::Parse(written);
        Check(again == *value, "a written value reads as the same value");
        Check(again.ToString() == written, "a value has one text");
    }
}
} // namespace Fuzzing
