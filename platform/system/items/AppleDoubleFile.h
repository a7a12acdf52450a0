#pragma once

#include "platform/system/LongPath.h"
#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/OpenItem.h"

namespace mac {

// The file "._NAME" beside an item, as it was when it was read. For implementations; one thread at a time.
class AppleDoubleFile {
public:
    // The item outlives this object.
    explicit AppleDoubleFile(OpenItem const& item);

    // What it holds; changed here, it is not yet on the disk. Empty where there is no such file.
    AppleDouble contents{};

    // Whether something of that name is there that cannot be read, or that is no AppleDouble file: then it is somebody
    // else's and must not be written. errorNumber says why.
    bool isUsable() const { return m_error == 0; }
    int errorNumber() const { return m_error; }
    // Why it is not known what the file holds; 0 also for somebody else's file, which holds nothing of the item.
    int readingError() const;

    // Puts the contents on the disk, old whole or new whole, or removes the file when they are empty. A new file has
    // the item's owner, group and permissions. False when that fails; errno says why: ESTALE when the item has lost its
    // name, EAGAIN when somebody else has changed or made the file since it was read.
    bool save() const;

    static constexpr std::string_view namePrefix = "._";
    // Of an item of that name, in the same folder.
    static std::string nameFor(std::string_view itemName);

private:
    void read();
    bool remove() const;

    OpenItem const& m_item;
    std::string m_name;
    std::optional<FileStatus> m_state{};
    int m_error{0};
};

// What such a file holds under the name. It is read as a whole only where its beginning does not tell. Nothing where
// there is none, which is ENODATA, or it is not known; errno says why.
std::optional<std::vector<std::byte>> valueBeside(OpenItem const& item, std::string_view name);

// While it lives no other thread, and no other program that asks for it, changes AppleDouble files in the folder. Where
// folders cannot be locked it is only this program's threads that do not.
class AppleDoubleLock {
public:
    explicit AppleDoubleLock(OpenItem const& item);
    ~AppleDoubleLock();
    AppleDoubleLock(AppleDoubleLock const&) = delete;
    AppleDoubleLock& operator=(AppleDoubleLock const&) = delete;

    // False, with errno EBUSY, when somebody keeps the folder locked.
    bool isHeld() const { return m_isHeld; }

private:
    FileDescriptor m_folder{};
    bool m_isThreadLocked{false};
    bool m_isHeld{false};
};

} // namespace mac
