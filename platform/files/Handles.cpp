#include "platform/files/Handles.h"
#include <algorithm>
#include <deque>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>

namespace mac {

namespace {

struct Block {
    // What the handle points to.
    char* master{};
    std::unique_ptr<char[]> bytes{};
    std::int32_t size{0};
};

// A handle that was disposed of is told from a new one, as long as its address is not given again.
constexpr std::size_t MostKept = 4'096;

struct Blocks {
    std::mutex lock{};
    std::unordered_map<MemoryHandle, std::unique_ptr<Block>> byHandle{};
    std::deque<std::unique_ptr<Block>> disposed{};
};

// Never destroyed, since handles may be used until the program's last instruction.
Blocks& blocks() {
    static Blocks& shared = *std::make_unique<Blocks>().release();
    return shared;
}

OSErr& lastError() {
    static thread_local OSErr error = noErr;
    return error;
}

// Null if there is no memory; a block of 0 bytes has one all the same, so that its master pointer is not null.
std::unique_ptr<char[]> allocated(std::int32_t size) {
    try {
        return std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(std::max(size, 1)));
    } catch (std::bad_alloc const&) {
        return {};
    }
}

// Null, with the error set, for a handle of no block. The lock is held.
Block* blockOf(MemoryHandle handle) {
    lastError() = handle ? memWZErr : nilHandleErr;
    auto const found = blocks().byHandle.find(handle);
    if (found == blocks().byHandle.end()) return nullptr;
    lastError() = noErr;
    return found->second.get();
}

} // namespace

MemoryHandle NewHandle(std::int32_t byteCount) {
    lastError() = memFullErr;
    if (byteCount < 0) return nullptr;
    auto block = std::make_unique<Block>();
    block->bytes = allocated(byteCount);
    if (!block->bytes) return nullptr;
    block->master = block->bytes.get();
    block->size = byteCount;
    MemoryHandle handle = &block->master;
    std::scoped_lock const lock(blocks().lock);
    blocks().byHandle.emplace(handle, std::move(block));
    lastError() = noErr;
    return handle;
}

std::int32_t GetHandleSize(MemoryHandle handle) {
    std::scoped_lock const lock(blocks().lock);
    Block const* const block = blockOf(handle);
    return block ? block->size : 0;
}

void SetHandleSize(MemoryHandle handle, std::int32_t newSize) {
    std::scoped_lock const lock(blocks().lock);
    Block* const block = blockOf(handle);
    if (!block) return;
    std::unique_ptr<char[]> larger = newSize < 0 ? nullptr : allocated(newSize);
    lastError() = larger ? noErr : memFullErr;
    if (!larger) return;
    std::copy_n(block->bytes.get(), std::min(block->size, newSize), larger.get());
    block->bytes = std::move(larger);
    block->master = block->bytes.get();
    block->size = newSize;
}

void DisposeHandle(MemoryHandle handle) {
    std::scoped_lock const lock(blocks().lock);
    if (!blockOf(handle)) return;
    auto node = blocks().byHandle.extract(handle);
    std::unique_ptr<Block> block = std::move(node.mapped());
    block->bytes.reset();
    block->master = nullptr;
    blocks().disposed.push_back(std::move(block));
    if (blocks().disposed.size() > MostKept) blocks().disposed.pop_front();
}

OSErr MemError() { return lastError(); }

} // namespace mac
