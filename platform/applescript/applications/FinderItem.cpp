#include "platform/applescript/applications/FinderItem.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/applescript/runtime/TextComparison.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <linux/stat.h>
#include <sys/stat.h>

namespace mac::applescript {

namespace {

std::optional<ItemFacts> factsOf(int folder, char const* name, int flags) {
    struct statx status {};
    int const how = flags | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
    if (::statx(folder, name, how, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) return {};
    bool const hasBirth = (status.stx_mask & STATX_BTIME) != 0;
    constexpr std::uint64_t blockSize = 512;
    return ItemFacts{
        .identity = {},
        .mode = status.stx_mode,
        .owner = status.stx_uid,
        .group = status.stx_gid,
        .size = status.stx_size,
        .physicalSize = status.stx_blocks * blockSize,
        .created = hasBirth ? status.stx_btime.tv_sec : std::min(status.stx_ctime.tv_sec, status.stx_mtime.tv_sec),
        .modified = status.stx_mtime.tv_sec,
        .isMountPoint = (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0,
        .mayBeMountPoint = ((status.stx_attributes | ~status.stx_attributes_mask) & STATX_ATTR_MOUNT_ROOT) != 0,
    };
}

std::optional<ItemFacts> factsOf(FileDescriptor const& folder, std::string const& name) {
    Result<IdentifiedItem> const identified = identify(folder, name);
    std::optional<ItemFacts> facts = factsOf(folder.number(), name.c_str(), 0);
    if (!identified.hasValue() || !facts) return {};
    facts->identity = identified.value().identity;
    return facts;
}

Code typeOf(std::string_view name, std::uint32_t mode) {
    if (S_ISLNK(mode)) return codes::AliasFile;
    if (S_ISREG(mode)) return codes::DocumentFile;
    return S_ISDIR(mode) ? classOfFolderNamed(name) : codes::Item;
}

bool isDisk(std::string const& path) {
    if (path == "/") return true;
    return std::ranges::any_of(
        mountedVolumes(), [&](MountedVolume const& volume) { return volume.isBrowsable && volume.mountPoint == path; });
}

Result<FileDescriptor> openFolder(std::string const& path) { return openPath(path, O_RDONLY | O_DIRECTORY); }

// The names in the order of a list by name; what begins with a dot does not show.
std::vector<std::string> shownNames(std::vector<std::string> all) {
    std::vector<std::pair<std::u16string, std::string>> names;
    for (std::string& name : all) {
        if (name.starts_with('.')) continue;
        std::u16string shown = shownName(name);
        names.emplace_back(std::move(shown), std::move(name));
    }
    constexpr unsigned considered = Considerations::Standard | Considerations::NumericStrings;
    std::ranges::sort(names, [](auto const& one, auto const& other) {
        int const order = compareText(one.first, other.first, considered);
        return order != 0 ? order < 0 : one.second < other.second;
    });
    std::vector<std::string> sorted;
    sorted.reserve(names.size());
    for (auto& [shown, name] : names)
        sorted.push_back(std::move(name));
    return sorted;
}

} // namespace

std::shared_ptr<FinderItem> FinderItem::atPath(std::string const& path) {
    std::optional<std::string> const direct = directPath(path);
    if (!direct) return nullptr;
    if (*direct != "/")
        return inFolder(std::string(BytePath(*direct).parent()), std::string(BytePath(*direct).leaf()), Value());
    Result<FileDescriptor> const root = openFolder("/");
    std::optional<ItemFacts> const facts = root.hasValue() ? factsOf(root.value(), ".") : std::nullopt;
    return facts ? std::make_shared<FinderItem>("/", *facts, codes::Disk, Value()) : nullptr;
}

std::shared_ptr<FinderItem> FinderItem::inFolder(std::string const& folderPath, std::string const& name,
                                                 Value const& folder) {
    Result<FileDescriptor> const parent = openPath(folderPath, O_PATH | O_DIRECTORY);
    std::optional<ItemFacts> const facts = parent.hasValue() ? factsOf(parent.value(), name) : std::nullopt;
    if (!facts) return nullptr;
    std::string path = BytePath(folderPath).joined(name);
    // Listing the volumes costs far more than all the rest, so only a mount point is looked up.
    bool const mayBeDisk = S_ISDIR(facts->mode) && facts->mayBeMountPoint;
    Code const type = mayBeDisk && isDisk(path) ? codes::Disk : typeOf(name, facts->mode);
    return std::make_shared<FinderItem>(std::move(path), *facts, type, folder);
}

bool FinderItem::isFolder() const { return S_ISDIR(m_facts.mode); }

ClassRow const& FinderItem::row() const { return finderClassOf(m_type); }

Value FinderItem::folder() const { return m_folder.isNothing() ? folderSpecifier(parentOf(m_path)) : m_folder; }

Value FinderItem::specifier() const {
    if (m_type == codes::Disk) return folderSpecifier(m_path);
    return itemSpecifier(m_type, BytePath(m_path).leaf(), folder());
}

OpenItem FinderItem::open() const {
    Result<OpenItem> item = openItemAtPath(m_path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) throw fileError(item.problem(), specifier());
    Result<IdentifiedItem> const found = identify(item.value().item);
    if (!found.hasValue()) throw fileError(found.problem(), specifier());
    if (!(found.value().identity == m_facts.identity)) throw cannotGet(specifier());
    return item.takeValue();
}

std::optional<std::vector<ModelPointer>> FinderItem::items(Code elementType) {
    if (!isFolder()) return {};
    Result<FileDescriptor> const folder = openFolder(m_path);
    if (!folder.hasValue()) throw fileError(folder.problem(), specifier());
    Result<IdentifiedItem> const found = identify(folder.value());
    if (!found.hasValue() || !(found.value().identity == m_facts.identity)) throw cannotGet(specifier());
    Result<std::vector<std::string>> names = namesInOpenFolder(folder.value());
    if (!names.hasValue()) throw fileError(names.problem(), specifier());
    Value const self = specifier();
    std::vector<ModelPointer> elements;
    for (std::string const& name : shownNames(names.takeValue())) {
        std::optional<ItemFacts> const facts = factsOf(folder.value(), name);
        if (!facts) continue;
        Code const type = typeOf(name, facts->mode);
        ModelPointer const element = std::make_shared<FinderItem>(BytePath(m_path).joined(name), *facts, type, self);
        if (element->isOfType(elementType)) elements.push_back(element);
    }
    return elements;
}

bool FinderItem::rename(Value const& value, TextContext const& context) {
    std::u16string const wanted = requireText(value, context);
    std::optional<std::string> const name =
        wanted.find(u':') == std::u16string::npos ? nameOnDisk(wanted) : std::nullopt;
    if (!name || m_path == "/" || m_type == codes::Disk) throw badFileName(specifier());
    OpenItem const item = open();
    if (*name == item.name) return true;
    // A file system of several layers copies a folder of a lower layer.
    Result<void, ReplacingProblem> const moved = moveItem(
        {.item = item, .folder = item.folder, .name = *name, .shouldContinue = mayRunGoOn}, NameClash::IsRefused);
    if (!moved.isDone()) {
        if (moved.problem().transfer.kind != TransferProblem::Kind::OriginalStays) stopRunIfAsked();
        throw transferError(moved.problem(), specifier(), FileCommand::UseItem);
    }
    m_path = BytePath(parentOf(m_path)).joined(*name);
    return true;
}

// The name may be a path of several, with colons between.
ModelPointer FinderItem::elementNamed(Code elementType, std::u16string const& name) {
    if (!isFolder()) return nullptr;
    std::size_t const colon = name.find(u':');
    std::optional<std::string> const first = nameOnDisk(std::u16string_view(name).substr(0, colon));
    std::shared_ptr<FinderItem> const found = first ? inFolder(m_path, *first, specifier()) : nullptr;
    if (!found) return nullptr;
    bool const isWhole = colon == std::u16string::npos || colon + 1 == name.size();
    if (!isWhole) return found->elementNamed(elementType, name.substr(colon + 1));
    // Among a folder's elements a disk goes by the class that its folder alone would have.
    bool const isListedDisk = found->type() == codes::Disk && typeOf(*first, found->facts().mode) == elementType;
    return isListedDisk || found->isOfType(elementType) ? found : nullptr;
}

std::optional<Value> FinderItem::coerced(Code wanted) {
    std::u16string const path = unitsFromFileSystemBytes(m_path);
    switch (wanted) {
    case codes::TextType:
    case codes::StringType:
    case codes::UnicodeTextType:
        return Value::text(hfsPathFromPOSIXPath(path, isFolder()));
    case codes::AliasType:
        return makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, path);
    case codes::FileURLType:
    case codes::POSIXFileType:
        return makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile, path);
    default:
        return isOfType(wanted) ? std::optional(specifier()) : std::nullopt;
    }
}

} // namespace mac::applescript
