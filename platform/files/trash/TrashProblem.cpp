#include "platform/files/trash/TrashProblem.h"
#include "platform/foundation/text/Encodings.h"
#include <cerrno>

namespace mac {

std::string shownPath(std::string const& path) { return utf8FromUnits(unitsFromFileSystemBytes(path)); }

TrashProblem wrongItemMoved(SystemError error, std::string const& what, std::string const& path) {
    return {.kind = TrashProblem::Changed,
            .error = std::move(error),
            .text = what + ": Another item was moved in its stead, and is now at " + shownPath(path)};
}

TrashProblem trashProblem(SystemError error, std::string const& what) {
    constexpr auto kindOf = [](int code) {
        switch (code) {
        case ENOENT:
        case ENOTDIR:
            return TrashProblem::NotThere;
        case EACCES:
        case EPERM:
            return TrashProblem::NotAllowed;
        case ItemIsLocked:
            return TrashProblem::Locked;
        case EROFS:
            return TrashProblem::ReadOnly;
        case ENOSPC:
        case EDQUOT:
            return TrashProblem::Full;
        case EXDEV:
            return TrashProblem::NoTrash;
        case EBUSY:
            return TrashProblem::Immovable;
        case EEXIST:
        case ENOTEMPTY:
            return TrashProblem::NameTaken;
        case ESTALE:
            return TrashProblem::Changed;
        default:
            return TrashProblem::Other;
        }
    };
    std::string text = what + ": " + textOfSystemError(error.code);
    return {.kind = kindOf(error.code), .error = std::move(error), .text = std::move(text)};
}

} // namespace mac
