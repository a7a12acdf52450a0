#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <functional>
#include <string>
#include <utility>

namespace mac {

// Renaming that never replaces an item. Folders are open and on one volume; names are bytes. Any thread.

// Moves the item of a name in one folder to a name in another; fails with EEXIST if the new name is taken. A symbolic
// link is moved itself.
Result<void> renameWithoutReplacing(FileDescriptor const& fromFolder, std::string const& from,
                                    FileDescriptor const& toFolder, std::string const& to);

// Renames a complete file, whose first name no other process knows, within its folder; fails with EEXIST if the new
// name is taken. Where the file system cannot rename exclusively, the file gets the second name before it loses the
// first, which stays if it cannot be removed.
Result<void> nameNewFile(FileDescriptor const& folder, std::string const& from, std::string const& to);

// What renameWithoutReplacing does on file systems that cannot rename exclusively. Nothing empty ever has the new name:
// for a file it is taken by a symbolic link to the file, which the file then replaces unless another process has done
// so meanwhile; if the process is killed in between, the link stays. A folder replaces no more than an empty folder
// that another process makes at that very moment. Where there are no symbolic links, the new name is looked at and
// taken: a file system that has neither can exclude no process that takes it in between. The item moved is whatever has
// the first name by then.
class StepwiseRename {
public:
    StepwiseRename() = default;
    // Calls `afterFirstStep` once the link exists, or the new name is known to be free.
    explicit StepwiseRename(std::function<void()> afterFirstStep) : m_afterFirstStep(std::move(afterFirstStep)) {}

    Result<void> rename(FileDescriptor const& fromFolder, std::string const& from, FileDescriptor const& toFolder,
                        std::string const& to) const;

private:
    struct Place {
        FileDescriptor const& folder;
        std::string const& name;
    };

    Result<void> renameByLink(Place const& from, Place const& to) const;
    static Result<std::string> textOfLink(Place const& from, Place const& to);
    Result<void> renameToFreeName(Place const& from, Place const& to) const;
    void tellFirstStep() const;

    std::function<void()> m_afterFirstStep{};
};

} // namespace mac
