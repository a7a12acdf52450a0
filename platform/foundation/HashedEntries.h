#pragma once

#include "platform/foundation/Object.h"
#include <algorithm>
#include <vector>

namespace mac {

// The table behind sets and dictionaries: entries in the order of their insertion, found by the key's hash and equality.
class HashedEntries {
public:
    struct Entry {
        std::uint64_t hash;
        // Nil for an entry that was removed; its place is given up when the table is made anew.
        id key;
        id value;
    };

    std::size_t count() const { return m_count; }
    // With the places of removed entries among them.
    std::vector<Entry> const& entries() const { return m_entries; }

    Entry const* find(id const& key) const
    {
        if (m_count == 0 || key == nil)
            return nullptr;
        std::uint64_t const hash = mix(key.hash());
        for (std::size_t slot = hash & m_mask;; slot = (slot + 1) & m_mask) {
            if (m_slots[slot] == Free)
                return nullptr;
            Entry const& entry = m_entries[m_slots[slot]];
            if (entry.hash == hash && entry.key != nil && (isSame(entry.key, key) || entry.key.isEqual_(key)))
                return &entry;
        }
    }

    // Sets the value of a key that is there, or appends the entry; true when it was appended.
    bool set(id const& key, id const& value)
    {
        if (Entry const* const existing = find(key)) {
            m_entries[indexOf(existing)].value = value;
            return false;
        }
        reserve(m_entries.size() + 1);
        std::uint64_t const hash = mix(key.hash());
        place(hash, m_entries.size());
        m_entries.push_back({ hash, key, value });
        ++m_count;
        return true;
    }

    void remove(id const& key)
    {
        Entry const* const existing = find(key);
        if (!existing)
            return;
        Entry& entry = m_entries[indexOf(existing)];
        id const keptKey = std::exchange(entry.key, id());
        id const keptValue = std::exchange(entry.value, id());
        --m_count;
        if (m_count * 2 < m_entries.size())
            rebuild(m_entries.size());
    }

    void clear() { *this = HashedEntries(); }

    void reserve(std::size_t count)
    {
        if (count * 2 > m_slots.size())
            rebuild(std::max<std::size_t>(count, 4) * 2);
    }

private:
    static constexpr std::uint32_t Free = 0xFFFFFFFF;

    // Spreads hashes that differ in few bits (small numbers, pointers) over the table.
    static std::uint64_t mix(std::uint64_t hash)
    {
        hash ^= hash >> 32;
        hash *= 0x9E3779B97F4A7C15U;
        return hash ^ hash >> 29;
    }

    std::size_t indexOf(Entry const* entry) const { return static_cast<std::size_t>(entry - m_entries.data()); }

    void place(std::uint64_t hash, std::size_t index)
    {
        std::size_t slot = hash & m_mask;
        while (m_slots[slot] != Free)
            slot = (slot + 1) & m_mask;
        m_slots[slot] = static_cast<std::uint32_t>(index);
    }

    void rebuild(std::size_t room)
    {
        std::size_t slots = 8;
        while (slots < room * 2)
            slots *= 2;
        std::erase_if(m_entries, [](Entry const& entry) { return entry.key == nil; });
        m_slots.assign(slots, Free);
        m_mask = slots - 1;
        for (std::size_t index = 0; index < m_entries.size(); ++index)
            place(m_entries[index].hash, index);
    }

    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_slots;
    std::size_t m_mask { 0 };
    std::size_t m_count { 0 };
};

// For hashes of contents: the order of the parts matters.
inline std::uint64_t combineHashes(std::uint64_t seed, std::uint64_t hash)
{
    return (seed ^ hash) * 0x100000001B3U + (seed >> 31);
}

}
