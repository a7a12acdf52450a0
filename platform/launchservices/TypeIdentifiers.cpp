#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/ASCII.h"

namespace mac {

namespace {

std::optional<TagClass> classOfTags(NSString const& name) {
    if (name.isEqualToString_(kUTTagClassFilenameExtension)) return TagClass::Extension;
    if (name.isEqualToString_(kUTTagClassMIMEType)) return TagClass::MIMEType;
    if (name.isEqualToString_(kUTTagClassOSType)) return TagClass::TypeCode;
    return std::nullopt;
}

// An extension's bytes need not be UTF-8.
std::string bytesOf(NSString const& text) { return text.fileSystemRepresentation().value_or(text.UTF8String()); }
NSString typeText(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

std::vector<std::string> const& tagsOf(DeclaredType const& type, TagClass tagClass) {
    switch (tagClass) {
    case TagClass::Extension:
        return type.extensions;
    case TagClass::MIMEType:
        return type.mimeTypes;
    case TagClass::TypeCode:
        break;
    }
    return type.typeCodes;
}

// A single value as itself, several in an array.
id objectOf(std::vector<std::string> const& words) {
    if (words.size() == 1) return typeText(words.front());
    NSMutableArray const array = NSMutableArray::array();
    for (std::string const& word : words)
        array.addObject_(typeText(word));
    return NSArray::arrayWithArray_(array);
}

void setUnlessEmpty(NSMutableDictionary const& dictionary, std::vector<std::string> const& words, NSString const& key) {
    if (!words.empty()) dictionary.setObject_forKey_(objectOf(words), key);
}

NSDictionary tagSpecificationOf(DeclaredType const& type) {
    NSMutableDictionary const tags = NSMutableDictionary::dictionary();
    setUnlessEmpty(tags, type.extensions, kUTTagClassFilenameExtension);
    setUnlessEmpty(tags, type.mimeTypes, kUTTagClassMIMEType);
    setUnlessEmpty(tags, type.typeCodes, kUTTagClassOSType);
    return tags;
}

} // namespace

bool UTTypeEqual(CFStringRef const& type, CFStringRef const& otherType) {
    return type != nil && otherType != nil && asciiLowercase(bytesOf(type)) == asciiLowercase(bytesOf(otherType));
}

bool UTTypeConformsTo(CFStringRef const& type, CFStringRef const& conformsToType) {
    return type != nil && conformsToType != nil && conforms(*knownTypes(), bytesOf(type), bytesOf(conformsToType));
}

NSDictionary UTTypeCopyDeclaration(CFStringRef const& type) {
    std::shared_ptr<TypeTree const> const types = knownTypes();
    DeclaredType const* const declared = type == nil ? nullptr : types->typeOf(bytesOf(type));
    if (!declared) return nil;
    NSMutableDictionary const declaration = NSMutableDictionary::dictionary();
    declaration.setObject_forKey_(typeText(declared->identifier), kUTTypeIdentifierKey);
    if (!declared->description.empty())
        declaration.setObject_forKey_(typeText(declared->description), kUTTypeDescriptionKey);
    setUnlessEmpty(declaration, declared->conformsTo, kUTTypeConformsToKey);
    NSDictionary const tags = tagSpecificationOf(*declared);
    if (tags.count() > 0) declaration.setObject_forKey_(tags, kUTTypeTagSpecificationKey);
    return declaration;
}

CFStringRef UTTypeCopyDescription(CFStringRef const& type) {
    return as<NSString>(UTTypeCopyDeclaration(type).objectForKey_(kUTTypeDescriptionKey));
}

CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef const& tagClass, CFStringRef const& tag,
                                                  CFStringRef const& conformingToType) {
    std::optional<TagClass> const wanted = classOfTags(tagClass);
    if (!wanted || tag.length() == 0) return nil;
    std::shared_ptr<TypeTree const> const types = knownTypes();
    std::string const kind = bytesOf(conformingToType);
    for (DeclaredType const* const type : types->typesWithTag(*wanted, bytesOf(tag))) {
        if (kind.empty() || conforms(*types, type->identifier, kind)) return typeText(type->identifier);
    }
    return typeText(dynamicIdentifier({.tagClass = *wanted, .tag = bytesOf(tag), .conformsTo = kind}));
}

CFStringRef UTTypeCopyPreferredTagWithClass(CFStringRef const& type, CFStringRef const& tagClass) {
    std::optional<TagClass> const wanted = classOfTags(tagClass);
    if (!wanted || type == nil) return nil;
    std::shared_ptr<TypeTree const> const types = knownTypes();
    if (DeclaredType const* const declared = types->typeOf(bytesOf(type))) {
        std::vector<std::string> const& tags = tagsOf(*declared, *wanted);
        return tags.empty() ? NSString(nil) : typeText(tags.front());
    }
    std::optional<DynamicType> const dynamic = readDynamicIdentifier(bytesOf(type));
    return dynamic && dynamic->tagClass == *wanted ? typeText(dynamic->tag) : NSString(nil);
}

} // namespace mac
