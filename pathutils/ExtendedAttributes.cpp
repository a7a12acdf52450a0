#include "pathutils/ExtendedAttributes.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include <algorithm>

namespace mac {

namespace {

constexpr std::uint32_t Start = 0;
constexpr int NoOptions = 0;

// A path and a name as the system takes them. A name is written as the bytes it was listed by.
struct Place {
    std::string path;
    std::string name;
};

std::optional<Place> placeOf(NSString const& path, NSString const& key) {
    std::optional<std::string> bytes = path.fileSystemRepresentation();
    std::optional<std::string> name = key.fileSystemRepresentation();
    if (!bytes || !name) return std::nullopt;
    return Place{std::move(*bytes), std::move(*name)};
}

NSString bundleIdentifier() { return NSBundle::mainBundle().bundleIdentifier(); }

} // namespace

NSMutableArray pxExtendedAttributesKeys(NSString receiver) {
    if (receiver == nil) return nil;
    NSMutableArray const keys = NSMutableArray::array();
    std::optional<std::string> const path = receiver.fileSystemRepresentation();
    if (!path) return keys;
    std::ptrdiff_t const length = listxattr(path->c_str(), {}, 0, NoOptions);
    if (length < 1) return keys;
    std::string names(static_cast<std::size_t>(length), '\0');
    if (listxattr(path->c_str(), names.data(), names.size(), NoOptions) != length) return nil;
    for (std::size_t place = 0; place < names.size();) {
        std::size_t const end = std::min(names.find('\0', place), names.size());
        NSString const name =
            NSString::stringWithFileSystemRepresentation_(std::string_view(names).substr(place, end - place));
        keys.addObject_(name);
        // Deliberately the length in characters, not in bytes.
        place += name.length() + std::size_t{1};
    }
    return keys;
}

NSData pxExtendedAttributeDataForKey_(NSString receiver, NSString key) {
    std::optional<Place> const place = placeOf(receiver, key);
    if (!place) return nil;
    char const* const path = place->path.c_str();
    char const* const name = place->name.c_str();
    std::ptrdiff_t const length = getxattr(path, name, {}, 0, Start, NoOptions);
    if (length < 1) return nil;
    std::vector<std::byte> bytes(static_cast<std::size_t>(length));
    if (getxattr(path, name, bytes.data(), bytes.size(), Start, NoOptions) != length) return nil;
    return NSData::dataWithBytes(bytes);
}

bool pxSetExtendedAttributeData_forKey_(NSString receiver, NSData data, NSString key) {
    if (data == nil) return pxRemoveExtendedAttributeForKey_(receiver, key);
    std::optional<Place> const place = placeOf(receiver, key);
    return place &&
           setxattr(place->path.c_str(), place->name.c_str(), data.bytes(), data.length(), Start, NoOptions) == 0;
}

bool pxRemoveExtendedAttributeForKey_(NSString receiver, NSString key) {
    std::optional<Place> const place = placeOf(receiver, key);
    return place && removexattr(place->path.c_str(), place->name.c_str(), NoOptions) == 0;
}

NSMutableDictionary pxExtendedAttributes(NSString receiver) {
    NSArray const keys = pxExtendedAttributesKeys(receiver);
    if (keys.count() == 0) return nil;
    NSMutableDictionary const attributes = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
    for (id const& key : keys) {
        NSData const data = pxExtendedAttributeDataForKey_(receiver, as<NSString>(key));
        if (data != nil) attributes.setObject_forKey_(data, key);
    }
    return attributes;
}

NSMutableDictionary pxExtendedAttributesForKeys_(NSString receiver, NSArray keys) {
    NSMutableDictionary attributes;
    for (id const& key : keys) {
        NSData const data = pxExtendedAttributeDataForKey_(receiver, as<NSString>(key));
        if (data == nil) continue;
        if (attributes == nil) attributes = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
        attributes.setObject_forKey_(data, key);
    }
    return attributes;
}

void pxSetExtendedAttributes_(NSString receiver, NSDictionary attributes) {
    for (id const& key : attributes.allKeys()) {
        NSData const data = as<NSData>(attributes.objectForKey_(key));
        // Setting nil data would remove the attribute, which was not asked for.
        if (data != nil) pxSetExtendedAttributeData_forKey_(receiver, data, as<NSString>(key));
    }
}

id pxExtendedAttributeDictionaryForKey_(NSString receiver, NSString key) {
    NSData const data = pxExtendedAttributeDataForKey_(receiver, key);
    if (data == nil) return nil;
    return NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        data, NSPropertyListMutableContainersAndLeaves, {}, {});
}

bool pxSetExtendedAttributeDictionary_forKey_(NSString receiver, id propertyList, NSString key) {
    NSData data;
    if (propertyList != nil)
        data = NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
            propertyList, NSPropertyListBinaryFormat_v1_0, {});
    return pxSetExtendedAttributeData_forKey_(receiver, data, key);
}

id pxExtendedAttributeDictionary(NSString receiver) {
    return pxExtendedAttributeDictionaryForKey_(receiver, bundleIdentifier());
}

void pxSetExtendedAttributeDictionary_(NSString receiver, id propertyList) {
    pxSetExtendedAttributeDictionary_forKey_(receiver, propertyList, bundleIdentifier());
}

} // namespace mac
