#pragma once

#include "system/String.h"

namespace Nfx::System::LogStreams
{
/// What the header of a log file says about the program that writes it.
struct LogStreamHeader
{
    String Author;
    String Company;
    String Product;
};
} // namespace Nfx::System::LogStreams
