#pragma once

#include "platform/system/LongPath.h"
#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/OpenItem.h"
#include <ctime>
#include <mutex>
#include <optional>

namespace mac {

// The AppleDouble file "._NAME" beside an item, as it was when it was read. One thread at a time.
class AppleDoubleSidecar {
public:
    enum class State {
        // There is no file of that name.
        Absent,
        Read,
        // The name belongs to something else than an AppleDouble file, which must not be written.
        Foreign,
        // No sidecar can lie beside the item: it is the root, or its name leaves no room for the prefix.
        Impossible,
        // There is a file that could not be read; what it holds is not known.
        Unreadable,
    };

    // Reads the sidecar. The item must outlive this object.
    explicit AppleDoubleSidecar(OpenItem const& item);

    // What the sidecar holds, and what save() writes. Empty unless the state is Read.
    AppleDouble contents{};

    State state() const { return m_state; }
    bool isWritable() const { return m_state == State::Absent || m_state == State::Read; }
    // Fails, with the reason, only if the sidecar is Unreadable.
    Result<void> reading() const;

    // Replaces the file atomically by the contents, or removes it if they are empty. A new file has the item's owner,
    // group and permissions. ESTALE: the item has lost its name; EAGAIN: another process has changed or made the file
    // since it was read. A new file has the date of modification `modified` if there is one.
    Result<void> save(std::optional<timespec> modified = {}) const;

    // When the file was changed that was read; nullopt if none was.
    std::optional<timespec> modified() const;

    static constexpr std::string_view namePrefix = "._";
    // The name of the sidecar of an item of that name, in the same folder.
    static std::string nameFor(std::string_view itemName);

private:
    Result<void> remove() const;

    OpenItem const& m_item;
    std::string m_name;
    std::optional<FileStatus> m_status{};
    State m_state{State::Absent};
    SystemError m_problem{};
};

// The value that the item's sidecar has under an attribute name; ENODATA if it has none. The file is read as a whole
// only if its beginning does not suffice.
Result<std::vector<std::byte>> valueInSidecar(OpenItem const& item, std::string_view name);

// The names of the attributes that the item's sidecar has; empty if it has none. Of a large file, values are not read.
Result<std::vector<std::string>> namesInSidecar(OpenItem const& item);

// An exclusive lock on the sidecars in one folder, against other threads and against other processes that take it.
// Where the file system cannot lock folders, it excludes this process's threads only.
class AppleDoubleLock {
public:
    // Waits up to ten seconds; EBUSY if another process keeps the folder locked.
    static Result<AppleDoubleLock> take(OpenItem const& item);

private:
    AppleDoubleLock() = default;

    FileDescriptor m_folder{};
    std::unique_lock<std::mutex> m_threads{};
};

} // namespace mac
