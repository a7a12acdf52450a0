#include "platform/foundation/PropertyListTree.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDate.h"
#include "platform/foundation/NSNumber.h"
#include <algorithm>

namespace mac {

PropertyListKind propertyListKind(id const& object) {
    if (object.isKindOfClass_(classOf<NSString>())) return PropertyListKind::String;
    if (object.isKindOfClass_(classOf<NSNumber>())) return PropertyListKind::Number;
    if (object.isKindOfClass_(classOf<NSDictionary>())) return PropertyListKind::Dictionary;
    if (object.isKindOfClass_(classOf<NSArray>())) return PropertyListKind::Array;
    if (object.isKindOfClass_(classOf<NSData>())) return PropertyListKind::Data;
    if (object.isKindOfClass_(classOf<NSDate>())) return PropertyListKind::Date;
    return PropertyListKind::None;
}

std::string complaintAboutKind(id const& object) {
    if (object == nil) return "There is no object to write";
    return "Property lists do not hold objects of the class " + std::string(object.class_().name());
}

std::optional<std::vector<NSString>> sortedKeys(NSDictionary const& dictionary) {
    std::vector<NSString> keys;
    for (id const& key : dictionary.allKeys()) {
        if (!key.isKindOfClass_(classOf<NSString>())) return std::nullopt;
        keys.push_back(uncheckedCast<NSString>(key));
    }
    std::ranges::sort(keys, {}, [](NSString const& key) { return key.codeUnits(); });
    return keys;
}

} // namespace mac
