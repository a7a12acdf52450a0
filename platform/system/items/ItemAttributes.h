#pragma once

#include "platform/system/items/AttributesOnItem.h"
#include <functional>

namespace mac {

// The extended attributes of an open item under the names of Mac OS X, whether the file system holds them (as "user.n")
// or the AppleDouble sidecar: the file system's value counts if both have one. Only files and folders carry attributes.
// Finder information of zeros and an empty resource fork count as absent. Any thread.

// ENODATA if there is no such attribute.
Result<std::vector<std::byte>> readAttribute(OpenItem const& item, AttributeName const& name);
// The value's length in bytes.
Result<std::size_t> sizeOfAttribute(OpenItem const& item, AttributeName const& name);
// Empty for an item that carries no attributes. Without the attribute that locks items, which is no content of theirs.
Result<std::vector<std::string>> namesOfAttributes(OpenItem const& item);

enum class AttributeCondition {
    Any,
    // EEXIST if the attribute exists.
    MustBeNew,
    // ENODATA if the attribute does not exist.
    MustExist,
};
// Replaces the whole value; what the file system cannot hold goes to the sidecar. To write a value that counts as
// absent is to remove the attribute. EPERM: the item carries no attributes; ERANGE: Finder information of a size other
// than 32 bytes; EMLINK: the value fits only in a sidecar, which a file of several names cannot have; EBUSY: another
// process keeps the folder locked.
Result<void> writeAttribute(OpenItem const& item, AttributeName const& name, std::span<std::byte const> value,
                            AttributeCondition condition = AttributeCondition::Any);
// ENODATA if there is no such attribute.
Result<void> removeAttribute(OpenItem const& item, AttributeName const& name);

// Runs the change of the item's attributes. If it is refused because the item's owner, who runs it, has no permission
// to write to the item, the item gets that permission for the time of a second try.
Result<void> changeAttributesAsOwner(OpenItem const& item, std::function<Result<void>()> const& change);

} // namespace mac
