#include "platform/launchservices/DiskItem.h"
#include "platform/files/references/ItemReferences.h"
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

} // namespace mac
