#include "platform/launchservices/TypeTree.h"
#include "platform/desktop/entries/MIMETypes.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <mutex>
#include <set>

namespace mac {

namespace {

// More than any application declares; an information file may say what it likes.
constexpr std::size_t MostTypes = 4096;
constexpr NSUInteger MostWords = 256;

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    for (std::size_t begin = text.find_first_not_of(' '); begin < text.size();
         begin = text.find_first_not_of(' ', begin)) {
        std::size_t const end = std::min(text.find(' ', begin), text.size());
        words.emplace_back(text.substr(begin, end - begin));
        begin = end;
    }
    return words;
}

// A string, or the strings of an array.
std::vector<std::string> stringsOf(id const& value) {
    std::vector<std::string> strings;
    auto const add = [&](id const& object) {
        std::string text = as<NSString>(object).UTF8String();
        if (!text.empty() && strings.size() < MostWords) strings.push_back(std::move(text));
    };
    if (NSArray const array = as<NSArray>(value); array != nil) {
        for (id const& object : array)
            add(object);
    } else
        add(value);
    return strings;
}

// Codes of four characters each; the last ones may be blanks.
std::vector<std::string> codesOf(std::string_view text) {
    std::vector<std::string> codes = wordsOf(text);
    for (std::string& code : codes)
        code.resize(sizeof(OSType), ' ');
    return codes;
}

DeclaredType typeOfRow(SystemType const& row) {
    return {.identifier = std::string(row.identifier),
            .description = std::string(row.description),
            .conformsTo = wordsOf(row.conformsTo),
            .extensions = wordsOf(row.extensions),
            .mimeTypes = wordsOf(row.mimeTypes),
            .typeCodes = codesOf(row.typeCodes)};
}

std::vector<NSDictionary> declarationsIn(NSDictionary const& information) {
    std::vector<NSDictionary> declarations;
    for (NSString const& key : {NSString(kUTExportedTypeDeclarationsKey), NSString(kUTImportedTypeDeclarationsKey)}) {
        for (id const& declaration : as<NSArray>(information.objectForKey_(key)))
            declarations.push_back(as<NSDictionary>(declaration));
    }
    return declarations;
}

std::string identifierOf(NSDictionary const& declaration) {
    return as<NSString>(declaration.objectForKey_(kUTTypeIdentifierKey)).UTF8String();
}

DeclaredType typeOfDeclaration(NSDictionary const& declaration) {
    NSDictionary const tags = as<NSDictionary>(declaration.objectForKey_(kUTTypeTagSpecificationKey));
    return {.identifier = identifierOf(declaration),
            .description = as<NSString>(declaration.objectForKey_(kUTTypeDescriptionKey)).UTF8String(),
            .conformsTo = stringsOf(declaration.objectForKey_(kUTTypeConformsToKey)),
            .extensions = stringsOf(tags.objectForKey_(kUTTagClassFilenameExtension)),
            .mimeTypes = stringsOf(tags.objectForKey_(kUTTagClassMIMEType)),
            .typeCodes = stringsOf(tags.objectForKey_(kUTTagClassOSType)),
            .isOfBundle = true};
}

struct SharedTypes {
    std::mutex lock;
    std::shared_ptr<TypeTree const> types{std::make_shared<TypeTree>(TypeTree::ofSystem())};
};

// Never destroyed: types may be asked for until the program's last instruction.
SharedTypes& sharedTypes() {
    static SharedTypes& shared = *std::make_unique<SharedTypes>().release();
    return shared;
}

// What every type of a family is a special case of.
std::string_view familyOf(std::string_view mimeType) {
    if (mimeType.starts_with("text/")) return "public.text";
    if (mimeType.starts_with("image/")) return "public.image";
    if (mimeType.starts_with("audio/")) return "public.audio";
    if (mimeType.starts_with("video/")) return "public.movie";
    if (mimeType.starts_with("font/")) return "public.font";
    if (mimeType.starts_with("message/")) return "public.message";
    return mimeType.starts_with("inode/") ? "public.item" : "public.data";
}

std::vector<std::string> parentsOfDynamicType(TypeTree const& types, DynamicType const& type) {
    std::vector<std::string> parents;
    if (!type.conformsTo.empty()) parents.push_back(type.conformsTo);
    if (type.tagClass == TagClass::MIMEType) {
        for (std::string const& parent : parentsOfMIMEType(type.tag))
            parents.push_back(identifierOfMIMEType(types, parent));
        parents.emplace_back(familyOf(type.tag));
    } else if (parents.empty())
        parents.emplace_back("public.data");
    return parents;
}

std::vector<std::string> parentsOf(TypeTree const& types, std::string_view identifier) {
    if (DeclaredType const* const type = types.typeOf(identifier)) return type->conformsTo;
    std::optional<DynamicType> const dynamic = readDynamicIdentifier(identifier);
    return dynamic ? parentsOfDynamicType(types, *dynamic) : std::vector<std::string>();
}

} // namespace

TypeTree TypeTree::ofSystem() {
    TypeTree tree;
    for (SystemType const& row : systemTypes())
        tree.add(typeOfRow(row));
    return tree;
}

void TypeTree::add(DeclaredType type) {
    if (type.identifier.empty() || m_types.size() >= MostTypes) return;
    std::size_t const place = m_types.size();
    if (!m_byIdentifier.emplace(asciiLowercase(type.identifier), place).second) return;
    for (std::string const& tag : type.extensions)
        m_byExtension[asciiLowercase(tag)].push_back(place);
    for (std::string const& tag : type.mimeTypes)
        m_byMIMEType[asciiLowercase(tag)].push_back(place);
    for (std::string const& tag : type.typeCodes)
        m_byTypeCode[tag].push_back(place);
    m_types.push_back(std::move(type));
}

void TypeTree::addDeclarationsIn(NSDictionary const& information) {
    for (NSDictionary const& declaration : declarationsIn(information))
        add(typeOfDeclaration(declaration));
}

bool TypeTree::knowsDeclarationsIn(NSDictionary const& information) const {
    return std::ranges::all_of(declarationsIn(information), [this](NSDictionary const& declaration) {
        std::string const identifier = identifierOf(declaration);
        return identifier.empty() || typeOf(identifier);
    });
}

DeclaredType const* TypeTree::typeOf(std::string_view identifier) const {
    auto const found = m_byIdentifier.find(asciiLowercase(identifier));
    return found == m_byIdentifier.end() ? nullptr : &m_types[found->second];
}

std::vector<DeclaredType const*> TypeTree::typesWithTag(TagClass tagClass, std::string_view tag) const {
    bool const isCode = tagClass == TagClass::TypeCode;
    Places const& places = isCode ? m_byTypeCode : tagClass == TagClass::Extension ? m_byExtension : m_byMIMEType;
    auto const found = places.find(isCode ? std::string(tag) : asciiLowercase(tag));
    std::vector<DeclaredType const*> types;
    if (found == places.end()) return types;
    for (std::size_t const place : found->second)
        types.push_back(&m_types[place]);
    std::stable_partition(types.begin(), types.end(), [](DeclaredType const* type) { return type->isOfBundle; });
    return types;
}

std::shared_ptr<TypeTree const> knownTypes() {
    std::scoped_lock const lock(sharedTypes().lock);
    return sharedTypes().types;
}

void registerTypesIn(NSDictionary const& information) {
    std::scoped_lock const lock(sharedTypes().lock);
    if (sharedTypes().types->knowsDeclarationsIn(information)) return;
    TypeTree changed = *sharedTypes().types;
    changed.addDeclarationsIn(information);
    sharedTypes().types = std::make_shared<TypeTree>(std::move(changed));
}

std::vector<std::string> identifierAndAncestors(TypeTree const& types, std::string_view identifier) {
    std::vector<std::string> ancestors{std::string(identifier)};
    // Declarations may lead in a circle.
    std::set<std::string> seen{asciiLowercase(identifier)};
    for (std::size_t index = 0; index < ancestors.size(); ++index) {
        for (std::string& parent : parentsOf(types, ancestors[index])) {
            if (seen.insert(asciiLowercase(parent)).second) ancestors.push_back(std::move(parent));
        }
    }
    return ancestors;
}

bool conforms(TypeTree const& types, std::string_view identifier, std::string_view to) {
    std::string const wanted = asciiLowercase(to);
    return std::ranges::any_of(identifierAndAncestors(types, identifier),
                               [&wanted](std::string const& ancestor) { return asciiLowercase(ancestor) == wanted; });
}

std::string identifierOfMIMEType(TypeTree const& types, std::string_view mimeType) {
    std::string const name = asciiLowercase(mimeType);
    std::string const canonical = canonicalMIMEType(name);
    for (std::string const& known : {name, canonical}) {
        std::vector<DeclaredType const*> const declared = types.typesWithTag(TagClass::MIMEType, known);
        if (!declared.empty()) return declared.front()->identifier;
    }
    return dynamicIdentifier({.tagClass = TagClass::MIMEType, .tag = canonical});
}

} // namespace mac
