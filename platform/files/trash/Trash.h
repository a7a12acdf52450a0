#pragma once

#include "platform/files/trash/TrashProblem.h"
#include "platform/system/Result.h"
#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/ItemRename.h"
#include "platform/system/items/OpenItem.h"
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The user's trash in the freedesktop.org layout, which all programs of the desktop share: the folder "Trash" among the
// user's data for items of the same volume, and ".Trash/USER" or ".Trash-USER" at the top of every other volume. A
// trashed item lies in the folder "files" of its trash; a file in the folder "info" records where it came from. Paths
// and names are bytes. Any thread.
//
// An item is never copied into a trash, and never deleted in place of being trashed: it either moves within its volume
// or stays where it is.
//
// "All volumes" are the local ones and the home trash, since a server that does not answer would block; an item on a
// server is trashed there nevertheless. Where FRAMEKEEPER_LOCAL_COMPUTER narrows the local computer to some folders,
// all volumes are those mounted in these folders.

namespace mac {

// A step of trashing, putting back or erasing that was just taken.
enum class TrashStep {
    // The name still belongs to the item, or to its AppleDouble sidecar; the rename is next.
    Checked,
    // The item has its new name; whether it is still the same item is checked next.
    Renamed,
    // The item's information file is on the disk; the move is next.
    InformationWritten,
    ItemMoved,
    // The AppleDouble sidecar, if there is one, has moved, too.
    AllMoved,
    ItemPutBack,
    ItemErased,
};
// Called after each step, on the thread that takes it; empty in the product. For tests of what happens between steps.
using TrashSteps = std::function<void(TrashStep)>;
// The steps of a rename as steps of the trash; empty if `steps` is.
RenameSteps renameStepsOf(TrashSteps const& steps);

// An item in a trash, as it was when the trash was read.
struct TrashedItem {
    // Where it is now: ".../Trash/files/NAME".
    std::string path{};
    // Where it came from; empty if that is not recorded.
    std::string originalPath{};
    // Seconds since 1970; nullopt if that is not recorded.
    std::optional<std::int64_t> deletionTime{};
    ItemIdentity identity{};
    bool isFolder{false};
};

// Moves the item, with its AppleDouble sidecar "._NAME", to the trash of its volume, which is created if it is missing.
// A symbolic link at the end of the path is not followed, also with a slash after it. If the name is taken in the trash
// the item gets one with the time of day, "NAME 14-05-22.txt"; a name too long for the trash is shortened. On failure
// everything is where it was, except an item that took the place at the last moment, was moved instead and could not be
// moved back: it is in the trash, and the text says where.
Result<TrashedItem, TrashProblem> moveToTrash(std::string_view path, TrashSteps const& steps = {});
// Moves the open item; Changed if another item has taken its place.
Result<TrashedItem, TrashProblem> moveToTrash(OpenItem const& item, TrashSteps const& steps = {});

// Everything in the user's trashes on all local volumes, the last deleted first. The AppleDouble sidecars of items
// there are not listed.
std::vector<TrashedItem> trashedItems();
// What was deleted from exactly this path, the last first: also in the trash of the path's own volume if that is of
// another computer. The path's folder may be gone.
std::vector<TrashedItem> trashedItemsFrom(std::string_view originalPath);

// An item that lies in a trash.
struct PlaceInTrash {
    // The trashed item: the item itself, or the trashed folder that holds it.
    TrashedItem trashed{};
    // Where the item came from; empty if that is not recorded.
    std::string originalPath{};
};
// Whether the item at the path lies in one of the user's trashes, and where it came from; nullopt if it lies elsewhere.
// A symbolic link at the end of the path is not followed. NotThere: no item is at the path.
Result<std::optional<PlaceInTrash>, TrashProblem> placeInTrash(std::string_view path);

// Moves the item, with its AppleDouble sidecar, back to where it came from, removes its information file and answers
// the original path. NameTaken: another item is there, or a file with the sidecar's name; NotThere: the folder is gone.
// On failure everything is where it was, except as for moveToTrash; the text says where.
Result<std::string, TrashProblem> putBack(TrashedItem const& item, TrashSteps const& steps = {});
// Moves the item at the path back. NotInTrash also for an item in a trashed folder, which goes back with the folder.
Result<std::string, TrashProblem> putBackItemAtPath(std::string_view path, TrashSteps const& steps = {});

struct EmptiedTrash {
    // Counted in items of trashedItems().
    std::size_t removed{0};
    // Items that could not be removed, or not entirely, or whose record could not, and why the first could not. A trash
    // that cannot be opened or listed counts as one.
    std::size_t left{0};
    TrashProblem firstProblem{};
};

// Deletes for good all that lies in the user's trashes on all volumes now; never what a symbolic link or a mount point
// leads to. `shouldContinue`, unless it is empty, is called before each item and before each item in a folder; if it
// answers false, the rest stays and does not count as left.
EmptiedTrash emptyTrash(std::function<bool()> const& shouldContinue = {}, TrashSteps const& steps = {});

enum class MissingTrash { IsMade, IsMissing };

// The folder ".../Trash/files" in which items of the path's volume are trashed. If there is none it is created or is a
// problem, as `missing` says.
Result<std::string, TrashProblem> trashFolderForPath(std::string_view path, MissingTrash missing);

} // namespace mac
