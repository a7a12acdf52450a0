#include "platform/appkit/ArrayControllerBody.h"
#include "platform/appkit/IdentityPlaces.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSSet.h"
#include "platform/foundation/NSSortDescriptor.h"
#include <algorithm>
#include <exception>
#include <optional>

namespace mac {

namespace {

constexpr char const* SelectionKeys[]{"selectedObjects", "selectionIndex", "selectionCount", "hasSelection",
                                      "hasSingleSelection"};
constexpr char const* ArrangementKeys[]{"arrangedObjects", "count", "contentCount", "isEmpty", "isFilteredToNothing"};

NSString keyNamed(char const* name) { return NSString::stringWithUTF8String_(name); }

// The change of several keys at once: everybody is told, then the first exception of an observer goes on.
class KeysChange {
public:
    explicit KeysChange(id object) : m_object(std::move(object)) {}

    KeysChange& with(std::span<char const* const> names) {
        for (char const* const name : names) {
            m_keys.push_back(keyNamed(name));
            m_object.willChangeValueForKey_(m_keys.back());
        }
        return *this;
    }
    void tell() const {
        std::exception_ptr first;
        for (NSString const& key : m_keys) {
            try {
                m_object.didChangeValueForKey_(key);
            } catch (...) {
                if (!first) first = std::current_exception();
            }
        }
        if (first) std::rethrow_exception(first);
    }

private:
    id m_object;
    std::vector<NSString> m_keys;
};

NSArray objectsOf(id const& content) {
    if (content == nil) return NSArray::array();
    if (content.isKindOfClass_(classOf<NSSet>())) return as<NSSet>(content).allObjects();
    if (content.isKindOfClass_(classOf<NSArray>())) return as<NSArray>(content);
    throw NSInvalidArgumentException("The content of an array controller must be an array or a set, not " +
                                     std::string(content.class_().name()));
}

} // namespace

NSArrayController::Body::Entry NSArrayController::Body::makeEntry(id const& object) const {
    return {object, m_identityKeyPath == nil ? object : valueOfKeyPath(object, m_identityKeyPath)};
}

// What was there before stands first, in its old order, and takes over row and selection; so do equals when they are
// sorted.
std::vector<NSArrayController::Body::Entry> NSArrayController::Body::entriesOf(id const& content) const {
    NSArray const objects = objectsOf(content);
    IdentityPlaces places(m_identityKeyPath != nil, m_entries.size());
    for (std::size_t place = 0; place < m_entries.size(); ++place)
        places.add(m_entries[place].identity, place);
    std::vector<Entry> known(m_entries.size());
    std::vector<Entry> added;
    for (id const& object : objects) {
        Entry entry = makeEntry(object);
        std::optional<std::size_t> const place = places.take(entry.identity);
        if (!place) {
            added.push_back(std::move(entry));
            continue;
        }
        entry.row = m_entries[*place].row;
        entry.isSelected = m_entries[*place].isSelected;
        entry.formerPlace = *place;
        known[*place] = std::move(entry);
    }
    std::erase_if(known, [](Entry const& entry) { return entry.object == nil; });
    std::ranges::move(added, std::back_inserter(known));
    return known;
}

NSArrayController::Body::Sorted NSArrayController::Body::sorted(std::vector<Entry> entries,
                                                                NSArray const& criteria) const {
    std::vector<id> objects;
    std::vector<std::size_t> formerPlaces;
    objects.reserve(entries.size());
    formerPlaces.reserve(entries.size());
    for (Entry& entry : entries) {
        objects.push_back(entry.object);
        formerPlaces.push_back(std::exchange(entry.formerPlace, KeptOrder::None));
    }
    auto [order, values] = m_order.sort(objects, formerPlaces, criteria);
    Sorted result{{}, std::move(values)};
    result.entries.reserve(entries.size());
    for (std::size_t const index : order)
        result.entries.push_back(std::move(entries[index]));
    return result;
}

NSArrayController::Body::Arrangement NSArrayController::Body::arrange(Sorted sorted, NSPredicate const& filter) const {
    std::vector<Entry>& entries = sorted.entries;
    IdentityPlaces awaited(m_identityKeyPath != nil, m_awaited.size());
    for (id const& identity : m_awaited)
        awaited.add(identity, 0);
    Arrangement result;
    result.arranged.reserve(entries.size());
    result.previousRows.reserve(entries.size());
    for (Entry& entry : entries) {
        if (filter != nil && !filter.evaluateWithObject_(entry.object)) {
            entry.row = NSNotFound;
            entry.isSelected = false;
            continue;
        }
        if (!m_awaited.empty() && awaited.take(entry.identity)) entry.isSelected = true;
        NSUInteger const row = static_cast<NSUInteger>(result.arranged.size());
        if (entry.isSelected) result.selectedRows.push_back(row);
        result.arranged.push_back(entry.object);
        result.previousRows.push_back(std::exchange(entry.row, row));
    }
    for (id const& identity : m_awaited) {
        if (awaited.take(identity)) result.stillAwaited.push_back(identity);
    }
    result.entries = std::move(sorted.entries);
    result.sortValues = std::move(sorted.values);
    return result;
}

void NSArrayController::Body::show(Arrangement arrangement, std::function<void()> const& changeFurther,
                                   std::span<char const* const> furtherKeys) {
    KeysChange change(self());
    change.with(furtherKeys).with(ArrangementKeys).with(SelectionKeys);
    changeFurther();
    m_entries = std::move(arrangement.entries);
    m_order.keep(std::move(arrangement.sortValues));
    m_previouslyArranged = m_arranged;
    m_arranged = NSArray::arrayWithVector(std::move(arrangement.arranged));
    m_previousRows = std::move(arrangement.previousRows);
    m_selectedRows = std::move(arrangement.selectedRows);
    m_awaited = std::move(arrangement.stillAwaited);
    change.tell();
}

void NSArrayController::Body::setContent(id const& content) {
    Arrangement arrangement = arrange(sorted(entriesOf(content), m_descriptors), m_filter);
    if (content == nil) {
        for (Entry const& entry : m_entries) {
            if (entry.isSelected) arrangement.stillAwaited.push_back(entry.identity);
        }
    }
    static constexpr char const* Key[]{"content"};
    show(
        std::move(arrangement), [&] { m_content = content; }, Key);
}

void NSArrayController::Body::rearrange() {
    show(arrange(sorted(m_entries, m_descriptors), m_filter), [] {}, {});
}

void NSArrayController::Body::setSortDescriptors(NSArray const& descriptors) {
    NSMutableArray const kept = NSMutableArray::array();
    for (id const& descriptor : descriptors) {
        if (descriptor.isKindOfClass_(classOf<NSSortDescriptor>())) kept.addObject_(descriptor);
    }
    static constexpr char const* Key[]{"sortDescriptors"};
    show(
        arrange(sorted(m_entries, kept), m_filter), [&] { m_descriptors = NSArray::arrayWithArray_(kept); }, Key);
}

void NSArrayController::Body::setFilterPredicate(NSPredicate const& predicate) {
    static constexpr char const* Key[]{"filterPredicate"};
    show(
        arrange({m_entries, m_order.values()}, predicate), [&] { m_filter = predicate; }, Key);
}

void NSArrayController::Body::setIdentityKeyPath(NSString const& keyPath) {
    m_identityKeyPath = uncheckedCast<NSString>(keyPath.copy());
    m_awaited.clear();
    for (Entry& entry : m_entries)
        entry.identity = makeEntry(entry.object).identity;
}

NSArray NSArrayController::Body::selectedObjects() const {
    std::vector<id> selected;
    selected.reserve(m_selectedRows.size());
    for (NSUInteger const row : m_selectedRows)
        selected.push_back(m_arranged.objectAtIndex_(row));
    return NSArray::arrayWithVector(std::move(selected));
}

bool NSArrayController::Body::setSelectedObjects(NSArray const& objects) {
    IdentityPlaces wanted(m_identityKeyPath != nil, objects.count());
    for (id const& object : objects)
        wanted.add(makeEntry(object).identity, 0);
    std::vector<NSUInteger> rows;
    for (Entry const& entry : m_entries) {
        if (entry.row != NSNotFound && wanted.take(entry.identity)) rows.push_back(entry.row);
    }
    if (rows.empty() && objects.count() > 0) return false;
    setSelectedRows(std::move(rows));
    return true;
}

void NSArrayController::Body::setSelectedRows(std::vector<NSUInteger> rows) {
    std::erase_if(rows, [&](NSUInteger row) { return row >= m_arranged.count(); });
    m_awaited.clear();
    if (rows == m_selectedRows) return;
    KeysChange change(self());
    change.with(SelectionKeys);
    m_selectedRows = std::move(rows);
    std::vector<bool> isSelected(m_arranged.count(), false);
    for (NSUInteger const row : m_selectedRows)
        isSelected[row] = true;
    for (Entry& entry : m_entries)
        entry.isSelected = entry.row != NSNotFound && isSelected[entry.row];
    change.tell();
}

void NSArrayController::Body::bind(id const& object, NSString const& keyPath) {
    m_binding.reset();
    m_boundObject = object;
    m_boundKeyPath = uncheckedCast<NSString>(keyPath.copy());
    m_binding = std::make_unique<KeyPathObserver>(object, m_boundKeyPath, [this] { readBinding(); });
    readBinding();
}

void NSArrayController::Body::readBinding() { setContent(m_boundObject.load().valueForKeyPath_(m_boundKeyPath)); }

} // namespace mac
