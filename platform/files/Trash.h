#pragma once

#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/OpenItem.h"
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The user's trash as all programs of the desktop keep it: a folder "Trash" among the user's data for what lies on the
// same volume, and ".Trash/USER" or ".Trash-USER" at the top of every other volume. What is in it lies in its folder
// "files"; a file in its folder "info" says where it came from. For implementations, which translate the failures; any
// thread. Paths and names are bytes.
//
// Nothing is ever copied, and nothing is deleted instead of being trashed: either the item moves within its volume, or
// it stays where it is.
//
// "All volumes" are the local ones and the home trash, for a server that does not answer would be waited for; what lies
// on a server goes to the trash there nevertheless. Where FRAMEKEEPER_LOCAL_COMPUTER narrows the local computer to some
// folders, they are those mounted there.

namespace mac {

enum class TrashProblem {
    // There is nothing at the path, or it went meanwhile.
    NotThere,
    // Something else took the item's place meanwhile; it was left alone.
    Changed,
    // The item, its folder or its owner do not let this user do it.
    NotAllowed,
    // A volume that cannot be written to.
    ReadOnly,
    // No room, not even for the few bytes that the trash needs.
    Full,
    // The volume has no trash that can be used, and none can be made.
    NoTrash,
    // The root, a mount point, a folder that holds one, a trash, or what holds a trash.
    Immovable,
    // The item lies in a trash already.
    InTrash,
    // The item does not lie in a trash, or nothing tells where it came from.
    NotInTrash,
    // Something has the name already that the item would get.
    NameTaken,
    // Whatever else the system says.
    Other,
};

struct TrashFailure {
    TrashProblem problem{TrashProblem::Other};
    // For people, in UTF-8.
    std::string reason{};
};

// A value, or why there is none.
template <class T>
class TrashResult {
public:
    TrashResult(T value) : m_value(std::move(value)) {}
    TrashResult(TrashFailure failure) : m_failure(std::move(failure)) {}

    bool hasValue() const { return m_value.has_value(); }
    // Only when there is one.
    T const& value() const { return *m_value; }
    T takeValue() { return std::move(*m_value); }
    // Only when there is no value.
    TrashFailure const& failure() const { return m_failure; }

private:
    std::optional<T> m_value{};
    TrashFailure m_failure{};
};

// Something that lies in a trash, as it was when it was looked at.
struct TrashedItem {
    // Where it is now: ".../Trash/files/NAME".
    std::string path{};
    // Where it came from; empty when nothing tells.
    std::string originalPath{};
    // Seconds since 1970; nothing when nothing tells.
    std::optional<std::int64_t> deletionTime{};
    ItemIdentity identity{};
    bool isFolder{false};
};

// Moves the item, with the AppleDouble file "._NAME" beside it, to the trash of its volume, which is made when it is
// missing. A link at the end of the path is meant itself, also with a slash behind it. Where the trash has the name
// already the item gets one with the time of day, "NAME 14-05-22.txt"; a name too long for the trash is shortened. On
// failure everything is where it was, except what had begun to move when somebody else took its place: that is in the
// trash, nothing is lost, and the reason says where.
TrashResult<TrashedItem> moveToTrash(std::string_view path);
// The very item that was opened; Changed when another one has taken its place.
TrashResult<TrashedItem> moveToTrash(OpenItem const& item);

// Everything in the user's trashes on all volumes, the last deleted first. AppleDouble files that belong to an item
// there are not listed.
std::vector<TrashedItem> trashedItems();

// Moves the item back to where it came from and answers that path. Where something is there already it is NameTaken;
// where the folder is gone, NotThere.
TrashResult<std::string> putBack(TrashedItem const& item);

struct EmptiedTrash {
    // Of items, as trashedItems counts.
    std::size_t removed{0};
    // Those that could not be removed, or not wholly, and why the first could not. A trash that cannot be listed counts
    // as one of them.
    std::size_t left{0};
    TrashFailure firstFailure{};
};

// Deletes for good all that lies in the user's trashes on all volumes now; never what a link or a mount point leads to.
// `goesOn`, unless it is empty, is asked before each item and before all that a folder holds; when it answers false,
// the rest stays, and is no failure.
EmptiedTrash emptyTrash(std::function<bool()> const& goesOn = {});

// The folder that what is trashed on the volume of the path goes to, ".../Trash/files"; nothing when there is none yet
// (unless it is to be made and can be).
std::optional<std::string> trashFolderForPath(std::string_view path, bool makesIt);

} // namespace mac
