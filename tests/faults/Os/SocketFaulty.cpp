#include "Os/SocketFaulty.h"

#include "Os/Faults.h"

namespace Tests
{
std::int32_t SocketFaulty::Open(std::int32_t type, std::int32_t protocol, Handle& handle) noexcept
{
    std::int32_t error = Success;
    if (Faults::Strikes(Call::OpenSocket, error))
    {
        return error;
    }
    error = real.Open(type, protocol, handle);
    Faults::CountOpened(error == Success);
    return error;
}

std::int32_t SocketFaulty::SetOption(Handle handle, std::int32_t level, std::int32_t name, std::int32_t value) noexcept
{
    std::int32_t error = Success;
    return Faults::Strikes(Call::SetOption, error) ? error : real.SetOption(handle, level, name, value);
}

std::int32_t SocketFaulty::Bind(Handle handle, const std::uint8_t* address) noexcept
{
    std::int32_t error = Success;
    return Faults::Strikes(Call::Bind, error) ? error : real.Bind(handle, address);
}

std::int32_t SocketFaulty::Connect(Handle handle, const std::uint8_t* address) noexcept
{
    std::int32_t error = Success;
    return Faults::Strikes(Call::Connect, error) ? error : real.Connect(handle, address);
}

std::int32_t SocketFaulty::LocalAddress(Handle handle, std::uint8_t* address) noexcept
{
    return real.LocalAddress(handle, address);
}

std::int32_t SocketFaulty::SendTo(Handle handle,
                                  const std::uint8_t* bytes,
                                  std::int32_t count,
                                  const std::uint8_t* address,
                                  std::int32_t& sent) noexcept
{
    std::int32_t error = Success;
    return Faults::Strikes(Call::Send, error) ? error : real.SendTo(handle, bytes, count, address, sent);
}

std::int32_t SocketFaulty::ReceiveFrom(
    Handle handle, std::uint8_t* buffer, std::int32_t size, std::uint8_t* address, std::int32_t& received) noexcept
{
    std::int32_t error = Success;
    return Faults::Strikes(Call::Receive, error) ? error : real.ReceiveFrom(handle, buffer, size, address, received);
}

std::int32_t SocketFaulty::Available(Handle handle, std::int32_t& size) noexcept
{
    return real.Available(handle, size);
}

std::int32_t SocketFaulty::Shutdown(Handle handle, std::int32_t how) noexcept
{
    std::int32_t error = Success;
    return Faults::Strikes(Call::Shutdown, error) ? error : real.Shutdown(handle, how);
}

void SocketFaulty::BeginClose(Handle handle) noexcept
{
    Faults::Strikes(Call::BeforeClose);
    real.BeginClose(handle);
    Faults::Strikes(Call::AfterClose);
}

void SocketFaulty::EndClose(Handle handle) noexcept
{
    real.EndClose(handle);
    Faults::CountClosed();
}

bool SocketFaulty::IsPortUsed(std::int32_t port) noexcept
{
    return real.IsPortUsed(port);
}
} // namespace Tests
