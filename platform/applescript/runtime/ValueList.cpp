#include "platform/applescript/runtime/ValueList.h"
#include <algorithm>

namespace mac::applescript {

// At least as many slots as there are items, so that the items move rarely.
void ValueList::makeRoomInFront(std::size_t count) {
    if (static_cast<std::size_t>(m_first) >= count) return;
    std::size_t const room = std::max({count, size(), std::size_t{8}});
    std::vector<Value> slots(room);
    slots.reserve(room + size());
    std::move(begin(), end(), std::back_inserter(slots));
    m_slots = std::move(slots);
    m_first = static_cast<std::ptrdiff_t>(room);
}

void ValueList::push_front(Value value) {
    makeRoomInFront(1);
    m_slots[static_cast<std::size_t>(--m_first)] = std::move(value);
}

void ValueList::append(ValueList const& added) {
    std::size_t const count = added.size();
    if (m_slots.capacity() < m_slots.size() + count)
        m_slots.reserve(std::max(m_slots.size() + count, m_slots.capacity() * 2));
    for (std::size_t place = 0; place < count; ++place)
        m_slots.push_back(added[place]);
}

void ValueList::prepend(ValueList const& added) {
    ValueList const items = added;
    makeRoomInFront(items.size());
    m_first -= static_cast<std::ptrdiff_t>(items.size());
    std::copy(items.begin(), items.end(), begin());
}

} // namespace mac::applescript
