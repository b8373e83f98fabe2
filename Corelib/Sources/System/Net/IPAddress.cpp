#include "system/Net/IPAddress.h"

#include "system/Exceptions.h"
#include "system/Immortal.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace Nfx::System::Net
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Net/IPAddress";

constexpr std::size_t OctetCount = 4;
constexpr std::size_t MaxDigits = 3; // of one octet

/// Takes one number of 0 to 255 off the front of the text; false when there is none.
bool TakeOctet(std::string_view& text, std::uint8_t& octet)
{
    const char* const first = text.data();
    const std::from_chars_result end = std::from_chars(first, first + std::min(text.size(), MaxDigits), octet);
    if (end.ec != std::errc())
    {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end.ptr - first));
    return true;
}

bool TakeDot(std::string_view& text)
{
    if (!text.starts_with('.'))
    {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

bool TryParse(std::string_view text, std::uint32_t& address)
{
    for (std::size_t index = 0; index < OctetCount; ++index)
    {
        std::uint8_t octet = 0;
        if ((index > 0 && !TakeDot(text)) || !TakeOctet(text, octet))
        {
            return false;
        }
        address |= std::uint32_t{octet} << (8 * index);
    }
    return text.empty();
}
} // namespace

IPAddress::IPAddress(std::int64_t value) noexcept
    : address(static_cast<std::uint32_t>(value))
{
}

const IPAddress& IPAddress::Any()
{
    static const Immortal<IPAddress> any(0);
    return any.Get();
}

const IPAddress& IPAddress::Broadcast()
{
    static const Immortal<IPAddress> broadcast(0xFFFFFFFF);
    return broadcast.Get();
}

const IPAddress& IPAddress::Empty()
{
    static const Immortal<IPAddress> empty(0);
    return empty.Get();
}

IPAddress IPAddress::Parse(const String& text)
{
    std::uint32_t address = 0;
    if (!TryParse(text.View(), address))
    {
        throw Exception(ErrorCodes::InvalidFormat, "no IP address : " + text.Quoted(), SourceName, __LINE__);
    }
    return address;
}

Boolean IPAddress::Equals(const Object* object) const
{
    const IPAddress* other = dynamic_cast<const IPAddress*>(object);
    return other != nullptr && *other == *this;
}

Int32 IPAddress::GetHashCode() const
{
    return static_cast<std::int32_t>(address);
}

String IPAddress::ToString() const
{
    char text[OctetCount * (MaxDigits + 1)];
    char* end = text;
    for (std::size_t index = 0; index < OctetCount; ++index)
    {
        end = std::to_chars(end, end + MaxDigits, static_cast<std::uint8_t>(address >> (8 * index))).ptr;
        *end++ = '.';
    }
    return String(text, static_cast<std::size_t>(end - text - 1));
}
} // namespace Nfx::System::Net
