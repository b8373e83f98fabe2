#include "Os/Faults.h"
#include "Os/IEvent.h"
#include "Os/IFile.h"
#include "Os/IOs.h"
#include "Os/ISemaphore.h"
#include "Os/ISocket.h"
#include "Os/IThread.h"
#include "system/String.h"

#include <type_traits>

namespace Nfx::Os
{
/// The services that Platform() has in every other program: the build compiles them into this one by this name.
IOs& RealPlatform();

namespace
{
using System::String;
using Tests::Call;
using Tests::Faults;

/// Makes a call of the platform, or fails it as planned: with the planned error, where the call returns one.
template <class TAction>
auto Attempt(Call call, TAction&& action) -> std::invoke_result_t<TAction>
{
    using Result = std::invoke_result_t<TAction>;
    std::int32_t error = 0;
    if (!Faults::Strikes(call, error))
    {
        return action();
    }
    if constexpr (std::is_same_v<Result, FileResult>)
    {
        return {FileFailure::Other, error};
    }
    else if constexpr (std::is_same_v<Result, std::int32_t>)
    {
        return error;
    }
    else
    {
        return {};
    }
}

/// Passes the result of a call on that hands out something to be given back.
template <class TResult>
TResult Counted(TResult result, bool isOpened)
{
    Faults::CountOpened(isOpened);
    return result;
}

class EventFaulty final : public IEvent
{
public:
    bool Close(ObjectHandle event) override
    {
        Faults::CountClosed();
        return real.Close(event);
    }

    bool Create(
        ObjectHandle& event, bool signalled, bool manualReset, std::string_view name, CreateStatus& status) override
    {
        status = CreateStatus::Failed;
        const bool isCreated =
            Attempt(Call::CreateEvent, [&] { return real.Create(event, signalled, manualReset, name, status); });
        return Counted(isCreated, isCreated);
    }

    bool Open(ObjectHandle& event, std::string_view name) override
    {
        const bool isOpened = real.Open(event, name);
        return Counted(isOpened, isOpened);
    }

    bool Reset(ObjectHandle event) override { return real.Reset(event); }

    bool Set(ObjectHandle event) override { return real.Set(event); }

    bool Wait(ObjectHandle event, std::int32_t timeout) override { return real.Wait(event, timeout); }

private:
    IEvent& real = RealPlatform().Event();
};

class FileFaulty final : public IFile
{
public:
    FileResult OpenToAppend(const String& path, Handle& file) override
    {
        const FileResult result = Attempt(Call::OpenFile, [&] { return real.OpenToAppend(path, file); });
        return Counted(result, result.Succeeded());
    }

    FileResult Write(Handle file, const char* bytes, std::size_t size, std::size_t& written) override
    {
        written = 0;
        return Attempt(Call::WriteFile, [&] { return real.Write(file, bytes, size, written); });
    }

    FileResult Query(Handle file, Properties& properties) override { return real.Query(file, properties); }

    void Close(Handle file) override
    {
        Faults::CountClosed();
        real.Close(file);
    }

    bool Exists(const String& path) override { return real.Exists(path); }

    FileResult Rename(const String& path, const String& newPath) override
    {
        return Attempt(Call::RenameFile, [&] { return real.Rename(path, newPath); });
    }

    std::string_view LineEnd() override { return real.LineEnd(); }

    String Describe(std::int32_t nativeError) override { return real.Describe(nativeError); }

private:
    IFile& real = RealPlatform().File();
};

class SemaphoreFaulty final : public ISemaphore
{
public:
    bool Close(ObjectHandle semaphore) override
    {
        Faults::CountClosed();
        return real.Close(semaphore);
    }

    bool Create(ObjectHandle& semaphore,
                std::int32_t initialCount,
                std::int32_t maximumCount,
                std::string_view name,
                CreateStatus& status) override
    {
        status = CreateStatus::Failed;
        const bool isCreated = Attempt(
            Call::CreateSemaphore, [&] { return real.Create(semaphore, initialCount, maximumCount, name, status); });
        return Counted(isCreated, isCreated);
    }

    bool Open(ObjectHandle& semaphore, std::string_view name) override
    {
        const bool isOpened = real.Open(semaphore, name);
        return Counted(isOpened, isOpened);
    }

    bool Release(ObjectHandle semaphore,
                 std::int32_t count,
                 std::int32_t& previousCount,
                 ReleaseStatus& status) override
    {
        status = ReleaseStatus::Failed;
        return Attempt(Call::ReleaseSemaphore, [&] { return real.Release(semaphore, count, previousCount, status); });
    }

    bool Wait(ObjectHandle semaphore, std::int32_t timeout) override
    {
        return Attempt(Call::WaitSemaphore, [&] { return real.Wait(semaphore, timeout); });
    }

private:
    ISemaphore& real = RealPlatform().Semaphore();
};

class SocketFaulty final : public ISocket
{
public:
    std::int32_t Open(std::int32_t type, std::int32_t protocol, Handle& handle) noexcept override
    {
        const std::int32_t error = Attempt(Call::OpenSocket, [&] { return real.Open(type, protocol, handle); });
        return Counted(error, error == Success);
    }

    std::int32_t SetOption(Handle handle, std::int32_t level, std::int32_t name, std::int32_t value) noexcept override
    {
        return Attempt(Call::SetOption, [&] { return real.SetOption(handle, level, name, value); });
    }

    std::int32_t Bind(Handle handle, const std::uint8_t* address) noexcept override
    {
        return Attempt(Call::Bind, [&] { return real.Bind(handle, address); });
    }

    std::int32_t Connect(Handle handle, const std::uint8_t* address) noexcept override
    {
        return Attempt(Call::Connect, [&] { return real.Connect(handle, address); });
    }

    std::int32_t LocalAddress(Handle handle, std::uint8_t* address) noexcept override
    {
        return real.LocalAddress(handle, address);
    }

    std::int32_t SendTo(Handle handle,
                        const std::uint8_t* bytes,
                        std::int32_t count,
                        const std::uint8_t* address,
                        std::int32_t& sent) noexcept override
    {
        return Attempt(Call::Send, [&] { return real.SendTo(handle, bytes, count, address, sent); });
    }

    std::int32_t ReceiveFrom(Handle handle,
                             std::uint8_t* buffer,
                             std::int32_t size,
                             std::uint8_t* address,
                             std::int32_t& received) noexcept override
    {
        return Attempt(Call::Receive, [&] { return real.ReceiveFrom(handle, buffer, size, address, received); });
    }

    std::int32_t Available(Handle handle, std::int32_t& size) noexcept override { return real.Available(handle, size); }

    std::int32_t Shutdown(Handle handle, std::int32_t how) noexcept override
    {
        return Attempt(Call::Shutdown, [&] { return real.Shutdown(handle, how); });
    }

    void BeginClose(Handle handle) noexcept override
    {
        Faults::Strikes(Call::BeforeClose);
        real.BeginClose(handle);
        Faults::Strikes(Call::AfterClose);
    }

    void EndClose(Handle handle) noexcept override
    {
        real.EndClose(handle);
        Faults::CountClosed();
    }

    bool IsPortUsed(std::int32_t port) noexcept override { return real.IsPortUsed(port); }

private:
    ISocket& real = RealPlatform().Socket();
};

class ThreadFaulty final : public IThread
{
public:
    bool Open() override { return real.Open(); }

    bool Shut() override { return real.Shut(); }

    bool Close(ThreadRecord* thread) override
    {
        Faults::CountClosed();
        return real.Close(thread);
    }

    ThreadRecord* Create(ThreadRoutine start,
                         void* parameter,
                         std::uint64_t& threadId,
                         std::uint32_t stackSize) override
    {
        ThreadRecord* const thread =
            Attempt(Call::CreateThread, [&] { return real.Create(start, parameter, threadId, stackSize); });
        if (thread != nullptr)
        {
            Faults::CountOpened(true);
            Faults::Strikes(Call::AfterCreateThread);
        }
        return thread;
    }

    ThreadRecord* CurrentRecord() override { return real.CurrentRecord(); }

    std::uint64_t CurrentThreadId() override { return real.CurrentThreadId(); }

    bool GetPriority(ThreadRecord* thread, std::int32_t& priority) override
    {
        return real.GetPriority(thread, priority);
    }

    void Exit(std::uint32_t code) override { real.Exit(code); }

    bool Resume(ThreadRecord* thread) override { return real.Resume(thread); }

    bool SetPriority(ThreadRecord* thread, std::int32_t priority) override
    {
        return real.SetPriority(thread, priority);
    }

    void Sleep(std::int32_t milliseconds) override { real.Sleep(milliseconds); }

    bool Suspend(ThreadRecord* thread) override { return real.Suspend(thread); }

    bool Terminate(ThreadRecord* thread, std::uint32_t exitCode) override { return real.Terminate(thread, exitCode); }

    bool Wait(ThreadRecord* thread, std::int32_t timeout) override { return real.Wait(thread, timeout); }

    bool Interrupt(ThreadRecord* thread) override { return real.Interrupt(thread); }

    void Pause(std::int32_t timeout) override { real.Pause(timeout); }

    bool SetName(ThreadRecord* thread, const char* name) override { return real.SetName(thread, name); }

    bool TakeInterrupt() override { return real.TakeInterrupt(); }

private:
    IThread& real = RealPlatform().Thread();
};

/// The platform's services, some of which can be made to fail.
class OsFaulty final : public IOs
{
public:
    IDateTime& DateTime() override { return RealPlatform().DateTime(); }

    IDirectory& Directory() override { return RealPlatform().Directory(); }

    IEvent& Event() override { return event; }

    IFile& File() override { return file; }

    IHostMemory& HostMemory() override { return RealPlatform().HostMemory(); }

    IMonitor& Monitor() override { return RealPlatform().Monitor(); }

    IMutex& Mutex() override { return RealPlatform().Mutex(); }

    ISemaphore& Semaphore() override { return semaphore; }

    ISocket& Socket() override { return socket; }

    IString& String() override { return RealPlatform().String(); }

    IThread& Thread() override { return thread; }

private:
    EventFaulty event;
    FileFaulty file;
    SemaphoreFaulty semaphore;
    SocketFaulty socket;
    ThreadFaulty thread;
};
} // namespace

IOs& Platform()
{
    static OsFaulty& platform = *new OsFaulty();
    return platform;
}
} // namespace Nfx::Os
