#pragma once

#include "Os/IString.h"

namespace Nfx::Os
{
class StringW32 final : public IString
{
public:
    System::String ToUtf8(const System::String& text) override;
};
} // namespace Nfx::Os
