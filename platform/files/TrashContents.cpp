#include "platform/files/DirectorySizes.h"
#include "platform/files/ItemReferences.h"
#include "platform/files/TrashInformation.h"
#include "platform/files/TrashMove.h"
#include "platform/files/TrashSteps.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/AppleDoubleFile.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/FolderPlace.h"
#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <set>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t LargestInformation = std::size_t{1} << 20;
constexpr char CannotPutBack[] = "The item cannot be put back";
constexpr char CannotErase[] = "The item cannot be deleted from the trash";

// Nothing, and errno, where they cannot be listed.
std::optional<std::set<std::string>> namesIn(FileDescriptor const& folder) {
    std::optional<std::vector<std::string>> const names = namesInOpenFolder(folder);
    if (!names) return std::nullopt;
    return std::set<std::string>(names->begin(), names->end());
}

std::string informationName(std::string const& name) { return name + std::string(TrashInformation::nameEnd); }

std::optional<TrashInformation> informationOf(TrashFolder const& trash, std::string const& name) {
    std::string const file = informationName(name);
    // Opening what is no file can wait for ever, or do things.
    std::optional<ItemPlace> const place = placeOf(trash.information, file);
    if (!place || !S_ISREG(place->mode)) return std::nullopt;
    FileDescriptor const open(
        ::openat(trash.information.number(), file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!open.isOpen()) return std::nullopt;
    Result<FileContents, Failure> const contents = readOpenFile(open, LargestInformation);
    if (!contents.hasValue()) return std::nullopt;
    std::span<std::byte const> const bytes = contents.value().bytes;
    return TrashInformation::read({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

std::optional<TrashedItem> itemIn(TrashFolder const& trash, std::string const& name) {
    std::optional<ItemPlace> const place = placeOf(trash.files, name);
    if (!place) return std::nullopt;
    TrashedItem item{.path = trash.filesPath() + "/" + name, .identity = place->identity, .isFolder = place->isFolder};
    if (std::optional<TrashInformation> const information = informationOf(trash, name)) {
        item.originalPath = trash.originalPath(information->path);
        item.deletionTime = secondsOfLocalTimeText(information->date);
    }
    return item;
}

std::string nameOf(std::string const& path) { return path.substr(path.rfind('/') + 1); }

// The AppleDouble file that came with the item. One from elsewhere that happens to have its name here is an item of its
// own, which must not go where this one goes.
Companion companionInTrash(TrashFolder const& trash, std::string const& name) {
    Companion companion = companionOf(trash.files, name);
    if (!companion.file.isOpen()) return {};
    std::optional<TrashInformation> const owner = informationOf(trash, name);
    std::optional<TrashInformation> const information = informationOf(trash, companion.name);
    if (!owner || !information) return {};
    std::string expected = owner->path;
    expected.insert(expected.size() - nameOf(expected).size(), AppleDoubleFile::namePrefix);
    if (information->path != expected) return {};
    return companion;
}

bool isCompanion(TrashFolder const& trash, std::set<std::string> const& names, std::string const& name) {
    if (!name.starts_with(AppleDoubleFile::namePrefix)) return false;
    std::string const owner = name.substr(AppleDoubleFile::namePrefix.size());
    return names.contains(owner) && companionInTrash(trash, owner).file.isOpen();
}

// Nothing, and errno, where they cannot be listed.
std::optional<std::vector<TrashedItem>> itemsIn(TrashFolder const& trash) {
    std::optional<std::set<std::string>> const names = namesIn(trash.files);
    if (!names) return std::nullopt;
    std::vector<TrashedItem> items;
    for (std::string const& name : *names) {
        std::optional<TrashedItem> item = itemIn(trash, name);
        if (item && !isCompanion(trash, *names, name)) items.push_back(std::move(*item));
    }
    return items;
}

void removeInformation(TrashFolder const& trash, std::string const& name) {
    ::unlinkat(trash.information.number(), informationName(name).c_str(), 0);
}

// The trash that the item lies in, and the item, open.
struct Found {
    TrashFolder trash{};
    std::string name{};
    FileDescriptor item{};
    bool isFolder{false};
};

TrashResult<Found> find(TrashedItem const& item) {
    std::optional<OpenItem> open = openItemAtPath(item.path, false);
    std::optional<ItemPlace> const place = open ? placeOf(open->item) : std::nullopt;
    std::optional<ItemPlace> const folder = place && !open->name.empty() ? placeOf(open->folder) : std::nullopt;
    if (!folder) return trashFailure(errno, CannotPutBack);
    if (!(place->identity == item.identity)) return trashFailure(ESTALE, CannotPutBack);
    for (TrashFolder& trash : trashesAround(open->folder)) {
        std::optional<ItemPlace> const files = placeOf(trash.files);
        if (!files || !(files->identity == folder->identity)) continue;
        return Found{std::move(trash), open->name, std::move(open->item), place->isFolder};
    }
    return TrashFailure{TrashProblem::NotInTrash, std::string(CannotPutBack) + ": It is not in the trash"};
}

// The AppleDouble file goes where its item went, unless something of its name is there.
void putCompanionBack(TrashFolder const& trash, std::string const& name, FileDescriptor const& folder,
                      std::string const& originalName) {
    Companion const companion = companionInTrash(trash, name);
    if (!companion.file.isOpen()) return;
    std::string const back = AppleDoubleFile::nameFor(originalName);
    if (moveItem(companion.file, trash.files, companion.name, folder, back) != Moved::Yes) return;
    removeInformation(trash, companion.name);
}

bool eraseOne(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
    int const flags = place.isFolder ? AT_REMOVEDIR : 0;
    return ::unlinkat(folder.number(), name.c_str(), flags) == 0 || errno == ENOENT;
}

bool eraseWhole(TrashFolder const& trash, std::string const& name, ItemIdentity const& identity,
                DescentVisit const& erase) {
    if (!descend(trash.files, name, identity, {.makesAccessible = true}, erase)) return false;
    tellTrashStep(TrashStep::ItemErased);
    removeInformation(trash, name);
    return true;
}

// Errno says why not. An item that is gone takes the file beside it along, whether more is to be erased or not.
bool eraseWithCompanion(TrashFolder const& trash, std::string const& name, ItemIdentity const& identity,
                        DescentVisit const& erase) {
    Companion const companion = companionInTrash(trash, name);
    if (!eraseWhole(trash, name, identity, erase)) return false;
    std::optional<ItemPlace> const place = companion.file.isOpen() ? placeOf(companion.file) : std::nullopt;
    return !place || eraseWhole(trash, companion.name, place->identity, eraseOne);
}

// What tells of an item that never came, or went by other ways. A young one can be of an item that is on its way.
void removeOrphans(TrashFolder const& trash) {
    constexpr std::int64_t oldEnough = 3'600;
    std::int64_t const now = ::time(nullptr);
    for (std::string const& file : namesIn(trash.information).value_or(std::set<std::string>())) {
        if (!file.ends_with(TrashInformation::nameEnd)) continue;
        std::string const name = file.substr(0, file.size() - TrashInformation::nameEnd.size());
        struct stat status {};
        if (::fstatat(trash.information.number(), file.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        bool const isOrphan = !placeOf(trash.files, name) && errno == ENOENT;
        if (isOrphan && S_ISREG(status.st_mode) && status.st_mtim.tv_sec + oldEnough < now)
            ::unlinkat(trash.information.number(), file.c_str(), 0);
    }
}

} // namespace

std::vector<TrashedItem> trashedItems() {
    std::vector<TrashedItem> items;
    for (TrashFolder const& trash : trashesOfUser()) {
        for (TrashedItem& item : itemsIn(trash).value_or(std::vector<TrashedItem>()))
            items.push_back(std::move(item));
    }
    std::ranges::stable_sort(items, std::ranges::greater(), &TrashedItem::deletionTime);
    return items;
}

TrashResult<std::string> putBack(TrashedItem const& item) {
    TrashResult<Found> const found = find(item);
    if (!found.hasValue()) return found.failure();
    Found const& trashed = found.value();
    std::optional<TrashInformation> const information = informationOf(trashed.trash, trashed.name);
    std::string const path = information ? trashed.trash.originalPath(information->path) : std::string();
    if (path.empty())
        return TrashFailure{TrashProblem::NotInTrash,
                            std::string(CannotPutBack) + ": Nothing tells where it came from"};
    std::size_t const slash = path.rfind('/');
    FileDescriptor const folder = openPath(slash == 0 ? "/" : path.substr(0, slash), O_PATH | O_DIRECTORY);
    if (!folder.isOpen()) return trashFailure(errno, CannotPutBack);
    std::string const name = nameOf(path);
    Moved const moved = moveItem(trashed.item, trashed.trash.files, trashed.name, folder, name);
    if (moved == Moved::ButAnother) return anotherMoved(CannotPutBack, path);
    if (moved != Moved::Yes) {
        TrashFailure failure = trashFailure(errno, CannotPutBack);
        // What lies there now is another volume; that one's trash has no part in it.
        if (failure.problem == TrashProblem::NoTrash) failure.problem = TrashProblem::Other;
        return failure;
    }
    tellTrashStep(TrashStep::ItemPutBack);
    putCompanionBack(trashed.trash, trashed.name, folder, name);
    removeInformation(trashed.trash, trashed.name);
    if (trashed.isFolder) removeOldDirectorySizes(trashed.trash);
    return path;
}

EmptiedTrash emptyTrash(std::function<bool()> const& goesOn) {
    EmptiedTrash emptied;
    bool isStopped = false;
    auto const erase = [&](FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
        isStopped = goesOn && !goesOn();
        if (isStopped) errno = ECANCELED;
        return !isStopped && eraseOne(folder, name, place);
    };
    for (TrashFolder const& trash : trashesOfUser()) {
        auto const failed = [&emptied] {
            if (emptied.left == 0) emptied.firstFailure = trashFailure(errno, CannotErase);
            ++emptied.left;
        };
        std::optional<std::vector<TrashedItem>> const items = itemsIn(trash);
        if (!items) failed();
        for (TrashedItem const& item : items.value_or(std::vector<TrashedItem>())) {
            if (eraseWithCompanion(trash, nameOf(item.path), item.identity, erase))
                ++emptied.removed;
            else if (!isStopped)
                failed();
            if (isStopped) break;
        }
        removeOrphans(trash);
        removeOldDirectorySizes(trash);
        if (isStopped) break;
    }
    releaseRemovedItems();
    return emptied;
}

} // namespace mac
