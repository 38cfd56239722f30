#pragma once

#include <cstddef>

namespace tarn {

// The general allocator for blocks that grow by small steps to any size. A block knows its size.
// One from about 128 KB on has pages of its own, which the system moves without copying a byte, and
// keeps addresses in reserve for its growth: growing costs what the new bytes cost, also when
// several blocks grow by turns.

/// A block of `size` bytes, which hold anything; null for none. Whoever asked gives it to FreeMem.
/// Raises EOutOfMemory.
void* GetMem(std::size_t size);
/// The block with another size and the bytes that fit both; null is a block of none, which `size` 0
/// gives too. Raises EOutOfMemory and leaves the block as it was.
void* ReallocMem(void* block, std::size_t size);
/// Frees a block; null is none.
void FreeMem(void* block) noexcept;
/// The size of a block, as it was asked for.
std::size_t MemSize(const void* block);

} // namespace tarn
