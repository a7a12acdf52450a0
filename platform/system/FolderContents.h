#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

enum class LinkAtEnd { IsFollowed, IsNotFollowed };

// The names in a folder, without "." and "..", sorted by their bytes. The path is bytes, of any length. Any thread.
Result<std::vector<std::string>> namesInFolder(std::string_view path, LinkAtEnd linkAtEnd);

// The names in an open folder, which need not be open for reading.
Result<std::vector<std::string>> namesInOpenFolder(FileDescriptor const& folder);

// A depth-first traversal of a folder tree. Only the root and the folder whose names are being given are open, however
// deep it lies; a folder above is opened again from the root, without following symbolic links. One thread at a time.
class TreeDescent {
public:
    explicit TreeDescent(FileDescriptor root);

    FileDescriptor const& root() const { return m_root; }

    // The path from the root to the current item; empty for the root, which is the current item before the first next()
    // and after the last.
    std::string const& path() const { return m_path; }
    // Opens that item with O_PATH; a symbolic link is not followed.
    Result<FileDescriptor> item();

    // Enters the current item, given as it was opened: the names in it are given next, in this order.
    void enter(FileDescriptor folder, std::vector<std::string> names);
    // Goes to the next item; false when all have been given.
    bool next();

private:
    struct Level {
        std::size_t aboveLength;        // of the path to the folder above
        std::vector<std::string> names; // not given yet, the next one last
    };

    void leave();

    FileDescriptor m_root; // stays open, so it is found wherever it is moved to
    FileDescriptor m_folder{};
    std::vector<Level> m_levels{};
    std::string m_path{};
    std::size_t m_folderLength{0}; // of the path to the folder, with its slash
};

// Whether both are files of the same bytes, symbolic links of the same text or folders of the same contents; links are
// not followed. False if either cannot be read.
bool haveEqualContents(std::string const& path, std::string const& otherPath);

enum class ContentsLikeness {
    // Something of one of them could not be read before a difference was found.
    Unreadable,
    Different,
    Equal,
    // Both paths lead to one item, such as through a linked folder or a second mount.
    OneItem,
};

// Compares as haveEqualContents does, and tells more. Answers Unreadable if asked to stop before the end. Any thread.
ContentsLikeness compareContents(std::string const& path, std::string const& otherPath, std::stop_token const& stop);

} // namespace mac
