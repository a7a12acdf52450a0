#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// The attributes of a found item: its kind ("Application"), its file name and its path.
inline constexpr char kMDItemKind[] = "kMDItemKind";
inline constexpr char kMDItemFSName[] = "kMDItemFSName";
inline constexpr char kMDItemPath[] = "kMDItemPath";

// An item that a query found. Immutable; a nil item answers nil.
class NSMetadataItem : public Handle<NSMetadataItem, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Linux: the item of the application bundle at the path.
    static NSMetadataItem itemWithPath(NSString const& path);

    // Nil for an attribute that the item does not have.
    id valueForAttribute_(NSString const& key) const;
    NSArray attributes() const;
};

}
