#include "platform/applescript/applications/FinderItem.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/DisplayNames.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/Users.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <array>
#include <fts.h>
#include <memory>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

// The properties that all of the Finder's items have, whatever their class.

namespace mac::applescript {

namespace {

Value wholeNumber(std::uint64_t number) { return Value::number(static_cast<double>(number)); }

Value shownAccount(std::optional<std::string> const& name) {
    return name ? Value::text(unitsFromFileSystemBytes(*name)) : Value::missing();
}

struct CloseTree {
    void operator()(FTS* tree) const { ::fts_close(tree); }
};

DiskItem itemOnDisk(FinderItem const& item) {
    Result<DiskItem> const found = diskItemAtPath(item.path());
    if (!found.hasValue()) throw fileError(found.problem(), item.specifier());
    return found.value();
}

std::u16string nameOf(FinderItem const& item) {
    if (item.type() != codes::Disk) return shownName(BytePath(item.path()).leaf());
    std::vector<MountedVolume> const volumes = mountedVolumes();
    auto const found = std::ranges::find(volumes, item.path(), &MountedVolume::mountPoint);
    return found == volumes.end() ? startupVolumeName() : found->name;
}

Value itemName(FinderItem const& item) { return Value::text(nameOf(item)); }

Value displayedName(FinderItem const& item) {
    if (item.type() == codes::Disk) return itemName(item);
    std::u16string name(displayNameOf(itemOnDisk(item)).codeUnits());
    std::ranges::replace(name, u':', u'/');
    return Value::text(std::move(name));
}

Value nameExtension(FinderItem const& item) {
    std::u16string const name = nameOf(item);
    std::size_t const dot = name.rfind(u'.');
    bool const hasExtension = dot != std::u16string::npos && dot > 0 && dot + 1 < name.size();
    return Value::text(hasExtension && !item.isContainer() ? name.substr(dot + 1) : std::u16string());
}

Value isExtensionHidden(FinderItem const& item) { return Value::boolean(hidesExtension(itemOnDisk(item))); }
Value kind(FinderItem const& item) { return Value::text(kindOf(item.type(), itemOnDisk(item))); }

std::optional<Value> container(FinderItem const& item) {
    return item.path() == "/" ? std::nullopt : std::optional(item.folder());
}

Value diskOf(FinderItem const& item) {
    std::vector<MountedVolume> volumes = mountedVolumes();
    std::erase_if(volumes, [](MountedVolume const& volume) { return !volume.isStartup() && !volume.isBrowsable; });
    MountedVolume const* const volume = volumeOfPath(volumes, item.path());
    return folderSpecifier(volume ? volume->mountPoint : "/");
}

std::optional<Value> placeInFolder(FinderItem const& item) {
    std::shared_ptr<FinderItem> const folder = item.path() == "/" ? nullptr : FinderItem::atPath(parentOf(item.path()));
    if (!folder) return {};
    std::int32_t place = 0;
    for (ModelPointer const& one : folder->items(codes::Item).value_or(std::vector<ModelPointer>())) {
        ++place;
        if (static_cast<FinderItem const&>(*one).path() == item.path()) return Value::integer(place);
    }
    return Value::integer(0);
}

Value informationWindow(FinderItem const& item) {
    return propertySpecifier(termSymbol(codes::InformationWindow, u"information window"), item.specifier());
}

// The size of all files in the folder together; a folder that cannot be read counts nothing.
std::uint64_t sizeOfContents(FinderItem const& folder) {
    OpenItem const item = folder.open();
    std::string const path = item.systemPath() + "/.";
    std::array<char*, 2> roots{const_cast<char*>(path.c_str()), nullptr};
    std::unique_ptr<FTS, CloseTree> const tree(
        ::fts_open(roots.data(), FTS_PHYSICAL | FTS_NOCHDIR | FTS_XDEV, nullptr));
    std::uint64_t size = 0;
    while (FTSENT const* const entry = tree ? ::fts_read(tree.get()) : nullptr) {
        stopRunIfAsked();
        if (entry->fts_info == FTS_F || entry->fts_info == FTS_SL)
            size += static_cast<std::uint64_t>(entry->fts_statp->st_size);
    }
    return size;
}

// Linux: the size of a disk is what is not free of it.
Value wholeSize(FinderItem const& item) {
    if (item.type() == codes::Disk) {
        struct statvfs space {};
        if (::statvfs(item.path().c_str(), &space) != 0) return Value::missing();
        return wholeNumber(std::uint64_t{space.f_blocks - space.f_bfree} * space.f_frsize);
    }
    return wholeNumber(item.isFolder() ? sizeOfContents(item) : item.facts().size);
}

Value physicalSize(FinderItem const& item) { return wholeNumber(item.facts().physicalSize); }
Value creationDate(FinderItem const& item) { return Value::date(dateOfUnixTime(item.facts().created)); }
Value modificationDate(FinderItem const& item) { return Value::date(dateOfUnixTime(item.facts().modified)); }

bool setModificationDate(FinderItem const& item, Value const& value, TextContext const& /*context*/) {
    if (!value.is(ValueKind::Date)) throw cannotMake(value, codes::DateType);
    timespec const modified{.tv_sec = unixTimeOfDate(value.seconds()), .tv_nsec = 0};
    Result<void> const changed = setDates(item.open().item, {.modified = modified}, item.open().name);
    if (changed.isDone()) return true;
    throw fileError(changed.problem(), item.specifier());
}

Value owner(FinderItem const& item) { return shownAccount(nameOfUser(item.facts().owner)); }
Value group(FinderItem const& item) { return shownAccount(nameOfGroup(item.facts().group)); }

template <int Whose>
Value privileges(FinderItem const& item) {
    return privilegesOf(item.facts().mode, Whose);
}
template <int Whose>
bool setRights(FinderItem const& item, Value const& value, TextContext const& /*context*/) {
    return setPrivileges(item.open(), Whose, value);
}

Value url(FinderItem const& item) { return Value::text(urlOf(item.path(), item.isFolder())); }

Value locked(FinderItem const& item) { return Value::boolean(isLocked(item.open())); }
bool setLock(FinderItem const& item, Value const& value, TextContext const& context) {
    setLocked(item.open(), requireBoolean(value, context), item.specifier());
    return true;
}

Value comment(FinderItem const& item) { return Value::text(commentOf(item.open())); }
bool setItemComment(FinderItem const& item, Value const& value, TextContext const& context) {
    setComment(item.open(), requireText(value, context), item.specifier());
    return true;
}

Value labelIndex(FinderItem const& item) { return Value::integer(labelIndexOf(item.open())); }
bool setItemLabel(FinderItem const& item, Value const& value, TextContext const& context) {
    setLabelIndex(item.open(), requireInteger(value, context), item.specifier());
    return true;
}

// Folders before what is in them. Not into packages, other volumes, nor through links.
std::optional<Value> entireContents(FinderItem& item) {
    if (!item.isContainer()) return {};
    std::vector<Value> all;
    std::vector<ModelPointer> waiting = *item.items(codes::Item);
    std::ranges::reverse(waiting);
    while (!waiting.empty()) {
        stopRunIfAsked();
        ModelPointer const next = std::move(waiting.back());
        waiting.pop_back();
        all.push_back(next->specifier());
        auto& inside = static_cast<FinderItem&>(*next);
        bool const isEntered = inside.isOfType(codes::Folder) && !inside.facts().isMountPoint;
        if (!isEntered) continue;
        std::vector<ModelPointer> inner;
        try {
            inner = *inside.items(codes::Item);
        } catch (ScriptError const&) {
            // A folder that cannot be read is all that shows of it.
            continue;
        }
        waiting.insert(waiting.end(), inner.rbegin(), inner.rend());
    }
    return Value::list(std::move(all));
}

constexpr Code Privileges = codes::ConstantType;

constexpr auto ItemProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&itemName>, writing<&FinderItem::rename>},
    {u"displayed name", codes::DisplayedName, codes::TextType, reading<&displayedName>},
    {u"name extension", codes::NameExtension, codes::TextType, reading<&nameExtension>},
    {u"extension hidden", codes::ExtensionHidden, codes::BooleanType, reading<&isExtensionHidden>},
    {u"index", codes::Index, codes::IntegerType, reading<&placeInFolder>, nullptr, Unlisted},
    {u"container", codes::Container, codes::ReferenceType, reading<&container>},
    {u"", codes::IsFolder, codes::ReferenceType, reading<&container>, nullptr, Unlisted},
    {u"", codes::Folder, codes::ReferenceType, reading<&container>, nullptr, Unlisted},
    {u"disk", codes::Disk, codes::ReferenceType, reading<&diskOf>},
    {u"size", codes::Size, codes::NumberType, reading<&wholeSize>},
    {u"physical size", codes::PhysicalSize, codes::NumberType, reading<&physicalSize>},
    {u"kind", codes::Kind, codes::TextType, reading<&kind>},
    {u"comment", codes::Comment, codes::TextType, reading<&comment>, writing<&setItemComment>},
    {u"creation date", codes::CreationDate, codes::DateType, reading<&creationDate>},
    {u"modification date", codes::ModificationDate, codes::DateType, reading<&modificationDate>,
     writing<&setModificationDate>},
    {u"label index", codeOf("labi"), codes::IntegerType, reading<&labelIndex>, writing<&setItemLabel>},
    {u"owner", codeOf("sown"), codes::TextType, reading<&owner>},
    {u"group", codeOf("sgrp"), codes::TextType, reading<&group>},
    {u"owner privileges", codeOf("ownr"), Privileges, reading<&privileges<0>>, writing<&setRights<0>>, Unlisted},
    {u"group privileges", codeOf("gppr"), Privileges, reading<&privileges<1>>, writing<&setRights<1>>, Unlisted},
    {u"everyones privileges", codeOf("gstp"), Privileges, reading<&privileges<2>>, writing<&setRights<2>>, Unlisted},
    {u"URL", codes::URL, codes::TextType, reading<&url>},
    {u"locked", codes::Locked, codes::BooleanType, reading<&locked>, writing<&setLock>},
    {u"information window", codes::InformationWindow, codes::ReferenceType, reading<&informationWindow>, nullptr,
     Unlisted},
    {u"entire contents", codes::EntireContents, codes::ListType, reading<&entireContents>, nullptr, Unlisted},
});

constexpr auto ItemElements = std::to_array<ElementRow>({
    {codes::Item, listing<&FinderItem::items>},
    {codes::Container, listing<&FinderItem::items>},
    {codes::Folder, listing<&FinderItem::items>},
    {codes::File, listing<&FinderItem::items>},
    {codes::DocumentFile, listing<&FinderItem::items>},
    {codes::ApplicationFile, listing<&FinderItem::items>},
    {codes::AliasFile, listing<&FinderItem::items>},
    {codes::Package, listing<&FinderItem::items>},
    {codes::Disk, listing<&FinderItem::items>},
});

} // namespace

constinit ClassRow const FinderItemRow{
    .name = u"item", .plural = u"items", .code = codes::Item, .properties = ItemProperties, .elements = ItemElements};

} // namespace mac::applescript
