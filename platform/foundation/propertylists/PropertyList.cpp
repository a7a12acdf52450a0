#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include <algorithm>
#include <limits>

namespace mac {

PropertyListKind propertyListKind(id const& object) {
    if (object.isKindOfClass_(classOf<NSString>())) return PropertyListKind::String;
    if (object.isKindOfClass_(classOf<NSNumber>())) return PropertyListKind::Number;
    if (object.isKindOfClass_(classOf<NSDictionary>())) return PropertyListKind::Dictionary;
    if (object.isKindOfClass_(classOf<NSArray>())) return PropertyListKind::Array;
    if (object.isKindOfClass_(classOf<NSData>())) return PropertyListKind::Data;
    if (object.isKindOfClass_(classOf<NSDate>())) return PropertyListKind::Date;
    if (object.isKindOfClass_(classOf<CFKeyedArchiverUIDRef>())) return PropertyListKind::Identifier;
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

id identifierOfDictionary(NSDictionary const& dictionary) {
    if (dictionary.count() != 1) return nil;
    NSNumber const value =
        as<NSNumber>(dictionary.objectForKey_(NSString::stringWithUTF8String_(kPropertyListIdentifierKey)));
    bool const isInteger =
        value != nil && (value.kind() == NSNumber::Kind::Signed || value.kind() == NSNumber::Kind::Unsigned);
    if (!isInteger || value.unsignedLongLongValue() > std::numeric_limits<std::uint32_t>::max()) return nil;
    return CFKeyedArchiverUIDCreate(kCFAllocatorDefault, static_cast<std::uint32_t>(value.unsignedLongLongValue()));
}

} // namespace mac
