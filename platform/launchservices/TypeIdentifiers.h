#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/ServiceTypes.h"

namespace mac {

// Uniform type identifiers: what kinds of contents there are, how one is a special case of others, and by which tags
// (extensions, MIME types, old type codes) files say theirs. Identifiers are equal in any case of letters. Declared are
// the system's own and those in the information files of applications that were registered or looked for
// (Applications.h). A tag that no declared type has gets a dynamic identifier, which holds the tag itself and so means
// the same everywhere. Nil answers nil and NO. Any thread.
//
// Linux: what kind a MIME type is of comes from the shared MIME information, also for dynamic identifiers.

inline constexpr char kUTTypeIdentifierKey[] = "UTTypeIdentifier";
inline constexpr char kUTTypeDescriptionKey[] = "UTTypeDescription";
inline constexpr char kUTTypeConformsToKey[] = "UTTypeConformsTo";
inline constexpr char kUTTypeTagSpecificationKey[] = "UTTypeTagSpecification";
inline constexpr char kUTExportedTypeDeclarationsKey[] = "UTExportedTypeDeclarations";
inline constexpr char kUTImportedTypeDeclarationsKey[] = "UTImportedTypeDeclarations";

// Classes of tags. Extensions and MIME types are equal in any case of letters, type codes exactly.
inline constexpr char kUTTagClassFilenameExtension[] = "public.filename-extension";
inline constexpr char kUTTagClassMIMEType[] = "public.mime-type";
inline constexpr char kUTTagClassOSType[] = "com.apple.ostype";

// Whether both are the same identifier, in any case of letters.
bool UTTypeEqual(CFStringRef const& type, CFStringRef const& otherType);
// Whether the type conforms to the other, also if both are equal. An unknown type conforms only to itself.
bool UTTypeConformsTo(CFStringRef const& type, CFStringRef const& conformsToType);
// What was declared, under the keys above; a tag class has one tag as a string, or several in an array, the preferred
// one first. Nil for what is not declared, dynamic types included.
NSDictionary UTTypeCopyDeclaration(CFStringRef const& type);
// The declared description of the type; nil if none is declared.
CFStringRef UTTypeCopyDescription(CFStringRef const& type);
// The first declared type of the tag, a dynamic one if no type declares it. Of several the first that conforms to the
// given type, which may be nil; a dynamic one conforms to it.
CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef const& tagClass, CFStringRef const& tag,
                                                  CFStringRef const& conformingToType);
// The type's preferred tag of the class, or for a dynamic type the tag that it was made from; nil if it has none.
CFStringRef UTTypeCopyPreferredTagWithClass(CFStringRef const& type, CFStringRef const& tagClass);

} // namespace mac
