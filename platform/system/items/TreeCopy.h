#pragma once

#include "platform/system/OpenItems.h"
#include "platform/system/items/FileCopy.h"
#include "platform/system/items/OpenItem.h"
#include <optional>
#include <unordered_map>

namespace mac {

// The state in which an item was copied.
struct CopiedState {
    // 0 for a folder.
    std::int64_t changeTime{0};
    std::uint64_t mark{0};
};
using CopiedItems = std::unordered_map<ItemIdentity, CopiedState, ItemIdentityHash>;

enum class CopyPurpose {
    Copy,
    // The original is to be removed: the state of each item is remembered, and waited for where it cannot be told yet
    // from a later one.
    Move,
};

// The copy of one item to a name in an open folder, with all that is in it. Several names of a file become several
// names of its copy. Only three folders are open, however deep it goes. A failure leaves the incomplete copy. One
// thread.
class TreeCopy {
public:
    // All must outlive the copy; the items that are moved are added to `copied`.
    TreeCopy(CopyPurpose purpose, std::function<bool()> const& shouldContinue, CopySteps const& steps,
             CopiedItems& copied)
        : m_purpose(purpose), m_shouldContinue(shouldContinue), m_steps(steps), m_copied(copied),
          m_contents(shouldContinue) {}

    Result<void> run(OpenItem const& item, FileDescriptor const& folder, std::string const& name);
    // The item that was made under the name, complete or not; nullopt if none was, or the system did not tell.
    std::optional<ItemIdentity> const& made() const { return m_made; }

private:
    struct Level {
        ItemStatus source;
        ItemIdentity target;
        // Items in the folder that are still to be copied, the next one last.
        std::vector<FolderEntry> entries;
        // The length of the path to the folder above.
        std::size_t pathLength;
    };
    // The first copy of a file that has several names.
    struct Copy {
        std::string path;
        ItemIdentity identity;
    };
    struct Names {
        std::string const& from;
        std::string const& to;
    };

    Result<ItemStatus> start(OpenItem const& item, FileDescriptor const& folder);
    Result<void> copyNext();
    Result<void> copy(Names const& names, FolderEntry::Kind kind);
    Result<void> copyFile(Names const& names);
    Result<void> copyOther(Names const& names);
    Result<void> copyPrivately(FileDescriptor const& source, ItemStatus const& status, std::string const& to);
    Result<void> fill(FileDescriptor const& source, ItemStatus const& status, std::string const& to);
    Result<void> enter(Names const& names);
    Result<void> leave();
    Result<ItemStatus> stateOf(FileDescriptor const& source) const;
    std::string pathOf(std::string const& name) const;
    bool linkToCopy(ItemStatus const& status, std::string const& to) const;
    void remember(ItemStatus const& status);
    void rememberMade(FileDescriptor const& item);
    void rememberCopy(ItemStatus const& status, std::string const& to);

    CopyPurpose const m_purpose;
    std::function<bool()> const& m_shouldContinue;
    CopySteps const& m_steps;
    CopiedItems& m_copied;
    ContentsCopy m_contents;
    std::optional<ItemIdentity> m_made{};
    FileDescriptor m_source{};
    FileDescriptor m_target{};
    // The folder that the copy is made in, for the paths of copies.
    FileDescriptor m_top{};
    ItemIdentity m_targetStart{};
    ItemPlace m_sourceStart{};
    // The path of the current target folder from the top folder.
    std::string m_path{};
    std::vector<Level> m_levels{};
    std::unordered_map<ItemIdentity, Copy, ItemIdentityHash> m_copies{};
};

} // namespace mac
