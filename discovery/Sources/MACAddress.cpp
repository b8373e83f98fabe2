#include "Discovery/MACAddress.h"

#include "system/Boolean.h"
#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/String.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

using Nfx::System::Boolean;
using Nfx::System::Int32;
using Nfx::System::SmartPointer;
using Nfx::System::String;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/MACAddress";

/// Takes one byte off the front of the text; false when none is there.
bool TakeByte(std::string_view& text, std::uint8_t& byte)
{
    constexpr std::size_t digitsPerByte = 2;
    const char* const last = text.data() + std::min(text.size(), digitsPerByte);
    const std::from_chars_result end = std::from_chars(text.data(), last, byte, 16);
    text.remove_prefix(static_cast<std::size_t>(end.ptr - text.data()));
    return end.ec == std::errc();
}

bool TakeSeparator(std::string_view& text)
{
    const bool found = text.starts_with(':');
    text.remove_prefix(found ? 1 : 0);
    return found;
}
} // namespace

MACAddress MACAddress::Parse(const String& text)
{
    return ParseText(text.View());
}

MACAddress MACAddress::ParseText(std::string_view text)
{
    std::string_view rest = text;
    std::array<std::uint8_t, Length> parsed{};
    bool valid = true;
    for (std::size_t index = 0; valid && index < Length; ++index)
    {
        valid = (index == 0 || TakeSeparator(rest)) && TakeByte(rest, parsed[index]);
    }
    if (!valid || !rest.empty())
    {
        throw Nfx::System::Exception(Nfx::System::ErrorCodes::InvalidFormat, "no MAC address : " + String::Quoted(text),
                                     SourceName, __LINE__);
    }
    return MACAddress(parsed);
}

Boolean MACAddress::Equals(const Nfx::System::Object* object) const
{
    const MACAddress* other = dynamic_cast<const MACAddress*>(object);
    return other != nullptr && *other == *this;
}

Int32 MACAddress::GetHashCode() const
{
    return ToString().GetHashCode();
}

String MACAddress::ToString() const
{
    const auto text = ToText();
    return String(text.data(), text.size());
}

std::array<char, 3 * MACAddress::Length - 1> MACAddress::ToText() const noexcept
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::array<char, 3 * Length - 1> text;
    text.fill(':');
    for (std::size_t index = 0; index < Length; ++index)
    {
        text[3 * index] = digits[bytes[index] >> 4];
        text[3 * index + 1] = digits[bytes[index] & 15];
    }
    return text;
}

Int32 MACAddress::CompareTo(const Nfx::System::Object* object) const
{
    if (object == nullptr)
    {
        throw Nfx::System::ArgumentNullException(SourceName, __LINE__);
    }
    const MACAddress* other = dynamic_cast<const MACAddress*>(object);
    if (other == nullptr)
    {
        throw Nfx::System::ArgumentException(SourceName, __LINE__);
    }
    return ToString().CompareTo(other->ToString());
}

SmartPointer<MACAddress> MACAddress::Clone() const
{
    return SmartPointer<MACAddress>(new MACAddress(*this));
}
} // namespace Zent::Discovery
