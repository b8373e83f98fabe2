#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// A datagram that a device has sent.
struct RecordedDatagram
{
    std::chrono::milliseconds Time{0}; // since the devices were asked
    std::string Sender;                // the address
    std::string Text;                  // its bytes, which need not be text

    bool operator==(const RecordedDatagram&) const = default;
};

/// The file of what devices have sent, a JSON document in a line for each datagram. Bytes that are no UTF-8 are kept as
/// hexadecimal digits.
class Recording final
{
public:
    Recording() = delete;

    /// Without a line end.
    static std::string LineOf(const RecordedDatagram& datagram);

    /// @throws std::runtime_error that names the path, the line and what is wrong, also when there is no datagram.
    static std::vector<RecordedDatagram> Read(const std::string& path);

    /// Empty lines count for nothing. name is that of the text's source, for errors.
    /// @throws std::runtime_error as Read.
    static std::vector<RecordedDatagram> Parse(std::string_view text, const std::string& name);
};
} // namespace Zent::Discovery::Simulator
