#pragma once

#include "system/Collections/Generic/SortedDictionary.h"
#include "system/String.h"

#include <cstdint>

namespace Nfx::System
{
/// The process-wide map from error code to text, in signed order of the codes. Built by the first caller, safely under
/// concurrent first use, constant from then on, and never destroyed: threads may still report while a process exits.
class ErrorTable final
{
public:
    ErrorTable() = delete;

    using Map = Collections::Generic::SortedDictionary<std::int32_t, String>;

    static const Map& Instance();
};
} // namespace Nfx::System
