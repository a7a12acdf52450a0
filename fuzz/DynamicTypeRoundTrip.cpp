#include "fuzz/Trials.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/ASCII.h"

namespace mac::fuzz {

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
