#include "Os/Win32/CurrentThreadW32.h"

namespace Nfx::Os
{
namespace
{
constinit thread_local ThreadRecord* current = nullptr;
} // namespace

void CurrentThreadW32::Begin(ThreadRecord& record) noexcept
{
    current = &record;
}

void CurrentThreadW32::End() noexcept
{
    ThreadRecord* const record = current;
    current = nullptr;
    if (record != nullptr && ThreadTable::DropUseOfThread(*record))
    {
        ThreadTable::PutBack(*record);
    }
}

bool CurrentThreadW32::IsInterrupted() noexcept
{
    return current != nullptr && current->Interrupted.load();
}

bool CurrentThreadW32::TakeInterrupt() noexcept
{
    return current != nullptr && current->Interrupted.exchange(false);
}
} // namespace Nfx::Os
