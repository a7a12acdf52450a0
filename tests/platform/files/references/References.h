#pragma once

#include "platform/files/references/ItemReferences.h"
#include <string>

namespace mac::test {

// Where the referenced item is now; "-" if it is nowhere.
inline std::string pathOf(FSRef const& reference) {
    Result<ReferencedItem> const item = itemOfReference(reference);
    return item.hasValue() ? item.value().path : "-";
}

// All zero if there is no item.
inline FSRef referenceTo(std::string const& path, LinkAtEnd link = LinkAtEnd::IsFollowed) {
    return referenceToPath(path, link).valueOr(FSRef{});
}

} // namespace mac::test
