#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <span>
#include <vector>

// A descriptor as a row of bytes, as it travels between processes of one machine: eight bytes of mark and version, then
// the descriptor, its type, form and size before its contents, numbers in the order of the machine. Any thread.

namespace mac {

// Bytes of a flat descriptor at most, and descriptors in it.
inline constexpr std::size_t kFlatDescriptorMaximumSize = std::size_t{16} << 20;
inline constexpr std::size_t kFlatDescriptorMaximumCount = std::size_t{1} << 20;

// Fails for a descriptor that would take more than is allowed.
Result<std::vector<std::byte>, Failure> flattened(AEDesc const& desc);

// What comes from outside is not trusted: sizes that lie, too much, too deep, or anything behind the descriptor fail.
Result<AEDesc, Failure> unflattened(std::span<std::byte const> bytes);

} // namespace mac
