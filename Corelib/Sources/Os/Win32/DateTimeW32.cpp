#include "Os/Win32/DateTimeW32.h"

#include "Os/Win32/PlatformW32.h"

namespace Nfx::Os
{
namespace
{
constexpr std::int64_t TicksPerMicrosecond = 10;
constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t TicksBefore1970 = 116'444'736'000'000'000; // since 1601, where the platform's count begins

using TimeFunction = void(WINAPI*)(FILETIME*);

/// The clock of Windows 8 and later counts microseconds, the older one makes steps of some 15 milliseconds.
TimeFunction FinestTimeFunction()
{
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    const FARPROC precise = GetProcAddress(kernel, "GetSystemTimePreciseAsFileTime");
    return precise != nullptr ? reinterpret_cast<TimeFunction>(reinterpret_cast<void (*)()>(precise))
                              : &GetSystemTimeAsFileTime;
}

std::int64_t TicksOf(const FILETIME& time)
{
    return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

FILETIME FileTimeOf(std::int64_t ticks)
{
    const std::uint64_t bits = static_cast<std::uint64_t>(ticks);
    return {static_cast<DWORD>(bits), static_cast<DWORD>(bits >> 32)};
}

std::int64_t CounterFrequency()
{
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}
} // namespace

std::int64_t DateTimeW32::UtcMicroseconds()
{
    static const TimeFunction getTime = FinestTimeFunction();
    FILETIME now;
    getTime(&now);
    return (TicksOf(now) - TicksBefore1970) / TicksPerMicrosecond;
}

std::int64_t DateTimeW32::MonotonicMicroseconds()
{
    static const std::int64_t frequency = CounterFrequency();
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    // In two parts: the product of a whole counter and a million overflows after months.
    return counter.QuadPart / frequency * 1'000'000 + counter.QuadPart % frequency * 1'000'000 / frequency;
}

IDateTime::Calendar DateTimeW32::ToLocal(std::int64_t utcSeconds)
{
    const FILETIME time = FileTimeOf(utcSeconds * TicksPerSecond + TicksBefore1970);
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    FileTimeToSystemTime(&time, &utc);
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}
} // namespace Nfx::Os
