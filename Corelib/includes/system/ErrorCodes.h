#pragma once

#include <cstdint>

namespace Nfx::System::ErrorCodes
{
// Kind codes: the default of each exception class.
inline constexpr std::int32_t None = 0;
inline constexpr std::int32_t Unknown = 1;
inline constexpr std::int32_t Application = 3;
inline constexpr std::int32_t System = 4;
inline constexpr std::int32_t Argument = 8;
inline constexpr std::int32_t ArgumentNull = 9;
inline constexpr std::int32_t ArgumentOutOfRange = 10;
inline constexpr std::int32_t IndexOutOfRange = 25;
inline constexpr std::int32_t OutOfMemory = 27;
inline constexpr std::int32_t InvalidCast = 29;
inline constexpr std::int32_t InvalidOperation = 30;
inline constexpr std::int32_t NotSupported = 40;
inline constexpr std::int32_t NullPointer = 41;
inline constexpr std::int32_t NullReference = 42;
inline constexpr std::int32_t ObjectClosed = 43;
inline constexpr std::int32_t IO = 58;
inline constexpr std::int32_t DirectoryNotFound = 59;
inline constexpr std::int32_t FileNotFound = 64;
inline constexpr std::int32_t Socket = 73;
inline constexpr std::int32_t SemaphoreFull = 78;
inline constexpr std::int32_t ThreadInterrupted = 81;
inline constexpr std::int32_t ThreadState = 83;

/// A status code is written as its bit pattern; as a number it is negative.
constexpr std::int32_t Status(std::uint32_t pattern) noexcept
{
    return static_cast<std::int32_t>(pattern);
}

inline constexpr std::int32_t InvalidHandle = Status(0xC0090001);
inline constexpr std::int32_t InvalidParameterValue = Status(0xC0090101);
inline constexpr std::int32_t ResourceNotFound = Status(0xC0090109);
inline constexpr std::int32_t InvalidFormat = Status(0xC0090114);
inline constexpr std::int32_t InvalidCommandValue = Status(0xC0090118);
inline constexpr std::int32_t VariableTypeWrong = Status(0xC009011F);
inline constexpr std::int32_t ParameterIsNull = Status(0xC0090124);
} // namespace Nfx::System::ErrorCodes
