#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Tests
{
/// What fits into one datagram, bytes.
constexpr std::size_t LargestDatagram = 65507;

/// One datagram of about the largest size for each way to make the server work, write or keep much.
std::vector<std::string> LargestHostileDatagrams();

/// What stands for a datagram in a message about it.
std::string BeginningOf(const std::string& datagram);
} // namespace Tests
