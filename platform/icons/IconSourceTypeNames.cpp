#include "platform/desktop/entries/MIMETypes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/icons/IconSource.h"
#include "platform/launchservices/TypeTree.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

using Generic = IconSource::Generic;

// Pictures for kinds of types, a special case before the general one.
struct KindIcon {
    std::string_view identifier;
    std::string_view name;
    Generic generic{Generic::Document};
};
constexpr std::array KindIcons{
    KindIcon{"com.apple.application", "application-x-executable", Generic::Application},
    KindIcon{"com.apple.package", "package-x-generic"},
    KindIcon{"public.volume", "drive-harddisk", Generic::Folder},
    KindIcon{"public.directory", "folder", Generic::Folder},
    KindIcon{"public.image", "image-x-generic"},
    KindIcon{"public.movie", "video-x-generic"},
    KindIcon{"public.audio", "audio-x-generic"},
    KindIcon{"public.archive", "package-x-generic"},
    KindIcon{"public.font", "font-x-generic"},
    KindIcon{"public.script", "text-x-script"},
    KindIcon{"public.html", "text-html"},
    KindIcon{"public.text", "text-x-generic"},
};

// Under which codes the system's creator has its icons.
struct SystemIcon {
    OSType code;
    std::string_view name;
    Generic generic{Generic::Document};
};
constexpr std::array SystemIcons{
    SystemIcon{OSType("docu"), "text-x-generic"},
    SystemIcon{OSType("fldr"), "folder", Generic::Folder},
    SystemIcon{OSType("ofld"), "folder-open", Generic::Folder},
    SystemIcon{OSType("APPL"), "application-x-executable", Generic::Application},
    SystemIcon{OSType("FNDR"), "system-file-manager", Generic::Application},
    SystemIcon{OSType("hdsk"), "drive-harddisk"},
    SystemIcon{OSType("cddr"), "media-optical"},
    SystemIcon{OSType("flpy"), "media-floppy"},
    SystemIcon{OSType("srvr"), "network-server"},
    SystemIcon{OSType("gnet"), "network-workgroup"},
    SystemIcon{OSType("trsh"), "user-trash"},
    SystemIcon{OSType("ftrh"), "user-trash-full"},
    SystemIcon{OSType("desk"), "user-desktop", Generic::Folder},
    SystemIcon{OSType("root"), "computer"},
    SystemIcon{OSType("ffil"), "font-x-generic"},
    SystemIcon{OSType("help"), "help-browser"},
    SystemIcon{OSType("caut"), "dialog-warning"},
    SystemIcon{OSType("note"), "dialog-information"},
    SystemIcon{OSType("stop"), "dialog-error"},
};

IconSource sourceOfDeclaredType(TypeTree const& types, DeclaredType const& type) {
    IconSource source;
    for (std::string const& mimeType : type.mimeTypes) {
        for (std::string& name : iconNamesOfMIMEType(mimeType))
            source.names.push_back(std::move(name));
    }
    auto const kind = std::ranges::find_if(
        KindIcons, [&](KindIcon const& icon) { return conforms(types, type.identifier, icon.identifier); });
    if (kind == KindIcons.end()) return source;
    source.generic = kind->generic;
    // A folder's own MIME type is drawn as something else than the folders of people.
    bool const comesFirst = kind->generic != Generic::Document;
    source.names.emplace(comesFirst ? source.names.begin() : source.names.end(), kind->name);
    return source;
}

} // namespace

std::vector<std::string> iconNamesOfContents(std::string const& mimeType) {
    std::vector<std::string> names = iconNamesOfMIMEType(mimeType);
    names.emplace_back("unknown");
    names.emplace_back("text-x-generic");
    return names;
}

std::optional<IconSource> iconSourceOfExtension(std::string const& extension) {
    std::shared_ptr<TypeTree const> const types = knownTypes();
    for (DeclaredType const* const type : types->typesWithTag(TagClass::Extension, extension)) {
        IconSource source = sourceOfDeclaredType(*types, *type);
        if (!source.names.empty()) return source;
    }
    std::vector<std::string> const mimeTypes = mimeTypesOfName("name." + extension);
    if (mimeTypes.empty()) return std::nullopt;
    return IconSource{.names = iconNamesOfContents(mimeTypes.front())};
}

std::optional<IconSource> iconSourceOfTypeCode(OSType code) {
    std::shared_ptr<TypeTree const> const types = knownTypes();
    std::vector<DeclaredType const*> const candidates =
        types->typesWithTag(TagClass::TypeCode, utf8FromUnits(textOfCode(code)));
    // Types of other kinds share the code of plain text, and one of those is what a file with it holds.
    auto const plain = std::ranges::find_if(
        candidates, [&](DeclaredType const* type) { return conforms(*types, type->identifier, "public.plain-text"); });
    IconSource const text = plain == candidates.end() ? IconSource() : sourceOfDeclaredType(*types, **plain);
    if (!text.names.empty()) return text;
    for (DeclaredType const* const type : candidates) {
        IconSource source = sourceOfDeclaredType(*types, *type);
        if (!source.names.empty()) return source;
    }
    return std::nullopt;
}

std::optional<IconSource> iconSourceOfSystemIcon(OSType code) {
    auto const icon = std::ranges::find(SystemIcons, code, &SystemIcon::code);
    if (icon == SystemIcons.end()) return std::nullopt;
    return IconSource{.names = {std::string(icon->name)}, .generic = icon->generic};
}

} // namespace mac
