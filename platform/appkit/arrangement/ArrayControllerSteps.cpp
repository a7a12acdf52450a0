#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/running/EventLoop.h"
#include <algorithm>
#include <numeric>

// Another order or filter of an array controller, at once or in steps.

namespace mac {

namespace {

NSArray onlySortDescriptors(NSArray const& objects) {
    NSMutableArray const kept = NSMutableArray::array();
    for (id const& object : objects) {
        if (object.isKindOfClass_(classOf<NSSortDescriptor>())) kept.addObject_(object);
    }
    return NSArray::arrayWithArray_(kept);
}

} // namespace

void NSArrayController::Body::setSortDescriptors(NSArray const& descriptors) {
    change({.sortDescriptors = descriptors});
    while (m_upcoming && !advance()) {}
}

void NSArrayController::Body::setFilterPredicate(NSPredicate const& predicate) {
    change({.filter = predicate});
    while (m_upcoming && !advance()) {}
}

NSArray const& NSArrayController::Body::wantedSortDescriptors() const {
    bool const isUpcoming = m_upcoming && m_upcoming->criteria.sortDescriptors;
    return isUpcoming ? *m_upcoming->criteria.sortDescriptors : m_descriptors;
}

void NSArrayController::Body::changeInSteps(Criteria criteria) {
    change(std::move(criteria));
    if (!advance()) advanceLater();
}

// What is under way begins anew with both.
void NSArrayController::Body::change(Criteria criteria) {
    Criteria whole = m_upcoming ? std::move(m_upcoming->criteria) : Criteria();
    if (criteria.sortDescriptors) whole.sortDescriptors = onlySortDescriptors(*criteria.sortDescriptors);
    if (criteria.filter) whole.filter = criteria.filter;
    m_upcoming = Upcoming{.criteria = std::move(whole)};
}

void NSArrayController::Body::advanceLater() {
    if (!m_steps) {
        m_steps = std::make_unique<QTimer>();
        QObject::connect(m_steps.get(), &QTimer::timeout, m_steps.get(), [this] {
            guarded([this] {
                id const kept = self();
                m_steps->stop();
                if (m_upcoming && !advance()) advanceLater();
            });
        });
    }
    m_steps->start();
}

// Reading an object may raise: then everything stays as it was.
bool NSArrayController::Body::advance() {
    try {
        if (!readSortValues() || !filterSome()) return false;
    } catch (...) {
        m_upcoming.reset();
        throw;
    }
    showUpcoming();
    return true;
}

bool NSArrayController::Body::readSortValues() {
    if (!m_upcoming->criteria.sortDescriptors) return true;
    if (!m_upcoming->ordering) {
        SortValueReader const values(*m_upcoming->criteria.sortDescriptors);
        std::size_t const end = std::min(m_entries.size(), m_upcoming->read + RowsInStep);
        m_upcoming->sortValues.reserve(m_entries.size() * values.width());
        for (; m_upcoming->read < end; ++m_upcoming->read)
            values.append(m_upcoming->sortValues, m_entries[m_upcoming->read].object);
        if (end < m_entries.size()) return false;
        m_upcoming->ordering =
            std::make_unique<RowOrdering>(m_upcoming->sortValues, *m_upcoming->criteria.sortDescriptors);
    }
    return m_upcoming->ordering->advance(RowsInStep);
}

bool NSArrayController::Body::filterSome() {
    NSPredicate const filter = m_upcoming->criteria.filter.value_or(m_filter);
    std::vector<bool>& passes = m_upcoming->passes;
    std::size_t const end = std::min(m_entries.size(), passes.size() + RowsInStep);
    while (passes.size() < end)
        passes.push_back(filter == nil || filter.evaluateWithObject_(m_entries[passes.size()].object));
    return end == m_entries.size();
}

void NSArrayController::Body::showUpcoming() {
    Upcoming const upcoming = std::move(*m_upcoming);
    m_upcoming.reset();
    std::vector<std::size_t> order(m_entries.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    Sorted sorted{{}, m_order.values()};
    std::vector<char const*> keys;
    if (std::optional<NSArray> const& criteria = upcoming.criteria.sortDescriptors) {
        keys.push_back("sortDescriptors");
        std::size_t const width = criteria->count();
        if (width > 0) order = upcoming.ordering->order();
        sorted.values.clear();
        sorted.values.reserve(upcoming.sortValues.size());
        for (std::size_t const index : order) {
            for (std::size_t i = 0; i < width; ++i)
                sorted.values.push_back(upcoming.sortValues[index * width + i]);
        }
    }
    if (upcoming.criteria.filter) keys.push_back("filterPredicate");
    sorted.entries.reserve(m_entries.size());
    for (std::size_t const index : order)
        sorted.entries.push_back(m_entries[index]);
    auto const passes = [&](std::size_t row, Entry const&) { return upcoming.passes[order[row]]; };
    show(
        arrange(std::move(sorted), passes),
        [&] {
            m_descriptors = upcoming.criteria.sortDescriptors.value_or(m_descriptors);
            m_filter = upcoming.criteria.filter.value_or(m_filter);
        },
        keys);
}

} // namespace mac
