#pragma once

#include "platform/files/Trash.h"
#include <string>
#include <vector>

// The places where a trash can lie, and the user's trashes there. Any thread.

namespace mac {

// One of the user's trashes. Its folders are open, so that no other folder can take their place.
struct TrashPlace {
    FileDescriptor folder{};
    FileDescriptor files{};
    FileDescriptor information{};
    // Without a slash at the end.
    std::string path{};
    // The folder that relative original paths start from: the parent of the home trash, the top of another volume.
    std::string base{};
    bool isHome{false};

    std::string filesPath() const { return path + "/files"; }
    // The form in which an original path is recorded; nullopt if it lies outside of the trash's volume.
    std::optional<std::string> writtenPath(std::string const& original) const;
    // The original path of a recorded one; empty if the record is not trusted.
    std::string originalPath(std::string const& written) const;
};

// The trash for items in the folder. NoTrash, ReadOnly or Full if its volume has none.
Result<TrashPlace, TrashProblem> trashForFolder(FileDescriptor const& folder, MissingTrash missing);

// Whether the home trash lies in the folder, or would if it were created.
bool holdsHomeTrash(ItemIdentity const& folder);
// The trashes that an item in the folder could lie in, or hold.
std::vector<TrashPlace> trashesAround(FileDescriptor const& folder);
// The user's trashes on all volumes.
std::vector<TrashPlace> trashesOfUser();

} // namespace mac
