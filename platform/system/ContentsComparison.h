#pragma once

#include <stop_token>
#include <string>

namespace mac {

enum class ContentsLikeness {
    // Something of one of them could not be read before a difference was found.
    Unreadable,
    Different,
    Equal,
    // Both paths lead to one item, such as through a linked folder or a second mount.
    OneItem,
};

// Compares as haveEqualContents of FolderContents.h does. What was asked to stop before the end answers Unreadable. Any
// thread.
ContentsLikeness compareContents(std::string const& path, std::string const& otherPath, std::stop_token const& stop);

} // namespace mac
