#pragma once

#include "platform/system/FileDescriptor.h"
#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace mac {

// It begins with a dot. Nothing where the system has no chance to give.
std::optional<std::string> unguessableName();

// A file under a name that nobody guesses, which is to take the place of another one in its folder; removed again
// unless it did. For implementations; one thread at a time. False where the system refuses; errno then says why.
class NewFile {
public:
    // The folder stays open longer. Nobody else may read the file unless the mode says so; the umask takes from it.
    NewFile(FileDescriptor const& folder, unsigned mode);
    ~NewFile();
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    bool isOpen() const { return m_file.isOpen(); }
    FileDescriptor const& file() const { return m_file; }

    bool write(std::span<std::byte const> bytes) const;
    // Named attributes and access list of an open file, as far as we may write them.
    bool copyAttributesOf(FileDescriptor const& old) const;
    // Owner, group, and of the item's permissions those in the mask. Where the system does not let us give it away, it
    // stays ours, nobody gets to run it in our name, and our group gets no more than everybody has.
    bool takeAfter(FileDescriptor const& item, unsigned permissionMask) const;

    enum class Place { IsTaken, MustBeFree };
    // On the disk, and renamed. The file stays open.
    bool finish(std::string const& name, Place place);

private:
    FileDescriptor const& m_folder;
    std::string m_name{};
    FileDescriptor m_file{};
    bool m_isDone{false};
};

} // namespace mac
