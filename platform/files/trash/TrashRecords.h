#pragma once

#include "platform/files/trash/TrashInformation.h"
#include "platform/files/trash/TrashPlaces.h"

// The files in which a trash records its items. Any thread.

namespace mac {

// nullopt if the item in the trash has no information file, or one of another form. Fails if there is one that cannot
// be read.
Result<std::optional<TrashInformation>> informationOf(TrashPlace const& trash, std::string const& name);
// A file that cannot be removed is renamed, so that it records nothing any more; it goes when the trash is next
// emptied. Done also if there is none.
Result<void> removeInformation(TrashPlace const& trash, std::string const& name);

// The item of a name in the trash, and what is recorded of it as far as that can be read.
Result<TrashedItem> itemInTrash(TrashPlace const& trash, std::string const& name);

// The AppleDouble sidecar that came with the item of that name; nullopt if none did. A sidecar from elsewhere that
// happens to have its name here is an item of its own, which must not go where this item goes. Fails if that cannot be
// found out.
Result<std::optional<OpenSidecar>> sidecarInTrash(TrashPlace const& trash, std::string const& name);

// An item's information file "NAME.trashinfo", created before the item moves; the destructor removes it again unless it
// is kept.
class TrashReservation {
public:
    // `name` is the name that the item will have in the trash.
    TrashReservation(TrashPlace const& trash, std::string const& name);
    ~TrashReservation();
    TrashReservation(TrashReservation const&) = delete;
    TrashReservation& operator=(TrashReservation const&) = delete;

    // Creates the file and flushes it to the disk; fails with EEXIST if there is one of that name.
    Result<void> make(std::string const& writtenPath, std::string const& date);
    void keep() { m_isKept = true; }
    void giveUp() { m_isKept = false; }

private:
    TrashPlace const& m_trash;
    std::string m_name;
    FileDescriptor m_file{};
    bool m_isKept{false};
};

// The file "directorysizes" caches the sizes of the folders in the trash. Failures are ignored, since other programs
// add up the sizes that are missing.

// Adds the size of a folder that was trashed, unless the folder holds too many items to add up quickly.
void addDirectorySize(TrashPlace const& trash, std::string const& name);

// Removes the sizes of folders that are no longer in the trash.
void removeOldDirectorySizes(TrashPlace const& trash);

} // namespace mac
