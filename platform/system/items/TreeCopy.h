#pragma once

#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/OpenItem.h"
#include <functional>
#include <unordered_map>

namespace mac {

// The items that were copied, each with the time of its last change then, in nanoseconds since 1970; 0 for a folder.
using CopiedItems = std::unordered_map<ItemIdentity, std::int64_t, ItemIdentityHash>;

// The time of an item's last change; -1 if it is not known. An empty name means the open item itself.
std::int64_t changeTime(FileDescriptor const& folder, std::string const& name);

// The copy of one item to a name in an open folder, with all that is in it. Only two folders are open, however deep it
// goes. A failure leaves the incomplete copy. One thread.
class TreeCopy {
public:
    // Both must outlive the copy; the items that are copied are added to `copied`.
    TreeCopy(std::function<bool()> const& shouldContinue, CopiedItems& copied)
        : m_shouldContinue(shouldContinue), m_copied(copied) {}

    Result<void> run(OpenItem const& item, FileDescriptor const& folder, std::string const& name);

private:
    struct Level {
        ItemPlace place;
        ItemIdentity target;
        // Items in the folder that are still to be copied, the next one last.
        std::vector<std::string> names;
    };

    Result<ItemPlace> start(OpenItem const& item, FileDescriptor const& folder);
    Result<void> copyNext();
    Result<void> copy(std::string const& from, std::string const& to, ItemPlace const& place);
    Result<void> copyFile(std::string const& from, std::string const& to, ItemPlace const& place);
    Result<void> enter(std::string const& from, std::string const& to, ItemPlace const& place);
    Result<void> leave();

    std::function<bool()> const& m_shouldContinue;
    CopiedItems& m_copied;
    FileDescriptor m_source{};
    FileDescriptor m_target{};
    ItemIdentity m_targetStart{};
    ItemPlace m_sourceStart{};
    std::vector<Level> m_levels{};
};

} // namespace mac
