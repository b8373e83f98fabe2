#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Zent::Discovery::Fleet
{
/// JSON from whoever may write to a broker: bounded in size and depth, and asked for nothing that it may not have.
class HostileJson final
{
public:
    using Json = nlohmann::json; // sorts members: to keep the order of thousands takes the square of their number

    static constexpr int MaximumDepth = 32;

    HostileJson() = delete;

    /// The object that the text is.
    /// @throws std::invalid_argument with the reason.
    static Json ParseObject(std::string_view text, std::size_t maximumBytes);

    /// A member that is a text of that many bytes at most.
    /// @throws std::invalid_argument that names the member.
    static std::string Text(const Json& object, const char* key, std::size_t maximumBytes = 256);

    /// Without blanks. Bytes that are no UTF-8 become U+FFFD.
    static std::string Dump(const Json& value);

    /// The text with U+FFFD in the place of bytes that are no UTF-8.
    static std::string ValidUtf8(std::string_view text);

    /// So that texts with the same content can be told from others without keeping them: FNV-1a in 16 hexadecimal
    /// digits. Nothing but the record of the device itself depends on it that nobody finds two texts alike.
    static std::string Digest(std::string_view text);
};
} // namespace Zent::Discovery::Fleet
