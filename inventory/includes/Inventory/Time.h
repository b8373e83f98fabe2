#pragma once

#include <chrono>

namespace Zent::Discovery::Inventory
{
/// Time since a moment of the host program's choice, by a clock that is never set back.
using Time = std::chrono::milliseconds;
} // namespace Zent::Discovery::Inventory
