#include "platform/launchservices/ItemAttributes.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/DisplayNames.h"
#include "platform/launchservices/TypeIdentifiers.h"

namespace mac {

namespace {

NSString attributeText(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

// Nil for none.
NSString attributeText(OSType code) {
    return code == OSType() ? NSString(nil) : NSString::stringWithCodeUnits(textOfCode(code));
}

id contentType(DiskItem const& item) { return attributeText(contentTypeOf(item)); }
id extension(DiskItem const& item) { return item.extension().empty() ? id() : attributeText(item.extension()); }
id displayName(DiskItem const& item) { return displayNameOf(item); }
id displayKind(DiskItem const& item) { return UTTypeCopyDescription(attributeText(contentTypeOf(item))); }
id fileType(DiskItem const& item) {
    return item.kind == DiskItem::Kind::File ? attributeText(item.finder.fileType()) : NSString(nil);
}
id fileCreator(DiskItem const& item) {
    return item.kind == DiskItem::Kind::File ? attributeText(item.finder.fileCreator()) : NSString(nil);
}
id isInvisible(DiskItem const& item) { return NSNumber::numberWithBool_(BOOL(item.isInvisible())); }
id isExtensionHidden(DiskItem const& item) { return NSNumber::numberWithBool_(BOOL(hidesExtension(item))); }

struct Attribute {
    std::string_view name;
    id (*valueOf)(DiskItem const& item);
};

constexpr std::array Attributes{
    Attribute{kLSItemContentType, &contentType}, Attribute{kLSItemExtension, &extension},
    Attribute{kLSItemDisplayName, &displayName}, Attribute{kLSItemDisplayKind, &displayKind},
    Attribute{kLSItemFileType, &fileType},       Attribute{kLSItemFileCreator, &fileCreator},
    Attribute{kLSItemIsInvisible, &isInvisible}, Attribute{kLSItemExtensionIsHidden, &isExtensionHidden},
};

} // namespace

OSStatus LSCopyItemAttributes(FSRef const* itemRef, LSRolesMask /*inRoles*/, NSArray const& attributeNames,
                              NSDictionary* outValues) {
    if (!itemRef || !outValues) return paramErr;
    Result<DiskItem> const item = diskItemOf(*itemRef);
    if (!item.hasValue()) return fnfErr;
    NSMutableDictionary const values = NSMutableDictionary::dictionary();
    for (Attribute const& attribute : Attributes) {
        NSString const name = attributeText(attribute.name);
        bool const isWanted = attributeNames == nil || attributeNames.containsObject_(name);
        id const value = isWanted ? attribute.valueOf(item.value()) : id();
        if (value != nil) values.setObject_forKey_(value, name);
    }
    *outValues = NSDictionary::dictionaryWithDictionary_(values);
    return noErr;
}

} // namespace mac
