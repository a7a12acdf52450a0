#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/appkit/arrangement/IdentityPlaces.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include <algorithm>
#include <exception>
#include <optional>

namespace mac {

namespace {

constexpr char const* SelectionKeys[]{"selectedObjects", "selection",    "selectionIndex",
                                      "selectionCount",  "hasSelection", "hasSingleSelection"};
constexpr char const* ArrangementKeys[]{"arrangedObjects", "count", "contentCount", "isEmpty", "isFilteredToNothing"};

NSString keyNamed(char const* name) { return NSString::stringWithUTF8String_(name); }

// The change of several keys at once.
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
    // Everybody is told; answers the first exception of an observer.
    [[nodiscard]] std::exception_ptr tell() const {
        std::exception_ptr first;
        for (NSString const& key : m_keys) {
            try {
                m_object.didChangeValueForKey_(key);
            } catch (...) {
                if (!first) first = std::current_exception();
            }
        }
        return first;
    }

private:
    id m_object;
    std::vector<NSString> m_keys;
};

void raise(std::exception_ptr const& exception) {
    if (exception) std::rethrow_exception(exception);
}

} // namespace

void NSArrayController::Body::inTurn(std::function<void()> change) {
    m_waitingChanges.push_back(std::move(change));
    if (!m_isReading) makeWaitingChanges();
}

void NSArrayController::Body::makeWaitingChanges() {
    id const kept = self();
    std::exception_ptr first;
    while (!m_waitingChanges.empty()) {
        std::function<void()> const change = std::move(m_waitingChanges.front());
        m_waitingChanges.pop_front();
        try {
            change();
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    raise(first);
}

ContentEntries NSArrayController::Body::read(id const& content) const {
    ContentReading reading(content, m_entries, {m_identityKeyPath, m_descriptors});
    while (!reading.advance(SIZE_MAX)) {}
    ContentEntries result = std::move(reading.result());
    takeOverRows(result);
    return result;
}

ContentEntries NSArrayController::Body::readAnew() const {
    ContentEntries result{m_entries, std::vector<std::size_t>(m_entries.size(), KeptOrder::None), {}};
    SortValueReader const sortValues(m_descriptors);
    result.sortValues.reserve(result.entries.size() * sortValues.width());
    for (Entry const& entry : result.entries)
        sortValues.append(result.sortValues, entry.object);
    return result;
}

void NSArrayController::Body::takeOverRows(ContentEntries& content) const {
    for (std::size_t index = 0; index < content.entries.size(); ++index) {
        std::size_t const place = content.formerPlaces[index];
        if (place == KeptOrder::None) return;
        content.entries[index].row = m_entries[place].row;
        content.entries[index].isSelected = m_entries[place].isSelected;
    }
}

NSArrayController::Body::Sorted NSArrayController::Body::sorted(ContentEntries content) const {
    auto [order, values] = m_order.sort(std::move(content.sortValues), content.formerPlaces, m_descriptors);
    Sorted result{{}, std::move(values)};
    result.entries.reserve(content.entries.size());
    for (std::size_t const index : order)
        result.entries.push_back(std::move(content.entries[index]));
    return result;
}

NSArrayController::Body::Arrangement NSArrayController::Body::arrange(Sorted sorted) const {
    return arrange(std::move(sorted), [this](std::size_t, Entry const& entry) {
        return m_filter == nil || m_filter.evaluateWithObject_(entry.object);
    });
}

NSArrayController::Body::Arrangement
NSArrayController::Body::arrange(Sorted sorted, std::function<bool(std::size_t, Entry const&)> const& passes) const {
    std::vector<Entry>& entries = sorted.entries;
    // A selection that is made meanwhile ends the waiting.
    std::vector<id> const identities = m_awaited;
    IdentityPlaces awaited(m_identityKeyPath != nil, identities.size());
    for (id const& identity : identities)
        awaited.add(identity, 0);
    Arrangement result;
    result.arranged.reserve(entries.size());
    result.previousRows.reserve(entries.size());
    for (std::size_t index = 0; index < entries.size(); ++index) {
        Entry& entry = entries[index];
        if (!passes(index, entry)) {
            entry.row = NSNotFound;
            entry.isSelected = false;
            continue;
        }
        if (!identities.empty() && awaited.take(entry.identity)) entry.isSelected = true;
        NSUInteger const row = static_cast<NSUInteger>(result.arranged.size());
        if (entry.isSelected) result.selectedRows.push_back(row);
        result.arranged.push_back(entry.object);
        result.previousRows.push_back(std::exchange(entry.row, row));
    }
    for (id const& identity : identities) {
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
    id formerContent = m_content;
    changeFurther();
    std::vector<Entry> formerEntries = std::exchange(m_entries, std::move(arrangement.entries));
    std::vector<id> formerValues = m_order.keep(std::move(arrangement.sortValues));
    m_previouslyArranged = std::exchange(m_arranged, NSArray::arrayWithVector(std::move(arrangement.arranged)));
    m_previousRows = std::move(arrangement.previousRows);
    m_selectedRows = std::move(arrangement.selectedRows);
    gatherSelection();
    m_awaited = std::move(arrangement.stillAwaited);
    stopAwaitingUpcoming();
    // What is under way was read of what was shown before; whoever is told may run an event loop.
    if (m_upcoming) beginAnew();
    std::exception_ptr const raised = change.tell();
    m_previousRows.clear();

    // The last one goes first: the lists before what they hold.
    std::vector<id> discarded = std::move(formerValues);
    discarded.reserve(discarded.size() + 2 * formerEntries.size() + 2);
    for (Entry& entry : formerEntries)
        discarded.push_back(std::move(entry.identity));
    for (Entry& entry : formerEntries)
        discarded.push_back(std::move(entry.object));
    discarded.push_back(std::move(formerContent));
    discarded.push_back(std::exchange(m_previouslyArranged, nil));
    m_discarded.add(std::move(discarded));
    if (m_upcoming) advanceLater();
    // A selection that has come back may hold what the next content lacks.
    if (hasUpcomingContent() && !m_selectedRows.empty()) inTurn([this] { hastenContent(); });
    raise(raised);
}

void NSArrayController::Body::setContent(id const& content) {
    inTurn([this, content] { replaceContent(content); });
}

void NSArrayController::Body::replaceContent(id const& content) {
    Arrangement arrangement = undisturbed([&] { return arrange(sorted(read(content))); });
    forgetUpcomingContent();
    if (content == nil) {
        m_awaitsUpcoming = false;
        for (Entry const& entry : m_entries) {
            if (entry.isSelected) arrangement.stillAwaited.push_back(entry.identity);
        }
    }
    static constexpr char const* keys[]{"content"};
    show(
        std::move(arrangement), [&] { m_content = content; }, keys);
}

void NSArrayController::Body::rearrange() {
    inTurn([this] { show(undisturbed([this] { return arrange(sorted(readAnew())); }), [] {}, {}); });
}

void NSArrayController::Body::setIdentityKeyPath(NSString const& keyPath) {
    inTurn([this, copied = uncheckedCast<NSString>(keyPath.copy())] {
        m_identityKeyPath = copied;
        m_awaited.clear();
        undisturbed([this] {
            for (Entry& entry : m_entries)
                entry.identity = entryOf(entry.object, m_identityKeyPath).identity;
        });
    });
}

void NSArrayController::Body::gatherSelection() {
    std::vector<id> selected;
    selected.reserve(m_selectedRows.size());
    for (Entry const& entry : m_entries) {
        if (selected.size() == m_selectedRows.size()) break;
        if (entry.isSelected) selected.push_back(entry.object);
    }
    m_selected = NSArray::arrayWithVector(std::move(selected));
}

bool NSArrayController::Body::setSelectedObjects(NSArray const& objects) {
    std::vector<NSUInteger> rows = undisturbed([&] { return rowsOfObjects(objects); });
    bool const isAnyThere = !rows.empty() || objects.count() == 0;
    if (isAnyThere) setSelectedRows(std::move(rows));
    if (!isAnyThere && hasUpcomingContent()) awaitIdentities(objects);
    if (!m_isReading) makeWaitingChanges();
    return isAnyThere;
}

void NSArrayController::Body::awaitIdentities(NSArray const& objects) {
    std::vector<id> identities = undisturbed([&] {
        std::vector<id> read;
        for (id const& object : objects)
            read.push_back(entryOf(object, m_identityKeyPath).identity);
        return read;
    });
    m_awaited = std::move(identities);
    m_awaitsUpcoming = true;
}

void NSArrayController::Body::stopAwaitingUpcoming() {
    if (!m_awaitsUpcoming || hasUpcomingContent()) return;
    m_awaitsUpcoming = false;
    m_awaited.clear();
}

std::vector<NSUInteger> NSArrayController::Body::rowsOfObjects(NSArray const& objects) const {
    IdentityPlaces wanted(m_identityKeyPath != nil, objects.count());
    for (id const& object : objects)
        wanted.add(entryOf(object, m_identityKeyPath).identity, 0);
    std::vector<NSUInteger> rows;
    for (Entry const& entry : m_entries) {
        if (entry.row != NSNotFound && wanted.take(entry.identity)) rows.push_back(entry.row);
    }
    return rows;
}

void NSArrayController::Body::setSelectedRows(std::vector<NSUInteger> rows) {
    std::erase_if(rows, [&](NSUInteger row) { return row >= m_arranged.count(); });
    m_awaited.clear();
    m_awaitsUpcoming = false;
    if (rows == m_selectedRows) return;
    KeysChange change(self());
    change.with(SelectionKeys);
    m_selectedRows = std::move(rows);
    std::vector<bool> isSelected(m_arranged.count(), false);
    for (NSUInteger const row : m_selectedRows)
        isSelected[row] = true;
    for (Entry& entry : m_entries)
        entry.isSelected = entry.row != NSNotFound && isSelected[entry.row];
    gatherSelection();
    std::exception_ptr const raised = change.tell();
    if (!m_selectedRows.empty() && hasUpcomingContent()) inTurn([this] { hastenContent(); });
    raise(raised);
}

bool NSArrayController::Body::renewSelection() {
    bool const isRead = m_upcoming && m_upcoming->reading && m_upcoming->reading->isDone();
    bool const isDue = isRead && !m_selectedRows.empty() && !m_upcoming->isSelectionRenewed;
    if (!isDue) return false;
    KeysChange change(self());
    change.with(SelectionKeys);
    m_upcoming->isSelectionRenewed = true;
    ContentEntries const& content = m_upcoming->reading->result();
    m_selectedRows.clear();
    for (std::size_t place = 0; place < m_entries.size(); ++place) {
        Entry& entry = m_entries[place];
        if (!entry.isSelected) continue;
        auto const found = std::ranges::lower_bound(content.formerPlaces, place);
        entry.isSelected = found != content.formerPlaces.end() && *found == place;
        if (!entry.isSelected) continue;
        entry.object = content.entries[static_cast<std::size_t>(found - content.formerPlaces.begin())].object;
        m_selectedRows.push_back(entry.row);
    }
    gatherSelection();
    std::exception_ptr const raised = change.tell();
    if (raised && m_upcoming) advanceLater();
    raise(raised);
    return true;
}

void NSArrayController::Body::bind(id const& object, NSString const& keyPath) {
    m_binding.reset();
    m_boundObject = object;
    m_boundKeyPath = uncheckedCast<NSString>(keyPath.copy());
    m_binding = std::make_unique<KeyPathObserver>(object, m_boundKeyPath, [this] { readBinding(); });
    readBinding();
}

void NSArrayController::Body::readBinding() {
    changeContentInSteps(m_boundObject.load().valueForKeyPath_(m_boundKeyPath));
}

} // namespace mac
