#include "platform/icons/IconRefs.h"
#include "platform/files/CatalogFields.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/ItemReferences.h"
#include "platform/icons/IconFamily.h"
#include "platform/icons/ResourceFork.h"
#include <atomic>
#include <memory>
#include <vector>

namespace mac {

struct OpaqueIconRef {
    std::atomic<std::uint16_t> owners{1};
    // Contents as of a file of type 'icns'; empty for the icon of a type.
    std::vector<std::byte> family{};
};

namespace {

constexpr OSType IconFamilyType{"icns"};
constexpr std::int16_t CustomIconNumber = -16455;
constexpr char FolderIconFile[] = "/Icon\r";
constexpr std::ptrdiff_t LargestFork = std::ptrdiff_t{64} << 20;
constexpr std::uint32_t Start = 0;

std::vector<std::byte> resourceForkAt(std::string const& path) {
    std::ptrdiff_t const size = getxattr(path.c_str(), XATTR_RESOURCEFORK_NAME, nullptr, 0, Start, XATTR_NOFOLLOW);
    if (size <= 0 || size > LargestFork) return {};
    std::vector<std::byte> fork(static_cast<std::size_t>(size));
    std::ptrdiff_t const read =
        getxattr(path.c_str(), XATTR_RESOURCEFORK_NAME, fork.data(), fork.size(), Start, XATTR_NOFOLLOW);
    return read == size ? fork : std::vector<std::byte>();
}

// Empty where the item has none that can be read.
std::vector<std::byte> customIconOf(FSRef const& ref, bool isFolder) {
    std::optional<OpenItem> const item = openItemOfReference(ref);
    if (!item) return {};
    std::vector<std::byte> const fork =
        resourceForkAt(isFolder ? item->systemPath() + FolderIconFile : attributePath(*item));
    std::optional<std::span<std::byte const>> const icon = resourceInFork(fork, IconFamilyType, CustomIconNumber);
    if (!icon || !readIconFamily(*icon)) return {};
    return {icon->begin(), icon->end()};
}

} // namespace

OSErr GetIconRefFromFileInfo(FSRef const* ref, std::uint32_t /*fileNameLength*/, unichar const* /*fileName*/,
                             FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo,
                             IconServicesUsageFlags /*usageFlags*/, IconRef* iconRef, std::int16_t* label) {
    bool const isWhole = (whichInfo & kIconServicesCatalogInfoMask) == kIconServicesCatalogInfoMask;
    if (!ref || !catalogInfo || !isWhole) return paramErr;
    if (!itemOfReference(*ref)) return errFSBadFSRef;
    FinderInformation const finder = finderInformationOf(*catalogInfo);
    if (iconRef) {
        auto icon = std::make_unique<OpaqueIconRef>();
        bool const isFolder = (catalogInfo->nodeFlags & kFSNodeIsDirectoryMask) != 0;
        if ((finder.finderFlags() & kHasCustomIcon) != 0) icon->family = customIconOf(*ref, isFolder);
        *iconRef = icon.release();
    }
    if (label) *label = finder.labelIndex();
    return noErr;
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
    return iconRef && !iconRef->family.empty() ? readIconFamily(iconRef->family) : std::nullopt;
}

} // namespace mac
