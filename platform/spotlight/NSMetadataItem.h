#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// The attributes a found item has: its kind ("Application"), the name of its folder and its path.
inline constexpr char kMDItemKind[] = "kMDItemKind";
inline constexpr char kMDItemFSName[] = "kMDItemFSName";
inline constexpr char kMDItemPath[] = "kMDItemPath";

// An item that a query found. Immutable.
class NSMetadataItem : public Handle<NSMetadataItem, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Linux: an application bundle, by its path.
    static NSMetadataItem itemWithPath(NSString const& path);

    // Nil for an attribute that the item does not have.
    id valueForAttribute_(NSString const& key) const;
    NSArray attributes() const;
};

}
