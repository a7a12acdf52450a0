#include "platform/launchservices/DiskItem.h"
#include "platform/desktop/entries/MIMETypes.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/ASCII.h"
#include "platform/system/FolderContents.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <span>
#include <sys/stat.h>

namespace mac {

namespace {

// Sorted. A framework is a folder that people look into.
constexpr std::array<std::string_view, 28> PackageExtensions{
    "app",        "bundle",       "component", "dictionary",  "docset",   "kext",      "key",
    "mdimporter", "mpkg",         "nib",       "numbers",     "osax",     "pages",     "photoslibrary",
    "pkg",        "plugin",       "prefpane",  "qlgenerator", "rtfd",     "saver",     "scptd",
    "service",    "sparsebundle", "wdgt",      "webplugin",   "workflow", "xcodeproj", "xpc",
};
static_assert(std::ranges::is_sorted(PackageExtensions));

DiskItem::Kind kindOf(unsigned mode) {
    if (S_ISREG(mode)) return DiskItem::Kind::File;
    if (S_ISDIR(mode)) return DiskItem::Kind::Folder;
    return S_ISLNK(mode) ? DiskItem::Kind::Link : DiskItem::Kind::Other;
}

Result<DiskItem> describe(OpenItem const& item, std::string path) {
    struct statx status {};
    unsigned const wanted = STATX_TYPE | STATX_MODE;
    if (::statx(item.item.number(), "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, wanted, &status) != 0)
        return lastSystemError("stat", std::move(path));
    DiskItem result{.path = std::move(path), .name = item.name, .kind = kindOf(status.stx_mode)};
    result.isVolume = result.kind == DiskItem::Kind::Folder && (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    result.mayRun = (status.stx_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0;
    // Finder information that cannot be read counts as missing; the item itself exists.
    result.finder = readFinderInformation(item).valueOr(FinderInformation());
    return result;
}

} // namespace

bool isPackageExtension(std::string_view extension) {
    return std::ranges::binary_search(PackageExtensions, asciiLowercase(extension));
}

std::string_view DiskItem::extension() const {
    std::string_view const whole(name);
    std::size_t const dot = whole.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : whole.substr(dot + 1);
}

std::string_view DiskItem::stem() const {
    std::string_view const whole(name);
    std::size_t const dot = whole.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? whole : whole.substr(0, dot);
}

bool DiskItem::isPackage() const {
    return kind == Kind::Folder && !isVolume &&
           (isPackageExtension(extension()) || (finder.finderFlags() & kHasBundle) != 0);
}

bool DiskItem::isApplicationBundle() const { return isPackage() && asciiLowercase(extension()) == "app"; }

bool DiskItem::isInvisible() const { return name.starts_with('.') || (finder.finderFlags() & kIsInvisible) != 0; }

Result<DiskItem> diskItemAtPath(std::string const& path) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return item.problem();
    return describe(item.value(), path);
}

Result<DiskItem> diskItemOf(FSRef const& reference) {
    Result<OpenItem> const item = openItemOfReference(reference);
    if (!item.hasValue()) return item.problem();
    Result<ReferencedItem> place = itemOfReference(reference);
    if (!place.hasValue()) return place.problem();
    return describe(item.value(), std::move(place.value().path));
}

Result<DiskItem> diskItemOf(NSURL const& url) {
    std::optional<std::string> const path = url.isFileURL() ? url.path().fileSystemRepresentation() : std::nullopt;
    if (!path) return SystemError{.code = EINVAL, .operation = "open"};
    return diskItemAtPath(*path);
}

namespace {

std::string const* identifierOfTag(TypeTree const& types, TagClass tagClass, std::string_view tag,
                                   std::string_view kind) {
    if (tag.empty()) return nullptr;
    for (DeclaredType const* const type : types.typesWithTag(tagClass, tag)) {
        if (conforms(types, type->identifier, kind)) return &type->identifier;
    }
    return nullptr;
}

// The first type of the extension that is no kind of folder. Some declare no kind at all.
std::string const* identifierOfExtensionOfFiles(TypeTree const& types, std::string_view extension) {
    if (extension.empty()) return nullptr;
    for (DeclaredType const* const type : types.typesWithTag(TagClass::Extension, extension)) {
        if (!conforms(types, type->identifier, "public.directory")) return &type->identifier;
    }
    return nullptr;
}

std::string contentTypeOfFolder(TypeTree const& types, DiskItem const& item) {
    if (item.isVolume) return "public.volume";
    if (std::string const* const type =
            identifierOfTag(types, TagClass::Extension, item.extension(), "public.directory"))
        return *type;
    return item.isPackage() ? "com.apple.package" : "public.folder";
}

// The type code as declarations spell it; empty if the item has none.
std::string typeCodeOf(DiskItem const& item) {
    OSType const code = item.finder.fileType();
    return code == OSType() ? std::string() : utf8FromUnits(textOfCode(code));
}

// Kinds whose contents are told apart by their first bytes alone. Within the others, sounds, movies and text, one
// container or syntax serves several types, and the name tells more.
constexpr std::array<std::string_view, 2> KindsToldByBytes{"public.image", "public.archive"};
constexpr std::array<std::string_view, 3> KindsToldByName{"public.audiovisual-content", "public.text", "public.font"};

bool haveInCommon(TypeTree const& types, std::string_view one, std::string_view other,
                  std::span<std::string_view const> kinds) {
    return std::ranges::any_of(
        kinds, [&](std::string_view kind) { return conforms(types, one, kind) && conforms(types, other, kind); });
}

bool areRelated(std::string const& one, std::string const& other) {
    auto const isAncestor = [](std::string const& type, std::string const& ancestor) {
        std::vector<std::string> const line = mimeTypeAndAncestors(type);
        return std::ranges::find(line, ancestor) != line.end();
    };
    return isAncestor(one, other) || isAncestor(other, one);
}

// Whether bytes of the proved type may not stand in a file that the extension gives the named one: the shared MIME
// information takes the extension for the same type, and it and the declarations take the two types for different ones.
bool provesLie(TypeTree const& types, DiskItem const& item, std::string const& proved, std::string const& named) {
    std::vector<std::string> const byName = mimeTypesOfName(item.name);
    bool const isSure = byName.size() == 1 && identifierOfMIMEType(types, byName.front()) == named;
    if (!isSure || areRelated(byName.front(), proved)) return false;
    std::string const identifier = identifierOfMIMEType(types, proved);
    if (!types.typeOf(identifier) || conforms(types, identifier, named) || conforms(types, named, identifier))
        return false;
    if (haveInCommon(types, identifier, named, KindsToldByBytes)) return true;
    return !haveInCommon(types, identifier, named, KindsToldByName);
}

// "a.tar.gz" is more than its last extension says, if the shared MIME information and the declarations agree.
std::optional<std::string> typeByLongExtension(TypeTree const& types, DiskItem const& item, std::string const& named) {
    if (item.stem().find('.') == std::string_view::npos) return std::nullopt;
    std::vector<std::string> const byName = mimeTypesOfName(item.name);
    if (byName.size() != 1) return std::nullopt;
    std::string identifier = identifierOfMIMEType(types, byName.front());
    if (!types.typeOf(identifier) || !conforms(types, identifier, named)) return std::nullopt;
    return identifier;
}

// The extension's type, unless the item's first bytes prove that it lies. What a bundle declares is believed.
std::string typeByExtension(TypeTree const& types, DiskItem const& item, std::string const& named) {
    if (types.typeOf(named)->isOfBundle) return named;
    if (std::optional<std::string> const special = typeByLongExtension(types, item, named)) return *special;
    std::string const proved = mimeTypeProvedByItem(item.path, LinkAtEnd::IsNotFollowed);
    return !proved.empty() && provesLie(types, item, proved, named) ? identifierOfMIMEType(types, proved) : named;
}

std::string contentTypeOfFile(TypeTree const& types, DiskItem const& item) {
    if ((item.finder.finderFlags() & kIsAlias) != 0) return "com.apple.alias-file";
    if (std::string const* const type = identifierOfExtensionOfFiles(types, item.extension()))
        return typeByExtension(types, item, *type);
    std::vector<std::string> const byName = mimeTypesOfName(item.name);
    if (byName.size() == 1) return identifierOfMIMEType(types, byName.front());
    if (byName.empty()) {
        if (std::string const* const type = identifierOfTag(types, TagClass::TypeCode, typeCodeOf(item), "public.data"))
            return *type;
    }
    return identifierOfMIMEType(types, mimeTypeOfItem(item.path, LinkAtEnd::IsNotFollowed));
}

} // namespace

std::string contentTypeOf(DiskItem const& item) {
    std::shared_ptr<TypeTree const> const types = knownTypes();
    switch (item.kind) {
    case DiskItem::Kind::Folder:
        return contentTypeOfFolder(*types, item);
    case DiskItem::Kind::Link:
        return "public.symlink";
    case DiskItem::Kind::File:
        return contentTypeOfFile(*types, item);
    case DiskItem::Kind::Other:
        break;
    }
    return "public.item";
}

} // namespace mac
