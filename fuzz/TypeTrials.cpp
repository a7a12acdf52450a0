#include "fuzz/Trials.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/desktop/entries/MIMETypes.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <unordered_map>

namespace mac::fuzz {

namespace {

std::string complaintAboutMIMEType(std::string const& mimeType) {
    TypeTree const& types = *knownTypes();
    std::string const identifier = identifierOfMIMEType(types, mimeType);
    if (!conforms(types, identifier, identifier)) return "a type does not conform to itself";
    if (!conforms(types, identifier, "public.item") && !conforms(types, identifier, "public.content"))
        return "a type is neither an item nor contents";
    return "";
}

// The shared MIME information has a thousand types, and what is right of one stays right.
std::string complaintAboutFoundType(std::string const& mimeType) {
    static std::unordered_map<std::string, std::string> complaints;
    auto const [known, isNew] = complaints.try_emplace(mimeType);
    if (isNew) known->second = complaintAboutMIMEType(mimeType);
    return known->second;
}

std::string complaintAboutTypeOfTag(std::string_view text) {
    for (TagClass const tagClass : {TagClass::Extension, TagClass::MIMEType, TagClass::TypeCode}) {
        std::string const identifier = dynamicIdentifier({.tagClass = tagClass, .tag = std::string(text)});
        std::optional<DynamicType> const read = readDynamicIdentifier(identifier);
        // Identifiers that are too long are not read.
        if (read && (read->tagClass != tagClass || !read->conformsTo.empty())) return "a tag became something else";
    }
    std::optional<DynamicType> const read = readDynamicIdentifier(text);
    if (read &&
        !UTTypeEqual(NSString::stringWithUTF8String_(dynamicIdentifier(*read)), NSString::stringWithUTF8String_(text)))
        return "a dynamic type is written otherwise than it was read";
    return "";
}

} // namespace

std::string complaintAboutContentType(std::span<std::byte const> bytes) {
    std::string_view const text(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view const name = text.substr(0, end);
    std::vector<std::string> types = mimeTypesOfName(name);
    types.push_back(mimeTypeOfNameAndBytes(name, text.substr(std::min(end + 1, text.size()))));
    for (std::string const& type : types) {
        if (type.empty()) return "a file has no type";
        std::string const complaint = complaintAboutFoundType(type);
        if (!complaint.empty()) return complaint;
    }
    std::string const complaint = complaintAboutMIMEType(std::string(name));
    if (!complaint.empty()) return complaint;
    std::optional<std::string> const shown = DesktopEntry::read(text).localizedName({"de", std::string(name)});
    if (shown && shown->empty()) return "an entry has an empty name";
    return complaintAboutTypeOfTag(name);
}

std::string complaintAboutDynamicType(std::string_view bytes) {
    for (std::string const& identifier : {std::string(bytes), "dyn." + std::string(bytes)}) {
        std::optional<DynamicType> const type = readDynamicIdentifier(identifier);
        if (type && dynamicIdentifier(*type) != asciiLowercase(identifier)) return "an identifier comes back otherwise";
    }
    for (TagClass const tagClass : {TagClass::Extension, TagClass::MIMEType, TagClass::TypeCode}) {
        std::string const identifier = dynamicIdentifier({.tagClass = tagClass, .tag = std::string(bytes)});
        std::optional<DynamicType> const type = readDynamicIdentifier(identifier);
        if (!type) continue;
        if (type->tagClass != tagClass || !type->conformsTo.empty()) return "a tag is of another class";
        if (asciiLowercase(type->tag) != asciiLowercase(bytes)) return "a tag comes back otherwise";
    }
    return "";
}

} // namespace mac::fuzz
