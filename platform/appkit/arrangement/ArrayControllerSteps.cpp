#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/running/EventLoop.h"
#include <QThread>
#include <algorithm>
#include <numeric>
#include <utility>

// Another content, order or filter of an array controller, at once or in steps.

namespace mac {

namespace {

NSArray onlySortDescriptors(NSArray const& objects) {
    NSMutableArray const kept = NSMutableArray::array();
    for (id const& object : objects) {
        if (object.isKindOfClass_(classOf<NSSortDescriptor>())) kept.addObject_(object);
    }
    return NSArray::arrayWithArray_(kept);
}

std::size_t countOf(id const& content) {
    NSArray const array = as<NSArray>(content);
    return array == nil ? as<NSSet>(content).count() : array.count();
}

} // namespace

void NSArrayController::Body::setSortDescriptors(NSArray const& descriptors) {
    inTurn([this, descriptors] {
        change({.sortDescriptors = descriptors});
        while (m_upcoming && !advance()) {}
    });
}

void NSArrayController::Body::setFilterPredicate(NSPredicate const& predicate) {
    inTurn([this, predicate] {
        change({.filter = predicate});
        while (m_upcoming && !advance()) {}
    });
}

NSArray const& NSArrayController::Body::wantedSortDescriptors() const {
    bool const isUpcoming = m_upcoming && m_upcoming->criteria.sortDescriptors;
    return isUpcoming ? *m_upcoming->criteria.sortDescriptors : m_descriptors;
}

void NSArrayController::Body::changeInSteps(Criteria criteria) {
    inTurn([this, criteria = std::move(criteria)] {
        change(criteria);
        advanceNowAndLater();
    });
}

// What is under way begins anew with both.
void NSArrayController::Body::change(Criteria criteria) {
    Criteria whole = m_upcoming ? std::move(m_upcoming->criteria) : Criteria();
    if (criteria.sortDescriptors) whole.sortDescriptors = onlySortDescriptors(*criteria.sortDescriptors);
    if (criteria.filter) whole.filter = criteria.filter;
    if (!m_upcoming) m_upcoming = Upcoming{};
    m_upcoming->criteria = std::move(whole);
    beginAnew();
}

void NSArrayController::Body::changeContentInSteps(id const& content) {
    inTurn([this, content] { beginContent(content); });
}

void NSArrayController::Body::beginContent(id const& content) {
    bool const isLoopRunning = QThread::currentThread()->loopLevel() > 0;
    bool const isBothSelectedAndUnderWay = hasUpcomingContent() && !m_selectedRows.empty();
    if (!isLoopRunning || isBothSelectedAndUnderWay || countOf(content) <= RowsInStep) return replaceContent(content);
    if (hasUpcomingContent()) {
        if (m_nextContent) discard(*m_nextContent);
        m_nextContent = content;
        return;
    }
    if (!m_upcoming) m_upcoming = Upcoming{};
    m_upcoming->content = content;
    beginAnew();
    advanceNowAndLater();
    tellWhetherEmpty();
}

void NSArrayController::Body::hastenContent() {
    if (!hasUpcomingContent()) return;
    if (id const next = m_nextContent.value_or(nil); m_nextContent) return replaceContent(next);
    m_upcoming->isSelectionRenewed = false;
    advanceNowAndLater();
}

void NSArrayController::Body::tellWhetherEmpty() {
    if (m_entries.empty()) KeyChange const change(self(), "isEmpty");
}

void NSArrayController::Body::advanceNowAndLater() {
    if (m_upcoming && !advance()) advanceLater();
}

void NSArrayController::Body::advanceLater() {
    if (!m_steps) {
        m_steps = std::make_unique<QTimer>();
        QObject::connect(m_steps.get(), &QTimer::timeout, m_steps.get(), [this] { guarded([this] { takeStep(); }); });
    }
    m_steps->start();
}

void NSArrayController::Body::takeStep() {
    m_steps->stop();
    inTurn([this] { advanceNowAndLater(); });
}

bool NSArrayController::Body::advance() {
    bool const isArranged = arrangeSome();
    if (renewSelection() || !isArranged) return false;
    showUpcoming();
    return true;
}

// Reading an object may raise: then everything stays as it was, until the content that waits is shown.
bool NSArrayController::Body::arrangeSome() {
    try {
        return undisturbed([this] { return readContent() && readSortValues() && findOrder() && filterSome(); });
    } catch (...) {
        m_upcoming.reset();
        if (m_nextContent) {
            m_upcoming = Upcoming{.content = std::exchange(m_nextContent, std::nullopt)};
            advanceLater();
        }
        stopAwaitingUpcoming();
        tellWhetherEmpty();
        throw;
    }
}

std::vector<NSArrayController::Body::Entry> const& NSArrayController::Body::upcomingEntries() const {
    return m_upcoming->reading ? m_upcoming->reading->result().entries : m_entries;
}

bool NSArrayController::Body::readContent() {
    if (!m_upcoming->content) return true;
    if (!m_upcoming->reading)
        m_upcoming->reading.emplace(*m_upcoming->content, m_entries,
                                    ContentKeys{m_identityKeyPath, wantedSortDescriptors()});
    if (m_upcoming->reading->isDone()) return true;
    bool const isSelected = !m_selectedRows.empty();
    bool const isRead = m_upcoming->reading->advance(isSelected ? SIZE_MAX : RowsInStep);
    // Reading all is enough for one step.
    return isRead && !isSelected;
}

bool NSArrayController::Body::readSortValues() {
    if (m_upcoming->content || !m_upcoming->criteria.sortDescriptors) return true;
    SortValueReader const values(*m_upcoming->criteria.sortDescriptors);
    std::size_t const end = std::min(m_entries.size(), m_upcoming->read + RowsInStep);
    m_upcoming->sortValues.reserve(m_entries.size() * values.width());
    for (; m_upcoming->read < end; ++m_upcoming->read)
        values.append(m_upcoming->sortValues, m_entries[m_upcoming->read].object);
    return end == m_entries.size();
}

bool NSArrayController::Body::findOrder() {
    Upcoming& upcoming = *m_upcoming;
    if (upcoming.order) return true;
    NSArray const criteria = wantedSortDescriptors();
    bool const isOtherOrder = upcoming.criteria.sortDescriptors && criteria.count() > 0;
    if (!upcoming.ordering && !isOtherOrder) upcoming.order = orderWithoutSorting();
    if (upcoming.order) return true;
    std::vector<id> const& values = upcoming.reading ? upcoming.reading->result().sortValues : upcoming.sortValues;
    if (!upcoming.ordering) upcoming.ordering = std::make_unique<RowOrdering>(values, criteria);
    if (!upcoming.ordering->advance(RowsInStep)) return false;
    upcoming.order = upcoming.ordering->order();
    return true;
}

std::optional<std::vector<std::size_t>> NSArrayController::Body::orderWithoutSorting() const {
    if (m_upcoming->reading && wantedSortDescriptors().count() > 0) {
        ContentEntries const& content = m_upcoming->reading->result();
        return m_order.orderWithoutSorting(content.sortValues, content.formerPlaces, m_descriptors);
    }
    std::vector<std::size_t> order(upcomingEntries().size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

bool NSArrayController::Body::filterSome() {
    NSPredicate const filter = m_upcoming->criteria.filter.value_or(m_filter);
    std::vector<Entry> const& entries = upcomingEntries();
    std::vector<bool>& passes = m_upcoming->passes;
    std::size_t const end = std::min(entries.size(), passes.size() + RowsInStep);
    while (passes.size() < end)
        passes.push_back(filter == nil || filter.evaluateWithObject_(entries[passes.size()].object));
    return end == entries.size();
}

NSArrayController::Body::Sorted NSArrayController::Body::sorted(Upcoming& upcoming) const {
    bool const isOtherOrder = upcoming.criteria.sortDescriptors.has_value();
    std::size_t const width = upcoming.criteria.sortDescriptors.value_or(m_descriptors).count();
    Sorted result;
    result.entries.reserve(upcoming.order->size());
    if (!upcoming.reading) {
        for (std::size_t const index : *upcoming.order)
            result.entries.push_back(m_entries[index]);
        result.values = isOtherOrder ? KeptOrder::valuesInOrder(std::move(upcoming.sortValues), *upcoming.order, width)
                                     : m_order.values();
        return result;
    }
    ContentEntries content = std::move(upcoming.reading->result());
    takeOverRows(content);
    for (std::size_t const index : *upcoming.order)
        result.entries.push_back(std::move(content.entries[index]));
    result.values = KeptOrder::valuesInOrder(std::move(content.sortValues), *upcoming.order, width);
    return result;
}

void NSArrayController::Body::showUpcoming() {
    Upcoming upcoming = std::move(*m_upcoming);
    m_upcoming.reset();
    if (m_nextContent) m_upcoming = Upcoming{.content = std::exchange(m_nextContent, std::nullopt)};
    std::vector<char const*> keys;
    if (upcoming.content) keys.push_back("content");
    if (upcoming.criteria.sortDescriptors) keys.push_back("sortDescriptors");
    if (upcoming.criteria.filter) keys.push_back("filterPredicate");
    auto const passes = [&](std::size_t row, Entry const&) { return upcoming.passes[(*upcoming.order)[row]]; };
    show(
        undisturbed([&] { return arrange(sorted(upcoming), passes); }),
        [&] {
            m_content = upcoming.content.value_or(m_content);
            m_descriptors = upcoming.criteria.sortDescriptors.value_or(m_descriptors);
            m_filter = upcoming.criteria.filter.value_or(m_filter);
        },
        keys);
}

void NSArrayController::Body::beginAnew() {
    m_upcoming = Upcoming{.criteria = std::move(m_upcoming->criteria), .content = std::move(m_upcoming->content)};
}

void NSArrayController::Body::forgetUpcomingContent() {
    if (m_nextContent) discard(*std::exchange(m_nextContent, std::nullopt));
    if (!m_upcoming || !m_upcoming->content) return;
    id const content = *std::exchange(m_upcoming->content, std::nullopt);
    beginAnew();
    discard(content);
    if (!m_upcoming->criteria.sortDescriptors && !m_upcoming->criteria.filter) m_upcoming.reset();
}

// The last one goes first: the list before what it holds.
void NSArrayController::Body::discard(id const& content) {
    NSArray const objects = objectsOfContent(content);
    std::vector<id> discarded(objects.begin(), objects.end());
    discarded.push_back(content);
    m_discarded.add(std::move(discarded));
}

} // namespace mac
