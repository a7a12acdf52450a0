#pragma once

#include "platform/system/SystemError.h"
#include <string>

namespace mac {

// A sentence for people: an English text, which is a key of the catalogues, where "%@" stands for the path.
struct TrashSentence {
    char const* key{""};
    // In bytes.
    std::string path{};
};

// Why an item could not be trashed, put back or erased.
struct TrashProblem {
    enum class Kind {
        // No item is at the path, or it has gone meanwhile.
        NotThere,
        // Another item has taken the item's place meanwhile; it was left alone.
        Changed,
        // The permissions of the item, its folder or its owner do not allow it.
        NotAllowed,
        // The item is locked.
        Locked,
        // The volume cannot be written to.
        ReadOnly,
        // The volume has no space left, not even for the few bytes that the trash needs.
        Full,
        // The volume has no trash that can be used, and none can be made.
        NoTrash,
        // The item is the root, a mount point, a folder that holds one, a trash, or a folder that holds a trash.
        Immovable,
        // The item lies in a trash already.
        InTrash,
        // The item does not lie in a trash, or its original path is not recorded.
        NotInTrash,
        // Another item has the name that the item would get.
        NameTaken,
        // Any other error of the system.
        Other,
    };
    using enum Kind;

    Kind kind{Other};
    // The system call that failed; its code is 0 if the trash itself refused.
    SystemError error{};
    // What failed, a key of the catalogues.
    char const* what{""};
    // Without a text the reason is the system's own.
    TrashSentence reason{};
    // Where the items are now, unless all are where they were.
    TrashSentence whereabouts{};

    // In English, and in the language of the catalogue; in UTF-8. Empty if nothing failed.
    std::string text() const;
    std::string localizedText() const;
};

// Why a system call about the trash failed; ESTALE is Changed.
TrashProblem trashProblem(SystemError error, char const* what);
// Another item was moved to the path instead of the item, and cannot be moved back.
TrashProblem wrongItemMoved(SystemError error, char const* what, std::string const& path);

} // namespace mac
