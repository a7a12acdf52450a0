#include "platform/launchservices/DiskItem.h"
#include "platform/files/CatalogFields.h"
#include "platform/files/ItemReferences.h"
#include "platform/system/ASCII.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
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

std::optional<DiskItem> describe(OpenItem const& item, std::string path) {
    struct statx status {};
    unsigned const wanted = STATX_TYPE | STATX_MODE;
    if (::statx(item.item.number(), "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, wanted, &status) != 0) return std::nullopt;
    DiskItem result{.path = std::move(path), .name = item.name, .kind = kindOf(status.stx_mode)};
    result.isVolume = result.kind == DiskItem::Kind::Folder && (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    result.mayRun = (status.stx_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0;
    // What cannot be read is as if it were not there: the item itself is.
    result.finder = readFinderInformation(attributePath(item)).value_or(FinderInformation());
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

std::optional<DiskItem> diskItemAtPath(std::string const& path) {
    std::optional<OpenItem> const item = openItemAtPath(path, false);
    return item ? describe(*item, path) : std::nullopt;
}

std::optional<DiskItem> diskItemOf(FSRef const& reference) {
    std::optional<OpenItem> const item = openItemOfReference(reference);
    std::optional<ReferencedItem> place = item ? itemOfReference(reference) : std::nullopt;
    return place ? describe(*item, std::move(place->path)) : std::nullopt;
}

std::optional<DiskItem> diskItemOf(NSURL const& url) {
    errno = 0;
    if (!url.isFileURL()) return std::nullopt;
    std::optional<std::string> const path = url.path().fileSystemRepresentation();
    return path ? diskItemAtPath(*path) : std::nullopt;
}

} // namespace mac
