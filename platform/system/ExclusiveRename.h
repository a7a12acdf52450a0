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

// Renames an item whose first name no other process knows, a complete file or one that was moved aside, within its
// folder; fails with EEXIST if the new name is taken. Where the file system cannot rename exclusively, a file gets the
// second name before it loses the first, which stays if it cannot be removed.
Result<void> nameNewFile(FileDescriptor const& folder, std::string const& from, std::string const& to);

// Renames an item within its folder to a name of TemporaryName.h. No other process knows it, so there is no item that
// could be replaced.
Result<void> moveAside(FileDescriptor const& folder, std::string const& name, std::string const& aside);

// What renameWithoutReplacing does on file systems that cannot rename exclusively.
//
// A file gets the new name as a second one, which the system itself refuses if it is taken, and then loses the first:
// what has the first name is moved aside under a name that no process knows, and removed only if it is the file and the
// new name leads to it still. So no item of another process is replaced or removed. If the process is killed in
// between, the file has both names, or the new one and that of the item moved aside, which goes with the leftovers of
// ended processes; if it cannot get its first name back, it keeps the new one, too. If no name can be removed, the file
// keeps the first one, and others of TemporaryName.h until the leftovers go. A descriptor that was opened by the
// first name no longer tells the item's path.
//
// Where a file cannot have two names, or shows another inode number under each, the new name is taken by a symbolic
// link to the file, which the file then replaces unless another process has done so meanwhile; if the process is killed
// in between, the link stays. A folder replaces no more than an empty folder that another process makes at that very
// moment. Where there are no symbolic links either, the new name is looked at and taken: a file system that has neither
// can exclude no process that takes it in between; the item moved is whatever has the first name by then.
class StepwiseRename {
public:
    StepwiseRename() = default;
    // Calls `afterFirstStep` once the second name or the link exists, or the new name is known to be free.
    explicit StepwiseRename(std::function<void()> afterFirstStep) : m_afterFirstStep(std::move(afterFirstStep)) {}

    Result<void> rename(FileDescriptor const& fromFolder, std::string const& from, FileDescriptor const& toFolder,
                        std::string const& to) const;

private:
    struct Place {
        FileDescriptor const& folder;
        std::string const& name;
    };

    Result<void> renameBySecondName(Place const& from, Place const& to) const;
    static Result<void> removeFirstName(Place const& from, Place const& to, FileDescriptor const& item);
    static void takeBackSecondName(Place const& from, Place const& to, FileDescriptor const& item,
                                   SystemError const& problem);
    static Result<void> confirmStillNamed(Place const& place, FileDescriptor const& item);
    enum class IfItStays { GetsItsNameBack, StaysAside };
    static Result<void> removeName(Place const& place, FileDescriptor const& item, Place const* remaining,
                                   IfItStays ifItStays);
    static Result<void> giveBackName(Place const& aside, Place const& place);
    Result<void> renameByLink(Place const& from, Place const& to) const;
    static Result<std::string> textOfLink(Place const& from, Place const& to);
    Result<void> renameToFreeName(Place const& from, Place const& to) const;
    void tellFirstStep() const;

    std::function<void()> m_afterFirstStep{};
};

} // namespace mac
