#include "platform/applescript/applications/FinderItem.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/system/BytePath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <array>
#include <sys/statvfs.h>

// The classes of the Finder's items, and what only some of them have.

namespace mac::applescript {

namespace {

std::optional<MountedVolume> volumeOf(FinderItem const& disk) {
    std::vector<MountedVolume> const volumes = mountedVolumes();
    auto const found = std::ranges::find(volumes, disk.path(), &MountedVolume::mountPoint);
    return found == volumes.end() ? std::nullopt : std::optional(*found);
}

template <auto Blocks>
Value space(FinderItem const& disk) {
    struct statvfs found {};
    if (::statvfs(disk.path().c_str(), &found) != 0) return Value::missing();
    return Value::number(static_cast<double>(std::uint64_t{found.*Blocks} * found.f_frsize));
}

using DiskSpace = struct statvfs;

Value isEjectable(FinderItem const& disk) {
    std::optional<MountedVolume> const volume = volumeOf(disk);
    return Value::boolean(volume && driveOf(*volume).isEjectable);
}

Value isLocalVolume(FinderItem const& disk) {
    std::optional<MountedVolume> const volume = volumeOf(disk);
    return Value::boolean(volume && volume->isLocal);
}

Value isStartupDisk(FinderItem const& disk) { return Value::boolean(disk.path() == "/"); }

Value format(FinderItem const& disk) {
    std::optional<MountedVolume> const volume = volumeOf(disk);
    return volume ? Value::text(unitsFromFileSystemBytes(volume->fileSystem)) : Value::missing();
}

Value fileType(FinderItem const& file) { return fileTypeOf(file.open(), false).value_or(Value::missing()); }
Value creatorType(FinderItem const& file) { return fileTypeOf(file.open(), true).value_or(Value::missing()); }

Value ofInformation(FinderItem const& application, char const* key) {
    NSString const found =
        as<NSString>(bundleInformation(application.path()).objectForKey_(NSString::stringWithUTF8String_(key)));
    return found == nil ? Value::missing() : Value::text(std::u16string(found.codeUnits()));
}

Value applicationIdentifier(FinderItem const& application) { return ofInformation(application, "CFBundleIdentifier"); }
Value applicationVersion(FinderItem const& application) {
    return ofInformation(application, "CFBundleShortVersionString");
}

Value originalItem(FinderItem const& alias) {
    OpenItem const item = alias.open();
    Result<std::string> const target = linkText(item.item);
    if (!target.hasValue()) throw fileError(target.problem(), alias.specifier());
    bool const isAbsolute = target.value().starts_with('/');
    std::shared_ptr<FinderItem> const original =
        FinderItem::atPath(isAbsolute ? target.value() : BytePath(parentOf(alias.path())).joined(target.value()));
    if (original) return original->specifier();
    throw cannotGet(propertySpecifier(termSymbol(codes::OriginalItem, u"original item"), alias.specifier()));
}

constexpr auto DiskProperties = std::to_array<PropertyRow>({
    {u"capacity", codes::Capacity, codes::NumberType, reading<&space<&DiskSpace::f_blocks>>},
    {u"free space", codes::FreeSpace, codes::NumberType, reading<&space<&DiskSpace::f_bavail>>},
    {u"ejectable", codes::Ejectable, codes::BooleanType, reading<&isEjectable>},
    {u"local volume", codes::LocalVolume, codes::BooleanType, reading<&isLocalVolume>},
    {u"startup", codes::Startup, codes::BooleanType, reading<&isStartupDisk>},
    {u"format", codes::Format, codes::TextType, reading<&format>},
});
constexpr auto DocumentProperties = std::to_array<PropertyRow>({
    {u"file type", codes::FileType, codes::ClassType, reading<&fileType>},
    {u"creator type", codes::Creator, codes::ClassType, reading<&creatorType>},
});
constexpr auto ApplicationProperties = std::to_array<PropertyRow>({
    {u"id", codes::Identifier, codes::TextType, reading<&applicationIdentifier>},
    {u"version", codes::Version, codes::TextType, reading<&applicationVersion>},
});
constexpr auto AliasProperties = std::to_array<PropertyRow>({
    {u"original item", codes::OriginalItem, codes::ReferenceType, reading<&originalItem>},
});

constexpr ClassRow ContainerRow{
    .name = u"container", .plural = u"containers", .code = codes::Container, .parent = &FinderItemRow};
constexpr ClassRow FolderRow{.name = u"folder", .plural = u"folders", .code = codes::Folder, .parent = &ContainerRow};
constexpr ClassRow DiskRow{
    .name = u"disk", .plural = u"disks", .code = codes::Disk, .parent = &ContainerRow, .properties = DiskProperties};
constexpr ClassRow FileRow{.name = u"file", .plural = u"files", .code = codes::File, .parent = &FinderItemRow};
constexpr ClassRow DocumentRow{.name = u"document file",
                               .plural = u"document files",
                               .code = codes::DocumentFile,
                               .parent = &FileRow,
                               .properties = DocumentProperties};
constexpr ClassRow ApplicationRow{.name = u"application file",
                                  .plural = u"application files",
                                  .code = codes::ApplicationFile,
                                  .parent = &FileRow,
                                  .properties = ApplicationProperties};
constexpr ClassRow AliasRow{.name = u"alias file",
                            .plural = u"alias files",
                            .code = codes::AliasFile,
                            .parent = &FileRow,
                            .properties = AliasProperties};
constexpr ClassRow PackageRow{.name = u"package", .plural = u"packages", .code = codes::Package, .parent = &FileRow};

constexpr auto ItemKinds =
    std::to_array<ClassRow const*>({&FinderItemRow, &ContainerRow, &FolderRow, &DiskRow, &FileRow, &DocumentRow,
                                    &ApplicationRow, &AliasRow, &PackageRow});

} // namespace

std::span<ClassRow const* const> finderItemKinds() { return ItemKinds; }

ClassRow const& finderClassOf(Code type) {
    auto const* const found = std::ranges::find_if(ItemKinds, [&](ClassRow const* row) { return row->code == type; });
    return found == ItemKinds.end() ? FinderItemRow : **found;
}

} // namespace mac::applescript
