#include "JSONArena.h"

#include "system/Memory.h"

#include <cJSON.h>

#include <algorithm>
#include <new>
#include <utility>

namespace Zent::Utils::Json
{
namespace
{
constexpr std::size_t LargestBlock = NFX_JSON_LARGEST_BLOCK;
constexpr std::size_t Alignment = alignof(cJSON);
} // namespace

struct alignas(cJSON) JSONArena::Block
{
    Block* Older;
};

JSONArena::JSONArena(std::size_t expectedSize) noexcept
    : nextBlockSize(std::min(expectedSize, LargestBlock))
{
}

JSONArena::~JSONArena()
{
    while (newest != nullptr)
    {
        Nfx::System::Memory::Free(std::exchange(newest, newest->Older));
    }
}

void* JSONArena::Allocate(std::size_t size) noexcept
{
    const std::size_t rounded = (size + Alignment - 1) / Alignment * Alignment;
    if (rounded < size || (static_cast<std::size_t>(end - free) < rounded && !AddBlock(rounded)))
    {
        exhausted = true;
        return nullptr;
    }
    return std::exchange(free, free + rounded);
}

bool JSONArena::AddBlock(std::size_t size) noexcept
{
    const std::size_t capacity = std::max(size, nextBlockSize);
    void* const memory = capacity + sizeof(Block) < capacity
                             ? nullptr
                             : Nfx::System::Memory::Allocate(sizeof(Block) + capacity, "AbstractJSON");
    if (memory == nullptr)
    {
        return false;
    }
    newest = new (memory) Block{newest};
    free = reinterpret_cast<unsigned char*>(newest + 1);
    end = free + capacity;
    nextBlockSize = std::min(capacity * 2, LargestBlock);
    return true;
}
} // namespace Zent::Utils::Json
