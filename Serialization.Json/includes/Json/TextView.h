#pragma once

#include "Json/JSONKey.h"
#include "system/Exceptions.h"
#include "system/String.h"

#include <string_view>

namespace Zent::Utils::Json
{
/// A key or value as the caller has it: a literal, a String or part of a text. Nothing is copied, so the text must
/// outlive the call that it is passed to.
class TextView final
{
public:
    /// @throws ArgumentNullException when text is null.
    TextView(const char* text)
        : text(NotNull(text))
    {
    }

    TextView(const Nfx::System::String& text) noexcept
        : text(text.View())
    {
    }

    TextView(std::string_view text) noexcept
        : text(text)
    {
    }

    TextView(const JSONKey& key) noexcept
        : text(key.Text())
    {
    }

    operator std::string_view() const noexcept { return text; }

private:
    static const char* NotNull(const char* text)
    {
        if (text == nullptr)
        {
            throw Nfx::System::ArgumentNullException("Serialization.Json/includes/Json/TextView", __LINE__);
        }
        return text;
    }

    std::string_view text;
};
} // namespace Zent::Utils::Json
