#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/BytePath.h"
#include <array>

// Disks, folders and files as System Events tells of them.

namespace mac::applescript::system_events {

namespace {

class DiskItem final : public ModelObject {
public:
    explicit DiskItem(std::shared_ptr<FinderItem> item) : m_item(std::move(item)) {}

    ClassRow const& row() const override;
    Value specifier() const override {
        if (m_item->type() == codes::Disk)
            return elementSpecifier(Form::Name, codes::Disk, itself(), ofItem<codes::Name>());
        return elementSpecifier(Form::Name, type(), itself(), Value::text(hfsPath()));
    }

    // What the Finder says of the item.
    template <Code Property>
    Value ofItem() const {
        return m_item->property(Property).value_or(Value::missing());
    }
    template <Code Property>
    bool setOfItem(Value const& value, TextContext const& context) {
        return m_item->setProperty(Property, value, context);
    }

    Value posixPath() const { return Value::text(unitsFromFileSystemBytes(m_item->path())); }
    Value path() const { return Value::text(hfsPath()); }
    Value isVisible() const { return Value::boolean(!BytePath(m_item->path()).leaf().starts_with('.')); }
    std::optional<Value> container() const {
        ModelPointer const folder = m_item->path() == "/" ? nullptr : diskItemAt(parentOf(m_item->path()));
        return folder ? std::optional(folder->specifier()) : std::nullopt;
    }

    std::optional<std::vector<ModelPointer>> items(Code elementType) {
        if (!m_item->isFolder()) return {};
        std::vector<ModelPointer> all;
        for (ModelPointer const& inner : m_item->items(codes::Item).value_or(std::vector<ModelPointer>())) {
            ModelPointer const item = std::make_shared<DiskItem>(std::static_pointer_cast<FinderItem>(inner));
            if (item->isOfType(elementType)) all.push_back(item);
        }
        return all;
    }

    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        ModelPointer const inner = m_item->elementNamed(codes::Item, name);
        ModelPointer const item =
            inner ? std::make_shared<DiskItem>(std::static_pointer_cast<FinderItem>(inner)) : nullptr;
        return item && item->isOfType(elementType) ? item : nullptr;
    }

    std::optional<Value> coerced(Code wanted) override {
        if (isOfType(wanted)) return specifier();
        return wanted == codes::File ? std::nullopt : m_item->coerced(wanted);
    }

    std::shared_ptr<FinderItem> const& item() const { return m_item; }

private:
    std::u16string hfsPath() const {
        return hfsPathFromPOSIXPath(unitsFromFileSystemBytes(m_item->path()), m_item->isFolder());
    }

    std::shared_ptr<FinderItem> m_item;
};

template <Code Property>
constexpr RequiredFunction<PropertyReader> OfItem{reading<&DiskItem::ofItem<Property>>};

constexpr auto DiskItemProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, OfItem<codes::Name>, writing<&DiskItem::setOfItem<codes::Name>>},
    {u"POSIX path", codes::SystemPOSIXPath, codes::TextType, reading<&DiskItem::posixPath>},
    {u"", codes::POSIXPath, codes::TextType, reading<&DiskItem::posixPath>, nullptr, Unlisted},
    {u"path", codes::Path, codes::TextType, reading<&DiskItem::path>},
    {u"URL", codeOf("url "), codes::TextType, OfItem<codes::URL>},
    {u"displayed name", codes::DisplayedName, codes::TextType, OfItem<codes::DisplayedName>, nullptr, Unlisted},
    {u"size", codes::Size, codes::NumberType, OfItem<codes::Size>},
    {u"physical size", codes::PhysicalSize, codes::NumberType, OfItem<codes::PhysicalSize>},
    {u"kind", codes::Kind, codes::TextType, OfItem<codes::Kind>},
    {u"creation date", codes::CreationDate, codes::DateType, OfItem<codes::CreationDate>},
    {u"modification date", codes::ModificationDate, codes::DateType, OfItem<codes::ModificationDate>,
     writing<&DiskItem::setOfItem<codes::ModificationDate>>},
    {u"name extension", codeOf("extn"), codes::TextType, OfItem<codes::NameExtension>},
    {u"visible", codes::Visible, codes::BooleanType, reading<&DiskItem::isVisible>},
    {u"container", codes::Container, codes::ReferenceType, reading<&DiskItem::container>, nullptr, Unlisted},
});
constexpr auto DiskProperties = std::to_array<PropertyRow>({
    {u"capacity", codes::Capacity, codes::NumberType, OfItem<codes::Capacity>},
    {u"free space", codes::FreeSpace, codes::NumberType, OfItem<codes::FreeSpace>},
    {u"ejectable", codes::Ejectable, codes::BooleanType, OfItem<codes::Ejectable>},
    {u"local volume", codes::LocalVolume, codes::BooleanType, OfItem<codes::LocalVolume>},
    {u"startup", codes::Startup, codes::BooleanType, OfItem<codes::Startup>},
    {u"format", codes::Format, codes::TextType, OfItem<codes::Format>},
});
constexpr auto DiskItemElements = std::to_array<ElementRow>({
    {codes::Item, listing<&DiskItem::items>},
    {codes::DiskItem, listing<&DiskItem::items>},
    {codes::File, listing<&DiskItem::items>},
    {codes::Folder, listing<&DiskItem::items>},
});

constexpr ClassRow AnyRow{.name = u"item", .plural = u"items", .code = codes::Item};
constexpr ClassRow DiskItemRow{.name = u"disk item",
                               .plural = u"disk items",
                               .code = codes::DiskItem,
                               .parent = &AnyRow,
                               .properties = DiskItemProperties,
                               .elements = DiskItemElements};
constexpr ClassRow FileRow{.name = u"file", .plural = u"files", .code = codes::File, .parent = &DiskItemRow};
constexpr ClassRow FolderRow{.name = u"folder", .plural = u"folders", .code = codes::Folder, .parent = &DiskItemRow};
constexpr ClassRow DiskRow{
    .name = u"disk", .plural = u"disks", .code = codes::Disk, .parent = &DiskItemRow, .properties = DiskProperties};
constexpr auto DiskItemKinds = std::to_array<ClassRow const*>({&AnyRow, &DiskItemRow, &FileRow, &FolderRow, &DiskRow});

ClassRow const& DiskItem::row() const {
    if (m_item->type() == codes::Disk) return DiskRow;
    return m_item->type() == codes::Folder ? FolderRow : FileRow;
}

} // namespace

std::span<ClassRow const* const> diskItemKinds() { return DiskItemKinds; }

std::optional<std::string> pathNamed(std::u16string const& name) {
    // A name alone is something in the home folder.
    bool const isPath = name.find(u':') != std::u16string::npos || name.starts_with(u'/');
    std::u16string units = isPath ? posixPathOf(name) : name;
    if (name.starts_with(u"~/")) units = name.substr(2);
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(units);
    if (!bytes || bytes->empty()) return {};
    return bytes->starts_with('/') ? *bytes : BytePath(homePath()).joined(*bytes);
}

std::vector<ModelPointer> disks() {
    std::vector<ModelPointer> all;
    for (MountedVolume const& volume : mountedVolumes())
        if (volume.isStartup() || volume.isBrowsable)
            if (ModelPointer const disk = diskItemAt(volume.mountPoint)) all.push_back(disk);
    return all;
}

ModelPointer diskItemAt(std::string const& path) {
    std::shared_ptr<FinderItem> const item = FinderItem::atPath(path);
    return item ? std::make_shared<DiskItem>(item) : nullptr;
}

ModelPointer diskItemNamed(Code elementType, std::u16string const& name) {
    ModelPointer found;
    for (ModelPointer const& disk : disks()) {
        std::optional<Value> const diskName = disk->property(codes::Name);
        if (diskName && foldedName(diskName->units()) == foldedName(name)) found = disk;
    }
    std::optional<std::string> const path = found ? std::nullopt : pathNamed(name);
    if (path) found = diskItemAt(*path);
    return found && found->isOfType(elementType) ? found : nullptr;
}

std::shared_ptr<FinderItem> itemOf(ModelObject const& object) {
    bool const isDiskItem = object.isOfType(codes::DiskItem);
    return isDiskItem ? static_cast<DiskItem const&>(object).item() : nullptr;
}

} // namespace mac::applescript::system_events
