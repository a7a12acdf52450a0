#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <span>
#include <vector>

// A descriptor serialised for other processes of one machine: eight bytes of mark and version, then the descriptor, its
// type, form and size before its contents; numbers in the machine's byte order. Any thread.

namespace mac {

// The most bytes of a flat descriptor, and the most descriptors in it.
inline constexpr std::size_t kFlatDescriptorMaximumSize = std::size_t{16} << 20;
inline constexpr std::size_t kFlatDescriptorMaximumCount = std::size_t{1} << 20;

// Fails for a descriptor that would take more than is allowed.
Result<std::vector<std::byte>, Failure> flattened(AEDesc const& desc);

// Reads bytes that may be hostile: fails for false sizes, for more bytes, descriptors or levels than the limits, and
// for bytes behind the descriptor.
Result<AEDesc, Failure> unflattened(std::span<std::byte const> bytes);

} // namespace mac
