#pragma once

#include "platform/files/trash/Trash.h"
#include <string>
#include <vector>

// The places where a trash can lie, and the user's trashes there. Any thread.

namespace mac {

// One of the user's trashes. Its folders are open, so that no other folder can take their place; "information" is not
// open if it is missing in a trash that was looked for and not made.
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
Result<bool> holdsHomeTrash(ItemIdentity const& folder);

// Whether the place has no trash that items of this user could lie in: it is missing, of another kind, another user's
// or closed to this one.
bool isWithoutTrash(SystemError const& error);

// The user's trashes at some places.
struct FoundTrashes {
    std::vector<TrashPlace> trashes{};
    // Why trashes that are there, or may be there, could not be opened.
    std::vector<SystemError> problems{};

    // The first problem that leaves open whether an item lies in a trash; nullopt if there is none.
    std::optional<SystemError> unknownPlace() const;
};
// The trashes that an item in the folder could lie in, or hold.
FoundTrashes trashesAround(FileDescriptor const& folder);
// The user's trashes on all local volumes.
FoundTrashes trashesOfUser();
// These, and those that an item at the path could go to, whichever volume that is on. Its folder need not exist.
FoundTrashes trashesOfUserAndAround(std::string_view path);

} // namespace mac
