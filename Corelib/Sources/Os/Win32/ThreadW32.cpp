#include "Os/Win32/ThreadW32.h"

#include "Os/Win32/CurrentThreadW32.h"
#include "Os/Win32/WaitW32.h"

#include <iterator>

namespace Nfx::Os
{
namespace
{
constexpr DWORD CallFailed = static_cast<DWORD>(-1);

HANDLE HandleOf(const ThreadRecord* thread) noexcept
{
    return thread->Handle.load(std::memory_order_relaxed);
}

DWORD WINAPI RunThread(void* parameter)
{
    ThreadRecord& record = *static_cast<ThreadRecord*>(parameter);
    CurrentThreadW32::Begin(record);
    const DWORD code = record.Start(record.Parameter);
    CurrentThreadW32::End();
    return code;
}

void CALLBACK EndWait(ULONG_PTR)
{
    // that it ran is what ends the wait
}

// Only newer systems have it.
using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);

SetDescription FindSetDescription() noexcept
{
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    void* const address =
        kernel != nullptr ? reinterpret_cast<void*>(GetProcAddress(kernel, "SetThreadDescription")) : nullptr;
    return reinterpret_cast<SetDescription>(address);
}
} // namespace

bool ThreadW32::Close(ThreadRecord* thread)
{
    if (thread == nullptr)
    {
        return false;
    }
    const HANDLE handle = HandleOf(thread);
    // A thread that was terminated, or called ExitThread itself, has not given up its use of the record.
    if (WaitForSingleObject(handle, 0) == WAIT_OBJECT_0)
    {
        ThreadTable::DropUseOfThread(*thread);
    }
    if (ThreadTable::Drop(*thread))
    {
        ThreadTable::PutBack(*thread);
    }
    return CloseHandle(handle) != FALSE;
}

ThreadRecord* ThreadW32::Create(ThreadRoutine start, void* parameter, std::uint64_t& threadId, std::uint32_t stackSize)
{
    ThreadRecord* const record = ThreadTable::Take(start, parameter);
    if (record == nullptr)
    {
        return nullptr;
    }
    DWORD id = 0;
    const HANDLE handle = CreateThread(nullptr, stackSize, &RunThread, record, STACK_SIZE_PARAM_IS_A_RESERVATION, &id);
    if (handle == nullptr)
    {
        ThreadTable::DropUseOfThread(*record);
        ThreadTable::Drop(*record);
        ThreadTable::PutBack(*record);
        return nullptr;
    }
    record->Handle.store(handle, std::memory_order_relaxed);
    threadId = id;
    return record;
}

ThreadRecord* ThreadW32::CurrentRecord()
{
    return ThreadTable::Find(GetCurrentThread());
}

std::uint64_t ThreadW32::CurrentThreadId()
{
    return GetCurrentThreadId();
}

bool ThreadW32::GetPriority(ThreadRecord* thread, std::int32_t& priority)
{
    const int value = GetThreadPriority(HandleOf(thread));
    if (value == THREAD_PRIORITY_ERROR_RETURN)
    {
        return false;
    }
    priority = FromPlatformPriority(value);
    return true;
}

void ThreadW32::Exit(std::uint32_t code)
{
    CurrentThreadW32::End();
    ExitThread(code);
}

bool ThreadW32::Resume(ThreadRecord* thread)
{
    return ResumeThread(HandleOf(thread)) != CallFailed;
}

bool ThreadW32::SetPriority(ThreadRecord* thread, std::int32_t priority)
{
    return SetThreadPriority(HandleOf(thread), ToPlatformPriority(priority)) != FALSE;
}

void ThreadW32::Sleep(std::int32_t milliseconds)
{
    if (milliseconds >= 0)
    {
        ::Sleep(static_cast<DWORD>(milliseconds));
    }
}

bool ThreadW32::Suspend(ThreadRecord* thread)
{
    const HANDLE handle = HandleOf(thread);
    if (GetThreadId(handle) == GetCurrentThreadId() || SuspendThread(handle) == CallFailed)
    {
        return false;
    }
    CONTEXT context = {};
    context.ContextFlags = CONTEXT_CONTROL;
    GetThreadContext(handle, &context); // returns once the thread has really stopped
    return true;
}

bool ThreadW32::Terminate(ThreadRecord* thread, std::uint32_t exitCode)
{
    const HANDLE handle = HandleOf(thread);
    if (TerminateThread(handle, exitCode) == FALSE)
    {
        return false;
    }
    WaitForSingleObject(handle, INFINITE); // so that it runs no more when this returns
    return true;
}

bool ThreadW32::Wait(ThreadRecord* thread, std::int32_t timeout)
{
    return WaitForW32(HandleOf(thread), timeout);
}

bool ThreadW32::Interrupt(ThreadRecord* thread)
{
    thread->Interrupted.store(true);
    return QueueUserAPC(&EndWait, HandleOf(thread), 0) != 0;
}

void ThreadW32::Pause(std::int32_t timeout)
{
    PauseW32(timeout);
}

bool ThreadW32::SetName(ThreadRecord* thread, const char* name)
{
    static const SetDescription setDescription = FindSetDescription();
    wchar_t wideName[64] = {};
    return setDescription != nullptr &&
           MultiByteToWideChar(CP_UTF8, 0, name, -1, wideName, static_cast<int>(std::size(wideName))) != 0 &&
           SUCCEEDED(setDescription(HandleOf(thread), wideName));
}

bool ThreadW32::TakeInterrupt()
{
    return CurrentThreadW32::TakeInterrupt();
}
} // namespace Nfx::Os
