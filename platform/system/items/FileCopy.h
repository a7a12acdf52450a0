#pragma once

#include "platform/system/items/ItemStatus.h"
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace mac {

// The parts of copying one item. One thread.

enum class CopyStep {
    // A folder has been made; it is opened next.
    FolderMade,
    // A symbolic link or a special file has been made; it is opened next.
    SpecialMade,
    // It is open; it gets its owner and permissions next.
    SpecialOpened,
    // The copy is complete and has a temporary name.
    Complete,
    // The copy's sidecar has its name; the copy itself is next.
    SidecarNamed,
    // The copy has its name.
    Named,
};
// Called after each step; empty in the product. For tests of what happens between steps.
using CopySteps = std::function<void(CopyStep)>;

// Copies the bytes of files. Keeps its buffer, and what it has learnt of the two volumes, from one file to the next.
class ContentsCopy {
public:
    // Must outlive the object.
    explicit ContentsCopy(std::function<bool()> const& shouldContinue) : m_shouldContinue(shouldContinue) {}

    // From a file that is open for reading, and its status, to an empty one that is open for writing. Blocks are shared
    // where both volumes can, and holes stay holes. ECANCELED once shouldContinue answers false; ESTALE if the file was
    // truncated meanwhile.
    Result<void> run(FileDescriptor const& from, ItemStatus const& status, FileDescriptor const& to);

private:
    Result<off_t> copyData(FileDescriptor const& from, ItemStatus const& status, FileDescriptor const& to);
    Result<off_t> copyRange(FileDescriptor const& from, FileDescriptor const& to, off_t begin, off_t end);
    Result<off_t> copyRest(FileDescriptor const& from, FileDescriptor const& to, off_t begin);
    Result<std::size_t> copyPiece(FileDescriptor const& from, FileDescriptor const& to, off_t place, std::size_t size);

    std::function<bool()> const& m_shouldContinue;
    bool m_canShareBlocks{true};
    std::vector<char> m_buffer{};
};

// A new item: open, and its name in a folder. The descriptors must outlive the object.
struct CopyTarget {
    FileDescriptor const& item;
    FileDescriptor const& folder;
    std::string const& name;
};

enum class AttributesBeside {
    None,
    InNewSidecar,
    // The copy of the original's sidecar was there already.
    InCopiedSidecar,
};

// Copies attributes, owner, permissions, access lists and dates, in an order that never lets a user see more than
// before. The target has no list from its folder's default any more. Attributes that its file system cannot hold go to
// its sidecar: a new one gets the item's permissions, a copied one keeps those of the original's, which may let fewer
// users read. Answers whether there were such.
Result<AttributesBeside> copyMetadata(FileDescriptor const& from, ItemStatus const& status, CopyTarget const& to);

// Copies an item that is neither file nor folder and is open with O_PATH, to a name in a folder that no other user may
// change.
Result<void> copySpecial(FileDescriptor const& from, ItemStatus const& status, FileDescriptor const& folder,
                         std::string const& name, CopySteps const& steps);

} // namespace mac
