#pragma once

#include "platform/system/BytePath.h"
#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/RememberedFolders.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

class MountPointSet;

// Facts that are the same for all folders of a volume.
struct VolumeTraits {
    std::uint64_t mount = 0;                    // as FolderFacts tells it
    bool linkCountTellsSubfolders = false;      // by the leaf rule, see FolderFacts.h
    bool listsItemNumbers = false;              // see FolderFacts.h
    MountPointSet const* mountPoints = nullptr; // where the walk of the volume goes no further
};

// How far one folder has been read. It may not have been opened yet, or its descriptor may have been given up; then the
// rest serves to open it when it must be, and to go on.
struct FolderState {
    FileDescriptor folder;
    FolderIdentity identity;
    std::int64_t position = 0;               // where reading goes on, while it is not open
    std::optional<std::uint32_t> subfolders; // by the leaf rule
    std::uint32_t subfoldersSeen = 0;
    bool isRead = false; // all subfolders were seen
    bool holdsMountPoints = false;
    bool isUnchanged = false;               // its children come from `remembered`, not from the disk
    RememberedFolders::Cursor remembered;   // what the index has for its children
    std::unique_ptr<RememberedNames> known; // the same by name, while a folder that changed is read
    FolderLog::Note note = FolderLog::NoNote;
};

// A subfolder that is still to be visited.
struct WaitingName {
    char const* name = nullptr; // nullptr: there is none
    RememberedFolders::Place remembered = RememberedFolders::None;
};

// Work that one thread hands to another: the whole of a volume, or subfolders of a folder with their descendants.
struct FolderShare {
    std::string path;
    // `traits` holds the mount, and whether link counts are to be used; `state` and `names` hold nothing yet.
    bool isVolumeRoot = false;
    VolumeTraits traits;
    FolderState state;
    std::string names; // as FolderStack keeps them
};

// The folders on the way down to where a thread is in the tree, each with those of its subfolders that are still to be
// visited. Owned by that thread. It keeps one path and one heap of names for all, so that depth costs little, and at
// most `openLimit` folders open: beyond that the uppermost are closed, to be opened by path when their turn comes.
class FolderStack {
public:
    static constexpr std::size_t placeBytes = 5;

    explicit FolderStack(std::size_t openLimit);

    bool isEmpty() const { return m_levels.empty(); }
    void begin(FolderShare&& share); // the stack is empty
    void push(std::string_view name, FolderState&& state);
    void pop();
    void clear();

    FolderState& top() { return m_levels.back().state; }
    std::string_view path() const { return m_path; } // of the top folder
    // Opens the top folder if it is not open; fails with ESTALE if another folder has its path now.
    Result<void> openTop();
    // An open folder, and the path from there that leads to a subfolder of the top folder. Opens the top folder if no
    // folder above it is open. Valid until the next call.
    struct WayToName {
        FileDescriptor const& folder;
        char const* path;
    };
    Result<WayToName> wayTo(char const* name);
    void closeAllButTop();

    // Subfolders of the top folder, to be visited in this order.
    void addName(std::string_view name, RememberedFolders::Place remembered = RememberedFolders::None);
    std::size_t nameBytesWaiting() const { return m_levels.back().namesEnd - m_levels.back().nextName; }
    WaitingName nextName(); // valid until a name is added

    // Takes away what another thread may do: the uppermost folder that has work left, or half of the names of the only
    // one. Nothing when there is too little.
    std::optional<FolderShare> split(VolumeTraits const& traits);

private:
    struct Level {
        FolderState state;
        std::size_t pathLength = 0;
        std::size_t firstName = 0; // this and the next two: offsets in m_names
        std::size_t nextName = 0;
        std::size_t namesEnd = 0;
    };

    bool hasWork(Level const& level) const { return level.nextName < level.namesEnd || !level.state.isRead; }
    FolderShare shareOf(Level const& level, VolumeTraits const& traits, std::size_t firstName) const;
    std::size_t startOfSecondHalf(Level const& level) const;
    static void giveUpDescriptor(FolderState& state);
    // The innermost open folder above the top folder, and in m_way the path from there to it. nullptr if none is open,
    // or if the path would be long.
    FileDescriptor const* nearestOpen();

    std::size_t const m_openLimit;
    std::vector<Level> m_levels;
    std::size_t m_firstOpen = 0; // all levels above in the tree are closed
    std::string m_path;
    std::string m_names; // each a place in placeBytes, the name, and a zero byte; no other byte is zero
    std::string m_way;
};

} // namespace mac
