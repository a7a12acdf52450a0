#pragma once

#include "platform/applescript/runtime/ScriptValue.h"

namespace mac::applescript {

// The items of a list, one after the other in memory. Adding at either end takes constant time on the average.
class ValueList {
public:
    ValueList() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): the same items, ready to grow at both ends.
    ValueList(std::vector<Value> values) : m_slots(std::move(values)) {}

    auto begin() { return m_slots.begin() + m_first; }
    auto end() { return m_slots.end(); }
    auto begin() const { return m_slots.begin() + m_first; }
    auto end() const { return m_slots.end(); }
    auto rbegin() const { return m_slots.rbegin(); }
    auto rend() const { return m_slots.rend() - m_first; }
    std::size_t size() const { return m_slots.size() - static_cast<std::size_t>(m_first); }
    bool empty() const { return size() == 0; }
    Value& operator[](std::size_t place) { return m_slots[static_cast<std::size_t>(m_first) + place]; }
    Value const& operator[](std::size_t place) const { return m_slots[static_cast<std::size_t>(m_first) + place]; }
    Value const& front() const { return *begin(); }
    Value const& back() const { return m_slots.back(); }

    void reserve(std::size_t count) { m_slots.reserve(static_cast<std::size_t>(m_first) + count); }
    void push_back(Value value) { m_slots.push_back(std::move(value)); }
    void push_front(Value value);
    // `added` may be this list itself.
    void append(ValueList const& added);
    void prepend(ValueList const& added);

private:
    void makeRoomInFront(std::size_t count);

    std::vector<Value> m_slots;
    // The slots before it are free.
    std::ptrdiff_t m_first{0};
};

} // namespace mac::applescript
