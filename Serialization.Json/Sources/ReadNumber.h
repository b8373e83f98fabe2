#pragma once

namespace Zent::Utils::Json
{
/// Reads the longest start of a text that is a number by the JSON grammar, in every locale; infinity when it is too
/// large. Returns where the number ends: at begin when there is none.
const char* ReadNumber(const char* begin, const char* end, double* number) noexcept;
} // namespace Zent::Utils::Json
