#pragma once

#include "platform/system/walker/FolderFacts.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
    // From now on also collects the names of items with that inode number that are no folders. Where the file system
    // does not list the items' own numbers, each of them is asked.
    void seek(std::uint64_t inode, bool listsItemNumbers);
    // What was collected since the last time.
    std::vector<std::string> takeSought() { return std::exchange(m_sought, {}); }
    bool hasSought() const { return !m_sought.empty(); }
    // Whether the last fill left room for more, so that the folder's end was surely reached.
    bool hadRoomLeft() const;

private:
    void collect(FileDescriptor const& folder, char const* name, std::uint64_t listedNumber);

    std::unique_ptr<char[]> m_buffer;
    std::size_t m_filled = 0;
    std::size_t m_position = 0;
    std::optional<std::uint64_t> m_soughtInode;
    bool m_listsItemNumbers = true;
    std::vector<std::string> m_sought;
};

} // namespace mac
