#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Benchmarks
{
/// The datagram with which a device describes itself. Its host name ends in a number of ten digits, which can be
/// changed in place and stands at a known place of the document that the host application gets.
class Signature final
{
public:
    /// What the benchmarks send unless they look at sizes: 1115 bytes.
    Signature();

    Signature(std::size_t nics, std::size_t products);

    /// The datagram with this number in the host name; valid until the next call.
    std::string_view Numbered(std::uint64_t number);

    const std::string& Text() const noexcept { return text; }

    /// The number in a document of the host application.
    static std::uint64_t NumberIn(const char* document) noexcept;

private:
    std::string text;
    std::size_t number; // where the digits begin
};
} // namespace Benchmarks
