#pragma once

#include "platform/files/references/ItemReferences.h"
#include <string>

namespace mac::test {

// Where the referenced item is now; "-" if it is nowhere.
inline std::string pathOf(FSRef const& reference) {
    Result<ReferencedItem> const item = itemOfReference(reference);
    return item.hasValue() ? item.value().path : "-";
}

// A reference to the item; all zero if there is none.
inline FSRef referenceTo(std::string const& path, LinkAtEnd link = LinkAtEnd::IsFollowed) {
    return referenceToPath(path, link).valueOr(FSRef{});
}

// A reference that refers to no item.
inline FSRef filledReference() {
    FSRef reference{};
    reference.hidden.fill(0xA5);
    return reference;
}

} // namespace mac::test
