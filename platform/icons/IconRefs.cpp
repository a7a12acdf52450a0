#include "platform/icons/IconRefs.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/icons/IconFamilies.h"
#include "platform/icons/IconFamily.h"
#include "platform/icons/IconSource.h"
#include "platform/icons/ResourceFork.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/ItemAttributes.h"
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace mac {

struct OpaqueIconRef {
    std::atomic<std::uint16_t> owners{1};
    // Its family is empty for the icon of a type.
    IconSource source{};
    std::mutex lock{};
    // Empty until they are asked for.
    std::vector<SharedPicture> pictures{};
};

namespace {

constexpr OSType IconFamilyType{"icns"};
constexpr std::int16_t CustomIconNumber = -16455;
constexpr char FolderIconFile[] = "/Icon\r";
constexpr std::size_t LargestFork = std::size_t{64} << 20;

// Empty if the item has no resource fork, or one too large to be read.
std::vector<std::byte> resourceForkOf(OpenItem const& item) {
    AttributeName const name(XATTR_RESOURCEFORK_NAME);
    if (sizeOfAttribute(item, name).valueOr(0) > LargestFork) return {};
    return readAttribute(item, name).valueOr({});
}

// A folder's custom icon lies in a file in it.
std::vector<std::byte> forkWithIcon(OpenItem const& item, bool isFolder) {
    if (!isFolder) return resourceForkOf(item);
    Result<OpenItem> const file = openItemAtPath(item.systemPath() + FolderIconFile, LinkAtEnd::IsNotFollowed);
    return file.hasValue() ? resourceForkOf(file.value()) : std::vector<std::byte>();
}

// Empty if the item has no custom icon that can be read.
std::vector<std::byte> customIconOf(OpenItem const& item, bool isFolder) {
    std::vector<std::byte> const fork = forkWithIcon(item, isFolder);
    std::optional<std::span<std::byte const>> const icon = resourceInFork(fork, IconFamilyType, CustomIconNumber);
    if (!icon || !readIconFamily(*icon)) return {};
    return {icon->begin(), icon->end()};
}

// The source of an item without custom icon.
IconSource sourceByItem(OpenItem const& item) {
    // The place of the item that the descriptor leads to.
    Result<DiskItem> const found = diskItemAtPath(resolvedPath(item.systemPath()));
    return found.hasValue() ? iconSourceOf(found.value()) : IconSource();
}

} // namespace

OSErr GetIconRef(std::int16_t /*volume*/, OSType creator, OSType type, IconRef* iconRef) {
    if (!iconRef) return paramErr;
    std::optional<IconSource> source = iconSourceOfCodes(creator, type);
    if (!source) return noSuchIconErr;
    auto icon = std::make_unique<OpaqueIconRef>();
    icon->source = std::move(*source);
    *iconRef = icon.release();
    return noErr;
}

OSErr GetIconRefFromIconFamilyPtr(void const* iconFamily, std::size_t size, IconRef* iconRef) {
    if (!iconFamily || !iconRef) return paramErr;
    std::span<std::byte const> const bytes(static_cast<std::byte const*>(iconFamily), size);
    if (!readIconFamily(bytes)) return invalidIconFamilyErr;
    auto icon = std::make_unique<OpaqueIconRef>();
    icon->source.family.assign(bytes.begin(), bytes.end());
    *iconRef = icon.release();
    return noErr;
}

OSErr GetIconRefFromFileInfo(FSRef const* ref, std::uint32_t /*fileNameLength*/, unichar const* /*fileName*/,
                             FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo,
                             IconServicesUsageFlags /*usageFlags*/, IconRef* iconRef, std::int16_t* label) {
    bool const isWhole = (whichInfo & kIconServicesCatalogInfoMask) == kIconServicesCatalogInfoMask;
    if (!ref || !catalogInfo || !isWhole) return paramErr;
    Result<OpenItem> const item = openItemOfReference(*ref);
    if (!item.hasValue()) return errFSBadFSRef;
    if (iconRef) *iconRef = iconOfItem(item.value(), *catalogInfo);
    if (label) *label = finderInformationOf(*catalogInfo).labelIndex();
    return noErr;
}

IconRef iconOfItem(OpenItem const& item, FSCatalogInfo const& catalogInfo) {
    auto icon = std::make_unique<OpaqueIconRef>();
    bool const isFolder = (catalogInfo.nodeFlags & kFSNodeIsDirectoryMask) != 0;
    bool const hasCustomIcon = (finderInformationOf(catalogInfo).finderFlags() & kHasCustomIcon) != 0;
    if (hasCustomIcon) icon->source.family = customIconOf(item, isFolder);
    if (icon->source.family.empty()) icon->source = sourceByItem(item);
    return icon.release();
}

OSErr AcquireIconRef(IconRef iconRef) {
    if (!iconRef) return invalidIconRefErr;
    ++iconRef->owners;
    return noErr;
}

OSErr ReleaseIconRef(IconRef iconRef) {
    if (!iconRef) return invalidIconRefErr;
    if (--iconRef->owners == 0) std::default_delete<OpaqueIconRef>()(iconRef);
    return noErr;
}

OSErr GetIconRefOwners(IconRef iconRef, std::uint16_t* owners) {
    if (!iconRef) return invalidIconRefErr;
    if (!owners) return paramErr;
    *owners = iconRef->owners;
    return noErr;
}

std::optional<std::vector<IconPart>> partsOfIcon(IconRef iconRef) {
    return iconRef && !iconRef->source.family.empty() ? readIconFamily(iconRef->source.family) : std::nullopt;
}

std::vector<SharedPicture> picturesOfIcon(IconRef iconRef) {
    if (!iconRef) return {};
    std::scoped_lock const lock(iconRef->lock);
    if (iconRef->pictures.empty()) iconRef->pictures = picturesOfSource(iconRef->source);
    return iconRef->pictures;
}

std::vector<std::byte> customIconAtPath(std::string const& path, bool isFolder) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    return item.hasValue() ? customIconOf(item.value(), isFolder) : std::vector<std::byte>();
}

} // namespace mac
