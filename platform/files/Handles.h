#pragma once

#include "platform/foundation/objects/ServiceTypes.h"

namespace mac {

// The Memory Manager's relocatable blocks. A handle points to the master pointer, which points to the block; both stay
// where they are until the size is set. Any thread, but one thread at a time for each handle.

using MemoryHandle = char**;

// The handle or its master pointer is null.
inline constexpr OSErr nilHandleErr = -109;
// There is no such block: it was disposed of, or never made.
inline constexpr OSErr memWZErr = -111;

// A new block of so many bytes, of undefined contents; 0 bytes are a block, too. Null, and memFullErr, if there is no
// memory or the size is negative. The caller disposes of it.
MemoryHandle NewHandle(std::int32_t byteCount);
// The size in bytes, exactly as it was asked for; 0 and nilHandleErr or memWZErr for what is no block.
std::int32_t GetHandleSize(MemoryHandle handle);
// Keeps as many bytes as fit. Nothing changes on failure.
void SetHandleSize(MemoryHandle handle, std::int32_t newSize);
// The block and its handle are gone; disposing again does nothing but set memWZErr, and null sets nilHandleErr.
void DisposeHandle(MemoryHandle handle);
// How this thread's last of these calls went.
OSErr MemError();

} // namespace mac
