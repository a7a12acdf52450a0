#pragma once

#include "platform/foundation/text/StringBody.h"
#include <algorithm>
#include <vector>

namespace mac {

// Spreads a hash over all 64 bits, so that values that differ in few bits (small numbers, pointers) lie far apart.
inline std::uint64_t spreadHash(std::uint64_t hash) {
    hash = (hash ^ hash >> 33) * 0xFF51AFD7ED558CCDU;
    hash = (hash ^ hash >> 33) * 0xC4CEB9FE1A85EC53U;
    return hash ^ hash >> 33;
}

// For hashes of contents: the order of the parts matters.
inline std::uint64_t combineHashes(std::uint64_t seed, std::uint64_t hash) {
    return spreadHash(seed ^ (hash + 0x9E3779B97F4A7C15U));
}

// The table behind sets and dictionaries: entries in the order of their insertion, found by the key's hash and
// equality. Few of them, as in a record, are looked through, which costs less memory and time than slots. What it drops
// is released only when the table is whole again, since a dying object may look at the collection it was in.
class HashedEntries {
public:
    struct Entry {
        std::uint64_t hash;
        // Nil for an entry that was removed; its place is given up when the table is made anew.
        id key;
        id value;
    };

    std::size_t count() const { return m_count; }
    // Grows whenever an entry comes or goes.
    std::uint32_t changes() const { return m_changes; }
    // With the places of removed entries among them.
    std::vector<Entry> const& entries() const { return m_entries; }

    Entry const* find(id const& key) const {
        return m_count == 0 || key == nil ? nullptr : find(key, spreadHash(key.hash()));
    }

    // Sets the value of a key that is there, or appends the entry; true when it was appended.
    bool set(id const& key, id const& value) {
        std::uint64_t const hash = spreadHash(key.hash());
        if (Entry const* const existing = m_count == 0 ? nullptr : find(key, hash)) {
            m_entries[indexOf(existing)].value = value;
            return false;
        }
        append({hash, key, value});
        return true;
    }

    // For entries of another table, whose keys differ from each other and from those here.
    void append(Entry entry) {
        reserve(m_entries.size() + 1);
        m_entries.push_back(std::move(entry));
        if (!m_slots.empty()) place(m_entries.back().hash, m_entries.size() - 1);
        ++m_count;
        ++m_changes;
    }

    void remove(id const& key) {
        Entry const* const existing = find(key);
        if (!existing) return;
        Entry& entry = m_entries[indexOf(existing)];
        id const keptKey = std::exchange(entry.key, id());
        id const keptValue = std::exchange(entry.value, id());
        --m_count;
        ++m_changes;
        if (m_count * 2 < m_entries.size()) rebuild(m_entries.size());
    }

    void clear() {
        HashedEntries dropped;
        std::swap(*this, dropped);
        m_changes = dropped.m_changes + 1;
    }

    // A table of the entries alone, without the places of removed ones.
    HashedEntries compact() const {
        HashedEntries copy;
        if (m_count == m_entries.size()) {
            copy.m_entries = m_entries;
            copy.m_slots = m_slots;
            copy.m_mask = m_mask;
            copy.m_count = m_count;
            copy.m_changes = static_cast<std::uint32_t>(m_count);
            return copy;
        }
        copy.m_entries.reserve(m_count);
        copy.reserve(m_count);
        for (Entry const& entry : m_entries) {
            if (entry.key != nil) copy.append(entry);
        }
        return copy;
    }

    void reserve(std::size_t count) {
        if (count > MostWithoutSlots && count * 2 > m_slots.size()) rebuild(count * 2);
    }

private:
    static constexpr std::uint32_t Free = 0xFFFFFFFF;
    static constexpr std::size_t MostWithoutSlots = 8;

    static bool isString(id const& object) { return object.isMemberOfClass_(classOf<NSString>()); }

    static bool isFor(Entry const& entry, id const& key, std::uint64_t hash) {
        if (entry.hash != hash || entry.key == nil) return false;
        if (isSame(entry.key, key)) return true;
        // Comparing strings calls nothing that could drop the entry.
        if (isString(entry.key) && isString(key))
            return areSameUnits(static_cast<NSString::Body const*>(entry.key.body())->units(),
                                static_cast<NSString::Body const*>(key.body())->units());
        // Held, since the comparison may drop the entry.
        id const held = entry.key;
        return held.isEqual_(key);
    }

    Entry const* find(id const& key, std::uint64_t hash) const {
        if (m_slots.empty()) return findWithoutSlots(key, hash);
        // At most half of the slots are taken, so that there is a free one to end at.
        for (std::size_t slot = hash & m_mask;; slot = (slot + 1) & m_mask) {
            std::uint32_t const index = m_slots[slot];
            if (index == Free) return nullptr;
            std::uint32_t const changesBefore = m_changes;
            bool const isFound = isFor(m_entries[index], key, hash);
            // The comparison changed the table under us.
            if (m_changes != changesBefore) return findWithoutSlots(key, hash);
            if (isFound) return &m_entries[index];
        }
    }

    Entry const* findWithoutSlots(id const& key, std::uint64_t hash) const {
        // By index, since a comparison may change the table.
        std::size_t index = 0;
        while (index < m_entries.size() && !isFor(m_entries[index], key, hash))
            ++index;
        return index < m_entries.size() ? &m_entries[index] : nullptr;
    }

    std::size_t indexOf(Entry const* entry) const { return static_cast<std::size_t>(entry - m_entries.data()); }

    void place(std::uint64_t hash, std::size_t index) {
        std::size_t slot = hash & m_mask;
        while (m_slots[slot] != Free)
            slot = (slot + 1) & m_mask;
        m_slots[slot] = static_cast<std::uint32_t>(index);
    }

    void rebuild(std::size_t room) {
        auto const isGone = [](Entry const& entry) { return entry.key == nil; };
        if (room <= MostWithoutSlots) {
            std::erase_if(m_entries, isGone);
            m_slots.clear();
            return;
        }
        std::size_t count = 8;
        while (count < room * 2)
            count *= 2;
        std::vector<std::uint32_t> slots(count, Free);
        std::erase_if(m_entries, isGone);
        m_slots.swap(slots);
        m_mask = count - 1;
        for (std::size_t index = 0; index < m_entries.size(); ++index)
            place(m_entries[index].hash, index);
    }

    // What a look-up in a small table needs comes first, so that it lies together in memory.
    std::vector<Entry> m_entries;
    std::size_t m_count{0};
    std::vector<std::uint32_t> m_slots;
    std::size_t m_mask{0};
    std::uint32_t m_changes{0};
};

} // namespace mac
