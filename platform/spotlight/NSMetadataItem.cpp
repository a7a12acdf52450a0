#include "platform/spotlight/NSMetadataItem.h"
#include "platform/Registration.h"
#include "platform/foundation/objects/Method.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include <memory>

namespace mac {

namespace {

// Made once: a search asks each of its finds for all of them.
struct ItemTexts {
    NSString kind = kMDItemKind;
    NSString name = kMDItemFSName;
    NSString path = kMDItemPath;
    NSString application = "Application";

    static ItemTexts const& shared() {
        // Never destroyed: objects may ask until the program's last instruction.
        static ItemTexts const& texts = *std::make_unique<ItemTexts>().release();
        return texts;
    }
};

} // namespace

class NSMetadataItem::Body : public ObjectBody {
public:
    explicit Body(NSString const& path) : m_path(path) {}

    id attribute(NSString const& key) const {
        ItemTexts const& texts = ItemTexts::shared();
        if (key.isEqualToString_(texts.path)) return m_path;
        if (key.isEqualToString_(texts.name)) return m_path.lastPathComponent();
        if (key.isEqualToString_(texts.kind)) return texts.application;
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
