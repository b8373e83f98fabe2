#pragma once

#include <cstddef>

namespace Zent::Utils::Json
{
/// Hands out the memory of one document from large blocks of the tracked allocator, and gives it all back at once: a
/// tree of a hundred items costs two allocations instead of three hundred, and its depth costs no stack to delete.
class JSONArena final
{
public:
    /// expectedSize is a guess; the arena grows as needed.
    explicit JSONArena(std::size_t expectedSize) noexcept;
    ~JSONArena();
    JSONArena(const JSONArena&) = delete;
    JSONArena& operator=(const JSONArena&) = delete;

    /// Null when there is no memory.
    void* Allocate(std::size_t size) noexcept;

    /// Whether an allocation ever failed.
    bool IsExhausted() const noexcept { return exhausted; }

private:
    struct Block;

    bool AddBlock(std::size_t size) noexcept;

    Block* newest = nullptr; // heads the chain of all blocks
    std::size_t nextBlockSize;
    unsigned char* free = nullptr; // unused part of the newest block
    unsigned char* end = nullptr;
    bool exhausted = false;
};
} // namespace Zent::Utils::Json
