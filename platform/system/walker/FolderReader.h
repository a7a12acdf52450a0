#pragma once

#include "platform/system/walker/FolderFacts.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace mac {

// Reads the names of the folders in a folder, a buffer at a time. Each thread has one, for all folders it reads.
class FolderReader {
public:
    FolderReader();

    enum class Fill { Some, End };
    // Reads on from the descriptor's position. After a failure nothing is in the buffer.
    Result<Fill> fill(FileDescriptor const& folder);
    // The next folder in the buffer, never "." or ".."; nullopt after the last. Valid until the next fill. `folder` is
    // the one it was filled from, and is asked where the file system does not tell the kind of an entry.
    std::optional<std::string_view> nextSubfolder(FileDescriptor const& folder);
    // Whether the last fill left room for more, so that the folder's end was surely reached.
    bool hadRoomLeft() const;

private:
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_filled = 0;
    std::size_t m_position = 0;
};

} // namespace mac
