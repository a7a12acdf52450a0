#include "platform/spotlight/NSMetadataItem.h"
#include "platform/Registration.h"
#include "platform/foundation/objects/Method.h"
#include "platform/spotlight/NSMetadataQuery.h"

namespace mac {

class NSMetadataItem::Body : public ObjectBody {
public:
    explicit Body(NSString const& path) : m_path(path) {}

    id attribute(NSString const& key) const {
        if (key.isEqualToString_(kMDItemPath)) return m_path;
        if (key.isEqualToString_(kMDItemFSName)) return m_path.lastPathComponent();
        if (key.isEqualToString_(kMDItemKind)) return "Application";
        return nil;
    }

    // Predicates read attributes by key; an attribute that the item lacks is nil, not an error.
    id valueForKey(NSString const& key) override { return attribute(key); }
    bool isEqual(id const& other) const override {
        NSMetadataItem const item = as<NSMetadataItem>(other);
        return item != nil && m_path.isEqualToString_(bodyOf(item)->m_path);
    }
    std::uint64_t hash() const override { return m_path.hash(); }

private:
    NSString m_path;
};

ClassDescription NSMetadataItem::describeClass() {
    return {
        .name = "NSMetadataItem",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&NSMetadataItem::valueForAttribute_>("valueForAttribute:"),
                method<&NSMetadataItem::attributes>("attributes"),
            },
    };
}

NSMetadataItem NSMetadataItem::itemWithPath(NSString const& path) {
    return path == nil ? NSMetadataItem() : adopt<NSMetadataItem>(path);
}

id NSMetadataItem::valueForAttribute_(NSString const& key) const {
    return *this == nil || key == nil ? id() : bodyOf(*this)->attribute(key);
}

NSArray NSMetadataItem::attributes() const {
    return *this == nil ? NSArray() : NSArray::arrayWithObjects_({kMDItemPath, kMDItemFSName, kMDItemKind});
}

void registerSpotlight() { registerClasses<NSMetadataItem, NSMetadataQuery>(); }

} // namespace mac
