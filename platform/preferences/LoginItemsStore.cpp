#include "platform/preferences/LoginItemsStore.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/BytePath.h"
#include "platform/system/TemporaryName.h"
#include <algorithm>
#include <cerrno>
#include <deque>
#include <iterator>
#include <optional>
#include <utility>

namespace mac {

namespace {

// How many removed items can be put back, and how many that others removed are known.
constexpr std::size_t MostRemoved = 100;

struct ReadItem {
    NSDictionary object{};
    AutostartItem item{};
};

struct RemovedItem {
    NSDictionary object{};
    RemovedAutostart entry{};
};

// What this process knows of the list.
struct KnownLoginItems {
    // The items as last read or written.
    std::vector<ReadItem> items{};
    NSArray kept{NSArray::array()};
    // The last one removed first.
    std::deque<RemovedItem> removed{};
    // Items whose entries other programs removed, the last one first.
    std::deque<NSDictionary> vanished{};
};

KnownLoginItems& knownLoginItems() {
    static KnownLoginItems known;
    return known;
}

// Takes the member that the test accepts out of the list.
template <class List, class Test>
auto taken(List& list, Test const& test) -> std::optional<typename List::value_type> {
    auto const found = std::ranges::find_if(list, test);
    if (found == list.end()) return std::nullopt;
    typename List::value_type member = std::move(*found);
    list.erase(found);
    return member;
}

// What is to be done for an array of items.
struct Plan {
    NSMutableArray kept{NSMutableArray::array()};
    std::vector<ReadItem> staying{};
    std::vector<ReadItem> removals{};
    std::vector<RemovedItem> restorations{};
    std::vector<NSDictionary> additions{};
};

// Another program removed it since it was read.
bool isGone(ReadItem const& read) {
    Result<FileStatus> const status = fileStatusAtPath(BytePath(read.item.folder).joined(read.item.fileName));
    return !status.hasValue() && status.problem().is(ENOENT);
}

// What needs a new file can fail most easily; then nothing has been removed yet.
Result<void> putMaskedFirst(std::vector<ReadItem>& removals) {
    std::vector<ReadItem> others;
    std::vector<ReadItem> ordered;
    for (ReadItem const& read : removals) {
        Result<bool> const needs = needsMask(read.item);
        if (!needs.hasValue()) return needs.problem();
        (needs.value() ? ordered : others).push_back(read);
    }
    ordered.insert(ordered.end(), others.begin(), others.end());
    removals = std::move(ordered);
    return {};
}

std::string pathOf(id const& element) {
    NSString const path = as<NSString>(as<NSDictionary>(element).objectForKey_("Path"));
    return path.fileSystemRepresentation().value_or("");
}

// Elements that are the very objects read come first, then equal ones, so that each of several equal entries is told
// from the others as far as possible. Fails for an element that the desktop may be able to start, or did start, and for
// which no entry can be made now: nothing would start it from the list of preferences alone.
Result<Plan> planFor(NSArray const& items, KnownLoginItems const& known) {
    Plan plan{.removals = known.items};
    std::deque<RemovedItem> removed = known.removed;
    std::vector<id> others;
    for (id const& element : items) {
        std::optional<ReadItem> same =
            taken(plan.removals, [&](ReadItem const& read) { return isSame(read.object, element); });
        if (same)
            plan.staying.push_back(*std::move(same));
        else
            others.push_back(element);
    }
    std::erase_if(plan.removals, isGone);
    for (id const& element : others) {
        std::optional<ReadItem> equal =
            taken(plan.removals, [&](ReadItem const& read) { return read.object.isEqual_(element); });
        if (equal) {
            plan.staying.push_back(*std::move(equal));
            continue;
        }
        if (known.kept.containsObject_(element)) {
            plan.kept.addObject_(element);
            continue;
        }
        std::optional<RemovedItem> before =
            taken(removed, [&](RemovedItem const& item) { return item.object.isEqual_(element); });
        if (before) {
            plan.restorations.push_back(*std::move(before));
            continue;
        }
        Result<bool> const hasForm = hasEntryForm(element);
        if (!hasForm.hasValue()) return hasForm.problem();
        if (hasForm.value())
            plan.additions.push_back(as<NSDictionary>(element));
        else if (std::ranges::any_of(known.vanished, [&](id const& item) { return item.isEqual_(element); }))
            return SystemError{.code = ENOEXEC, .operation = "start", .item = pathOf(element)};
        else
            plan.kept.addObject_(element);
    }
    Result<void> const ordered = putMaskedFirst(plan.removals);
    return ordered.isDone() ? Result<Plan>(std::move(plan)) : ordered.problem();
}

// A file that could not be made has a name that tells people nothing: they are told its folder.
Failure failureOf(SystemError error) {
    if (error.is(ENOEXEC))
        return {error.item + ": " +
                NSLocalizedString("It cannot be started any more", "A login item, by its path").UTF8String()};
    if (parseTemporaryName(BytePath(error.item).leaf())) error.item = autostartFolders().front();
    return failureForPeople(error);
}

// Carries a plan out: what is new first, so that a failure costs no entry.
class LoginItemChange {
public:
    explicit LoginItemChange(Plan const& plan) : m_plan(plan) {}

    // The steps before one that failed are taken back.
    Result<void> carryOut();
    // The names of the entries that were added or restored, and what was removed; after a failure, what was removed and
    // could not be put back.
    std::vector<std::pair<NSDictionary, std::string>> takeNames() { return std::move(m_names); }
    std::vector<RemovedItem> takeRemoved() { return std::move(m_removed); }

private:
    Result<void> restore();
    Result<void> add();
    Result<void> remove();
    void takeBack();

    Plan const& m_plan;
    std::vector<std::pair<NSDictionary, std::string>> m_names{};
    std::vector<RemovedItem> m_removed{};
};

Result<void> LoginItemChange::restore() {
    for (RemovedItem const& item : m_plan.restorations) {
        Result<std::string> const name = restoreAutostart(item.entry);
        if (!name.hasValue()) return name.problem();
        m_names.emplace_back(item.object, name.value());
    }
    return {};
}

Result<void> LoginItemChange::add() {
    unsigned long order = nextLoginItemOrder();
    for (NSDictionary const& item : m_plan.additions) {
        Result<std::string> const name = addAutostart(newEntryFor(item, order++));
        if (!name.hasValue()) return name.problem();
        m_names.emplace_back(item, name.value());
    }
    return {};
}

Result<void> LoginItemChange::remove() {
    for (ReadItem const& read : m_plan.removals) {
        Result<RemovedAutostart> removed = removeAutostart(read.item);
        if (removed.hasValue())
            m_removed.push_back({read.object, removed.takeValue()});
        else if (!removed.problem().is(ENOENT)) // Another program was quicker.
            return removed.problem();
    }
    return {};
}

// What was added and cannot be taken back stays: the next read shows it.
void LoginItemChange::takeBack() {
    std::erase_if(m_removed, [](RemovedItem const& item) { return restoreAutostart(item.entry).hasValue(); });
    AutostartItems const now = autostartItems();
    for (auto const& [object, name] : m_names) {
        auto const added = std::ranges::find(now.items, name, &AutostartItem::fileName);
        if (added != now.items.end()) (void)removeAutostart(*added);
    }
}

Result<void> LoginItemChange::carryOut() {
    Result<void> done = restore();
    if (done.isDone()) done = add();
    if (done.isDone()) done = remove();
    if (!done.isDone()) takeBack();
    return done;
}

// What was just written, as it would be read: so writing the same array again changes nothing.
std::vector<ReadItem> itemsNamed(std::vector<std::pair<NSDictionary, std::string>> const& names) {
    std::vector<ReadItem> items;
    AutostartItems const now = autostartItems();
    for (auto const& [object, name] : names) {
        auto const found = std::ranges::find(now.items, name, &AutostartItem::fileName);
        if (found != now.items.end()) items.push_back({object, *found});
    }
    return items;
}

void remember(std::vector<RemovedItem> gone, KnownLoginItems& known) {
    std::ranges::move(gone, std::front_inserter(known.removed));
    if (known.removed.size() > MostRemoved) known.removed.resize(MostRemoved);
}

// Remembers the known items whose entries are not among those that were found.
void rememberVanished(AutostartItems const& found, KnownLoginItems& known) {
    for (ReadItem const& read : known.items) {
        bool const isThere =
            std::ranges::find(found.items, read.item.fileName, &AutostartItem::fileName) != found.items.end();
        if (!isThere) known.vanished.push_front(read.object);
    }
    if (known.vanished.size() > MostRemoved) known.vanished.resize(MostRemoved);
}

} // namespace

NativeItems readLoginItems(NSArray const& kept) {
    KnownLoginItems& known = knownLoginItems();
    AutostartItems found = autostartItems();
    rememberVanished(found, known);
    known.items.clear();
    known.kept = kept;
    NSMutableArray const foreign = NSMutableArray::array();
    NSMutableArray const own = NSMutableArray::array();
    for (AutostartItem& item : found.items) {
        NSDictionary const object = loginItemOf(item);
        (item.entry.own ? own : foreign).addObject_(object);
        known.items.push_back({object, std::move(item)});
    }
    return {.items = foreign.arrayByAddingObjectsFromArray_(kept).arrayByAddingObjectsFromArray_(own),
            .problem = found.problem ? std::optional(failureForPeople(*found.problem)) : std::nullopt};
}

NativeWriting writeLoginItems(NSArray const& items) {
    KnownLoginItems& known = knownLoginItems();
    Result<Plan> planned = planFor(items, known);
    if (!planned.hasValue()) return {.kept = known.kept, .problem = failureOf(planned.problem())};
    Plan plan = planned.takeValue();
    LoginItemChange change(plan);
    Result<void> const done = change.carryOut();
    std::vector<RemovedItem> gone = change.takeRemoved();
    if (!done.isDone()) {
        // No longer among those that are there, so that they are put back when they are written again.
        for (RemovedItem const& item : gone)
            (void)taken(known.items, [&](ReadItem const& read) { return isSame(read.object, item.object); });
        remember(std::move(gone), known);
        return {.kept = known.kept, .problem = failureOf(done.problem())};
    }
    known.items = std::move(plan.staying);
    std::ranges::move(itemsNamed(change.takeNames()), std::back_inserter(known.items));
    for (RemovedItem const& restored : plan.restorations) {
        (void)taken(known.removed, [&](RemovedItem const& item) { return isSame(item.object, restored.object); });
    }
    remember(std::move(gone), known);
    known.kept = plan.kept;
    return {.kept = plan.kept};
}

bool isOwnLoginItem(id const& element) {
    return std::ranges::any_of(knownLoginItems().items, [&](ReadItem const& read) {
        return read.item.entry.own && read.object.isEqual_(element);
    });
}

} // namespace mac
