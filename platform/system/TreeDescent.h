#pragma once

#include "platform/system/FileDescriptor.h"
#include <string>
#include <vector>

namespace mac {

// The way through a tree, item by item. Only the folder whose names are being given is open, however deep it lies; the
// way back to one above is from the root again, without following links. For implementations; one thread at a time.
class TreeDescent {
public:
    explicit TreeDescent(FileDescriptor root);

    FileDescriptor const& root() const { return m_root; }

    // From the root to the item that was given last; empty for the root, which is the item before the first next() and
    // after the last.
    std::string const& path() const { return m_path; }
    // That item, named and not read; none when it is gone or cannot be had.
    FileDescriptor item();

    // Goes into that item, as it was opened: what is in it is given next, in this order.
    void enter(FileDescriptor folder, std::vector<std::string> names);
    // The next item; false when all have been given.
    bool next();

private:
    struct Level {
        std::size_t aboveLength;        // of the path to the folder above
        std::vector<std::string> names; // not given yet, the next one last
    };

    void leave();

    FileDescriptor m_root; // is found wherever it is moved to
    FileDescriptor m_folder{};
    std::vector<Level> m_levels{};
    std::string m_path{};
    std::size_t m_folderLength{0}; // of the path to the folder, with its slash
};

} // namespace mac
