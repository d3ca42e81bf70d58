// Global and local memory: a moveable block is a checked handle with a count of locks, a fixed block is known
// by its address.
// Tests: tests/platform/screen_test.cpp.

#include "platform/drawing/global_memory.h"

#include <cstring>
#include <memory>
#include <new>

#include "platform/handle_table.h"
#include "platform/win32.h"

namespace {

struct Block {
    std::unique_ptr<unsigned char[]> bytes;
    bool fixed;
    int locks = 0;
};

constinit tarn::HandleTable<Block> blocks{tarn::HandleFamily::memory};

// The table's own handle: the caller's, or that of the fixed block at this address.
HANDLE tableHandle(HANDLE memory) {
    if (memory == nullptr || blocks.find(memory) != nullptr) return memory;
    return blocks.findIf([memory](const Block& block) { return block.fixed && block.bytes.get() == memory; });
}

Block* findBlock(HANDLE memory) {
    Block* block = blocks.find(tableHandle(memory));
    if (block == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    return block;
}

// All memory is zeroed, and never of size 0, so that each block has an address of its own.
HANDLE allocate(std::size_t bytes, bool fixed) {
    auto block = std::make_unique<Block>();
    block->bytes.reset(new (std::nothrow) unsigned char[bytes == 0 ? 1 : bytes]());
    block->fixed = fixed;
    void* const address = block->bytes.get();
    const HANDLE handle = address == nullptr ? nullptr : blocks.open(std::move(block));
    if (handle == nullptr) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return handle != nullptr && fixed ? address : handle;
}

}  // namespace

void* tarn::allocateFixed(std::size_t bytes) {
    return allocate(bytes, true);
}

HGLOBAL GlobalAlloc(UINT flags, std::size_t bytes) {
    return allocate(bytes, (flags & GMEM_MOVEABLE) == 0);
}

void* GlobalLock(HGLOBAL memory) {
    Block* block = findBlock(memory);
    if (block == nullptr) return nullptr;
    if (!block->fixed) ++block->locks;
    return block->bytes.get();
}

BOOL GlobalUnlock(HGLOBAL memory) {
    Block* block = findBlock(memory);
    if (block == nullptr) return FALSE;
    if (block->fixed) return TRUE;
    if (block->locks == 0) {
        SetLastError(ERROR_NOT_LOCKED);
        return FALSE;
    }
    --block->locks;
    if (block->locks == 0) SetLastError(ERROR_SUCCESS);
    return block->locks > 0 ? TRUE : FALSE;
}

HGLOBAL GlobalFree(HGLOBAL memory) {
    if (memory == nullptr) return nullptr;
    if (blocks.close(tableHandle(memory)) != nullptr) return nullptr;
    SetLastError(ERROR_INVALID_HANDLE);
    return memory;
}

HLOCAL LocalFree(HLOCAL memory) {
    return GlobalFree(memory);
}
