#include "platform/files/trash/TrashContents.h"
#include "platform/files/trash/TrashRecords.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FolderPlace.h"
#include <algorithm>
#include <cerrno>
#include <iterator>
#include <set>

namespace mac {

namespace {

constexpr char const* CannotLookUp = localizable("Whether the item is in the trash cannot be found out");

TrashProblem cannotLookUp(SystemError error) { return trashProblem(std::move(error), CannotLookUp); }

// The sidecar of the item of that name, if it came with it. Where that cannot be found out the file is listed as an
// item of its own.
std::optional<TrashedSidecar> listedSidecar(TrashPlace const& trash, std::string const& name) {
    Result<std::optional<OpenSidecar>> const sidecar = sidecarInTrash(trash, name);
    if (!sidecar.hasValue() || !sidecar.value()) return std::nullopt;
    Result<IdentifiedItem> const identified = identify(sidecar.value()->file);
    if (!identified.hasValue()) return std::nullopt;
    return TrashedSidecar{sidecar.value()->name, identified.value().identity};
}

// How many folders the item's folder lies below "files", 0 for "files" itself; nullopt if it lies elsewhere.
std::optional<std::size_t> depthBelow(TrashPlace const& trash, std::vector<ItemIdentity> const& above) {
    Result<ItemPlace> const files = placeOf(trash.files);
    if (!files.hasValue()) return std::nullopt;
    auto const found = std::ranges::find(above, files.value().identity);
    if (found == above.end()) return std::nullopt;
    return static_cast<std::size_t>(found - above.begin());
}

// The last `count` + 1 components of the path.
std::string lastComponents(BytePath path, std::size_t count) {
    std::string relative(path.leaf());
    for (; count > 0; --count) {
        path = path.parent();
        relative = BytePath(path.leaf()).joined(relative);
    }
    return relative;
}

Result<PlaceInTrash, TrashProblem> placeIn(TrashPlace const& trash, std::string const& relative) {
    std::size_t const nameLength = std::min(relative.find('/'), relative.size());
    Result<TrashedItem> item = itemInTrash(trash, relative.substr(0, nameLength));
    if (!item.hasValue()) return cannotLookUp(item.problem());
    PlaceInTrash place{.trashed = item.takeValue()};
    place.originalPath = place.trashed.originalPath;
    if (!place.originalPath.empty()) place.originalPath += relative.substr(nameLength);
    return place;
}

// The last deleted first.
std::vector<TrashedItem> itemsIn(FoundTrashes const& found) {
    std::vector<TrashedItem> items;
    for (TrashPlace const& trash : found.trashes) {
        Result<ListedTrash> here = itemsInTrash(trash);
        if (!here.hasValue()) continue;
        for (ListedItem& listed : here.value().items)
            items.push_back(std::move(listed.item));
    }
    std::ranges::stable_sort(items, std::ranges::greater(), &TrashedItem::deletionTime);
    return items;
}

} // namespace

Result<ListedTrash> itemsInTrash(TrashPlace const& trash) {
    Result<std::vector<std::string>> const names = namesInOpenFolder(trash.files);
    if (!names.hasValue()) return names.problem();
    std::set<std::string> const known(names.value().begin(), names.value().end());
    std::set<std::string> sidecars;
    ListedTrash listed;
    for (std::string const& name : names.value()) {
        Result<TrashedItem> item = itemInTrash(trash, name);
        if (!item.hasValue() && !item.problem().is(ENOENT)) listed.problems.push_back(item.problem());
        if (!item.hasValue()) continue;
        std::optional<TrashedSidecar> sidecar;
        if (known.contains(AppleDoubleSidecar::nameFor(name))) sidecar = listedSidecar(trash, name);
        if (sidecar) sidecars.insert(sidecar->name);
        listed.items.push_back({item.takeValue(), std::move(sidecar)});
    }
    std::erase_if(listed.items, [&sidecars](ListedItem const& item) {
        return sidecars.contains(std::string(BytePath(item.item.path).leaf()));
    });
    return listed;
}

std::vector<TrashedItem> trashedItems() { return itemsIn(trashesOfUser()); }

std::vector<TrashedItem> trashedItemsFrom(std::string_view originalPath) {
    std::vector<TrashedItem> items = itemsIn(trashesOfUserAndAround(originalPath));
    std::erase_if(items, [&](TrashedItem const& item) { return item.originalPath != originalPath; });
    return items;
}

Result<std::optional<PlaceInTrash>, TrashProblem> placeInTrash(std::string_view path) {
    Result<OpenItem> const item = openItemAtPath(BytePath(path).bytes(), LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return cannotLookUp(item.problem());
    std::optional<PlaceInTrash> const elsewhere;
    if (item.value().name.empty()) return elsewhere;
    FileDescriptor const& folder = item.value().folder;
    Result<std::vector<ItemIdentity>> const above = folderAndThoseAbove(folder);
    if (!above.hasValue()) return cannotLookUp(above.problem());
    FoundTrashes const around = trashesAround(folder);
    for (TrashPlace const& trash : around.trashes) {
        std::optional<std::size_t> const depth = depthBelow(trash, above.value());
        if (!depth) continue;
        Result<std::string> const folderPath = pathOfFolder(folder);
        if (!folderPath.hasValue()) return cannotLookUp(folderPath.problem());
        std::string const whole = BytePath(folderPath.value()).joined(item.value().name);
        Result<PlaceInTrash, TrashProblem> place = placeIn(trash, lastComponents(whole, *depth));
        if (!place.hasValue()) return place.problem();
        return std::optional(place.takeValue());
    }
    if (std::optional<SystemError> const problem = around.unknownPlace()) return cannotLookUp(*problem);
    return elsewhere;
}

} // namespace mac
