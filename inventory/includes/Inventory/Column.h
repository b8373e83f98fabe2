#pragma once

#include "Inventory/NaturalOrder.h"

#include <chrono>
#include <string>

namespace Zent::Discovery::Inventory
{
/// One of the columns in which rows are shown, and by which they are sorted and filtered.
template <class TRow>
struct Column
{
    using Row = TRow;
    using TimePoint = std::chrono::system_clock::time_point;

    const char* Name; // as users write it

    /// As it came from outside, unfit for a terminal. Ages count up to now.
    std::string (*Text)(const TRow& row, TimePoint now);

    bool (*IsBefore)(const TRow& left, const TRow& right);

    /// The order of texts as people expect it, for IsBefore.
    template <std::string (*TextOf)(const TRow& row, TimePoint now)>
    static bool IsNaturallyBefore(const TRow& left, const TRow& right)
    {
        return NaturalOrder::IsBefore(TextOf(left, {}), TextOf(right, {}));
    }
};
} // namespace Zent::Discovery::Inventory
