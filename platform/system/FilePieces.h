#pragma once

#include "platform/system/Result.h"
#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

namespace mac {

// The size in bytes at which files are read fastest: small enough to stay in the processor's cache.
inline constexpr std::size_t FilePieceSize = std::size_t{128} << 10;

// Reads a regular file from its beginning to its end, which may be of any size, and hands over its bytes in pieces: all
// but the last are of FilePieceSize. The path is bytes, of any length; symbolic links are followed. EISDIR for a
// folder, EINVAL for another kind of file, which is not opened. Any thread.
Result<void> readFileInPieces(std::string_view path, std::function<void(std::span<std::byte const>)> const& take);

} // namespace mac
