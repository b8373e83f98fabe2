#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Zent::Discovery::Page
{
/// The texts of a request that are taken apart here. Whatever a client sends may come.
class HttpText final
{
public:
    HttpText() = delete;

    /// The machine that the value of a Host header names, in lower case and without port and brackets. Nothing when it
    /// is no host.
    static std::optional<std::string> HostOf(std::string_view value);

    /// A cookie of the value of a Cookie header; nothing when it has none of that name.
    static std::optional<std::string> Cookie(std::string_view value, std::string_view name);

    /// A field of a form, decoded; nothing when it has none of that name or is not encoded as forms are.
    static std::optional<std::string> FormField(std::string_view body, std::string_view name);

    /// The token of the value of an Authorization header; nothing when it is none.
    static std::optional<std::string> BearerToken(std::string_view value);
};
} // namespace Zent::Discovery::Page
