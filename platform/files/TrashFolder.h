#pragma once

#include "platform/files/Trash.h"
#include <string>
#include <vector>

namespace mac {

// One of the user's trashes, open, so that nobody puts another in its place while it is used. For implementations.
struct TrashFolder {
    FileDescriptor folder{};
    FileDescriptor files{};
    FileDescriptor information{};
    // Without a slash at the end.
    std::string path{};
    // What relative original paths count from: the folder that the home trash lies in, the top of another volume.
    std::string base{};
    bool isHome{false};

    std::string filesPath() const { return path + "/files"; }
    // An original path as it is written down; nothing where it lies outside of the trash's volume.
    std::optional<std::string> writtenPath(std::string const& original) const;
    // And back; empty where what is written down is not to be believed.
    std::string originalPath(std::string const& written) const;
};

enum class MissingTrash { IsMade, IsMissing };

// Where something in the folder goes to when it is trashed.
TrashResult<TrashFolder> trashForFolder(FileDescriptor const& folder, MissingTrash missing);

// Whether the home trash lies in that folder, or would if it were made.
bool holdsHomeTrash(ItemIdentity const& folder);
// Those that something in the folder could lie in, or hold.
std::vector<TrashFolder> trashesAround(FileDescriptor const& folder);
// All.
std::vector<TrashFolder> trashesOfUser();

// Of a call that failed with that number; ESTALE means that another item has taken the place.
TrashFailure trashFailure(int errorNumber, std::string const& what);
// Another item was moved in the stead of the one that was meant, and cannot be moved back from the path.
TrashFailure anotherMoved(std::string const& what, std::string const& path);
// A path as people can read it.
std::string shownPath(std::string const& path);

} // namespace mac
