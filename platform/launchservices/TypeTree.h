#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// A declared type. For implementations, like all of this header.
struct DeclaredType {
    std::string identifier{};
    std::string description{};
    std::vector<std::string> conformsTo{};
    // The preferred one first.
    std::vector<std::string> extensions{};
    std::vector<std::string> mimeTypes{};
    std::vector<std::string> typeCodes{};
    // Declared by the information file of a bundle, not by the system.
    bool isOfBundle{false};
};

enum class TagClass { Extension, MIMEType, TypeCode };

// A set of declared types, which never changes once it is shared. Any thread.
class TypeTree {
public:
    // The system's own.
    static TypeTree ofSystem();

    // Adds a type; one of an identifier that is known already is ignored.
    void add(DeclaredType type);
    // From an information file: what is no declaration is passed over, the rest counts.
    void addDeclarationsIn(NSDictionary const& information);
    // Whether to add them would change nothing.
    bool knowsDeclarationsIn(NSDictionary const& information) const;

    DeclaredType const* typeOf(std::string_view identifier) const;
    // Those of bundles come before the system's own, each in the order in which they were added.
    std::vector<DeclaredType const*> typesWithTag(TagClass tagClass, std::string_view tag) const;

private:
    using Places = std::map<std::string, std::vector<std::size_t>, std::less<>>;

    std::vector<DeclaredType> m_types{};
    // By identifiers and tags as they are compared.
    std::map<std::string, std::size_t, std::less<>> m_byIdentifier{};
    Places m_byExtension{};
    Places m_byMIMEType{};
    Places m_byTypeCode{};
};

// The types known now.
std::shared_ptr<TypeTree const> knownTypes();
// Adds the types that an information file declares; types of known identifiers stay as they are.
void registerTypesIn(NSDictionary const& information);

// Which tag a dynamic identifier was made from, and what kind it was said to be.
struct DynamicType {
    TagClass tagClass{TagClass::Extension};
    std::string tag{};
    // Empty: nothing said.
    std::string conformsTo{};
};
std::string dynamicIdentifier(DynamicType const& type);
std::optional<DynamicType> readDynamicIdentifier(std::string_view identifier);

// Whether the one is the other or a special case of it.
bool conforms(TypeTree const& types, std::string_view identifier, std::string_view to);
// What the identifier conforms to, itself first, then the nearest; each once, in the case of letters of its
// declaration.
std::vector<std::string> identifierAndAncestors(TypeTree const& types, std::string_view identifier);
// The identifier of the type declared for a MIME type, else a dynamic one.
std::string identifierOfMIMEType(TypeTree const& types, std::string_view mimeType);

// A row of the system's own types, as types.tsv has it; words are parted by blanks. A tag of several types belongs to
// the first of them.
struct SystemType {
    std::string_view identifier;
    std::string_view conformsTo;
    std::string_view extensions;
    std::string_view mimeTypes;
    std::string_view typeCodes;
    std::string_view description;
};

std::span<SystemType const> systemTypes();

} // namespace mac
