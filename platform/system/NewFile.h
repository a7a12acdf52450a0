#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <span>
#include <string>

namespace mac {

// A file under a temporary name, made to replace another one in its folder. The destructor removes it unless it got its
// final name; what killed processes have left in the folder is removed when it is made. Movable; one thread at a time.
class NewFile {
public:
    // REQUIRES: the folder stays open and in place longer than the file. The mode holds the permissions, less the
    // umask.
    static Result<NewFile> make(FileDescriptor const& folder, unsigned mode);

    NewFile(NewFile&&) noexcept = default;
    NewFile& operator=(NewFile&&) = delete;
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;
    ~NewFile();

    FileDescriptor const& file() const { return m_file; }

    // Appends all of the bytes.
    Result<void> write(std::span<std::byte const> bytes) const;
    // Copies the extended attributes of an open file. Fails if one of the user's cannot be kept; the system's are
    // copied as far as this user may.
    Result<void> copyAttributesOf(FileDescriptor const& old) const;
    // Takes owner, group, those permissions of the item that are in the mask, and its access list, as far as this user
    // may; no user gets more access than to the item (see giveAccess).
    Result<void> takeAfter(FileDescriptor const& item, unsigned permissionMask) const;

    // Writes it to the disk, which can take seconds; what cannot be written is a failure here at the latest.
    Result<void> flush() const;

    enum class Place { IsTaken, MustBeFree };
    // Renames it, once it is flushed, and flushes the folder. The file stays open.
    Result<void> giveName(std::string const& name, Place place);
    // Renames it over a file of that name, if there is one, without waiting for the disk: after a crash the name may
    // lead to the old file, the new one, or one that is not whole. For files whose readers check them and do without.
    Result<void> giveNameUnflushed(std::string const& name);

private:
    NewFile(FileDescriptor const& folder, std::string name, FileDescriptor file);
    Result<void> takeName(std::string const& name, Place place) const;

    FileDescriptor const* m_folder;
    std::string m_name;
    FileDescriptor m_file;
    bool m_hasFinalName{false};
};

} // namespace mac
