#pragma once

#include "platform/files/TrashFolder.h"

// How an item goes into the trash and out of it, step by step. For implementations; any thread.

namespace mac {

enum class Moved {
    Yes,
    // It is where it was; errno says why, and ESTALE that another item has its name.
    No,
    // Another item took its place at the last moment, was moved in its stead and could not be moved back.
    ButAnother,
};

// Moves the open item, which has the name in the one folder, to a name in the other one that nothing has.
Moved moveItem(FileDescriptor const& item, FileDescriptor const& fromFolder, std::string const& from,
               FileDescriptor const& toFolder, std::string const& to);

// What the trash knows of one item: made before the item comes, and gone with this object unless it is kept.
class TrashReservation {
public:
    // Of an item that will have the name.
    TrashReservation(TrashFolder const& trash, std::string const& name);
    ~TrashReservation();
    TrashReservation(TrashReservation const&) = delete;
    TrashReservation& operator=(TrashReservation const&) = delete;

    // On the disk when it is true. EEXIST: something of that name is there.
    bool make(std::string const& writtenPath, std::string const& date);
    void keep() { m_isKept = true; }
    void giveUp() { m_isKept = false; }

private:
    TrashFolder const& m_trash;
    std::string m_name;
    FileDescriptor m_file{};
    bool m_isKept{false};
};

// The AppleDouble file beside an item, open.
struct Companion {
    FileDescriptor file{};
    std::string name{};
};
// None where there is none, or something else has the name.
Companion companionOf(FileDescriptor const& folder, std::string const& itemName);

} // namespace mac
