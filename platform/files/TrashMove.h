#pragma once

#include "platform/files/TrashPlaces.h"
#include "platform/system/items/ItemRename.h"

// What moving items into the trash and out of it has in common. Any thread.

namespace mac {

// The steps of a rename as steps of the trash; empty if `steps` is.
RenameSteps renameStepsOf(TrashSteps const& steps);

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

} // namespace mac
