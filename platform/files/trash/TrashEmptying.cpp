#include "platform/files/references/ItemReferences.h"
#include "platform/files/trash/TrashContents.h"
#include "platform/files/trash/TrashRecords.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/Leftovers.h"
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr char const* CannotErase = localizable("The item cannot be deleted from the trash");

Result<void> eraseOne(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
    Result<void> removed = removeUnlessLocked(folder, name, place.isFolder);
    return !removed.isDone() && removed.problem().is(ENOENT) ? Result<void>() : removed;
}

// Deletes everything that lies in the trashes, until it is told to stop.
class Emptying {
public:
    Emptying(std::function<bool()> const& shouldContinue, TrashSteps const& steps)
        : m_shouldContinue(shouldContinue), m_steps(steps) {}

    EmptiedTrash run() {
        FoundTrashes const found = trashesOfUser();
        for (SystemError const& problem : found.problems)
            countLeft(problem);
        for (TrashPlace const& trash : found.trashes) {
            empty(trash);
            removeOrphans(trash);
            removeOldDirectorySizes(trash);
            if (m_isStopped) break;
        }
        return m_emptied;
    }

private:
    void empty(TrashPlace const& trash) {
        Result<ListedTrash> const listed = itemsInTrash(trash);
        if (!listed.hasValue()) return countLeft(listed.problem());
        for (SystemError const& problem : listed.value().problems)
            countLeft(problem);
        for (ListedItem const& item : listed.value().items) {
            Result<void> const erased = eraseWithSidecar(trash, item);
            if (erased.isDone())
                ++m_emptied.removed;
            else if (!m_isStopped)
                countLeft(erased.problem());
            if (m_isStopped) return;
        }
    }

    void countLeft(SystemError const& error) {
        if (m_emptied.left == 0) m_emptied.firstProblem = trashProblem(error, CannotErase);
        ++m_emptied.left;
    }

    // An item that is erased takes its sidecar along, also if the emptying stops then.
    Result<void> eraseWithSidecar(TrashPlace const& trash, ListedItem const& listed) {
        std::string const name(BytePath(listed.item.path).leaf());
        Result<void> erased =
            eraseWhole(trash, name, listed.item.identity,
                       [this](FileDescriptor const& folder, std::string const& inner, ItemPlace const& place) {
                           return eraseUnlessStopped(folder, inner, place);
                       });
        if (!erased.isDone() || !listed.sidecar) return erased;
        return eraseWhole(trash, listed.sidecar->name, listed.sidecar->identity, eraseOne);
    }

    Result<void> eraseWhole(TrashPlace const& trash, std::string const& name, ItemIdentity const& identity,
                            DescentVisit const& erase) const {
        Result<void> erased = descend(trash.files, name, identity, {.makesAccessible = true}, erase);
        if (!erased.isDone()) return erased;
        if (m_steps) m_steps(TrashStep::ItemErased);
        return removeInformation(trash, name);
    }

    Result<void> eraseUnlessStopped(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
        m_isStopped = m_shouldContinue && !m_shouldContinue();
        if (m_isStopped) return SystemError{.code = ECANCELED, .operation = "unlink", .item = name};
        return eraseOne(folder, name, place);
    }

    // Removes information files whose item never came or has gone by other ways. A recent one may belong to an item
    // that is being moved.
    static void removeOrphans(TrashPlace const& trash) {
        if (!trash.information.isOpen()) return;
        static_cast<void>(removeLeftovers(trash.information));
        constexpr std::int64_t oldEnough = 3'600;
        std::int64_t const now = ::time(nullptr);
        Result<std::vector<std::string>> const files = namesInOpenFolder(trash.information);
        if (!files.hasValue()) return;
        for (std::string const& file : files.value()) {
            if (!file.ends_with(TrashInformation::nameEnd)) continue;
            std::string const name = file.substr(0, file.size() - TrashInformation::nameEnd.size());
            struct stat status {};
            if (::fstatat(trash.information.number(), file.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
            Result<ItemPlace> const item = placeOf(trash.files, name);
            bool const isOrphan = !item.hasValue() && item.problem().is(ENOENT);
            if (isOrphan && S_ISREG(status.st_mode) && status.st_mtim.tv_sec + oldEnough < now)
                ::unlinkat(trash.information.number(), file.c_str(), 0);
        }
    }

    std::function<bool()> const& m_shouldContinue;
    TrashSteps const& m_steps;
    EmptiedTrash m_emptied{};
    bool m_isStopped{false};
};

} // namespace

EmptiedTrash emptyTrash(std::function<bool()> const& shouldContinue, TrashSteps const& steps) {
    EmptiedTrash emptied = Emptying(shouldContinue, steps).run();
    releaseRemovedItems();
    return emptied;
}

} // namespace mac
