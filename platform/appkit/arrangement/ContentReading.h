#pragma once

#include "platform/appkit/arrangement/IdentityPlaces.h"
#include "platform/appkit/arrangement/KeptOrder.h"
#include "platform/foundation/objects/Types.h"
#include <optional>
#include <span>
#include <vector>

namespace mac {

// An object of an array controller's content; its row in arrangedObjects, NSNotFound when the filter keeps it out.
struct ArrangedEntry {
    id object;
    id identity;
    NSUInteger row{NSNotFound};
    bool isSelected{false};
};

// The objects of a new content, none of them selected or in a row yet. Those that were there before come first, in
// their old order.
struct ContentEntries {
    std::vector<ArrangedEntry> entries;
    // Where each stood before, KeptOrder::None for a new one.
    std::vector<std::size_t> formerPlaces;
    // One value for each criterion of the order, object after object.
    std::vector<id> sortValues;
};

// How an array controller's objects are known again and sorted.
struct ContentKeys {
    // Nil: an object is known by itself.
    NSString identityKeyPath;
    NSArray sortDescriptors;
};

// The entry of an object that has no row.
ArrangedEntry entryOf(id const& object, NSString const& identityKeyPath);

// Reads a new content, in parts that may be done at different times. The former entries outlive it and stay as they
// are. Reading an object may raise. Main thread.
class ContentReading {
public:
    // Raises NSInvalidArgumentException if the content is neither nil, an array nor a set.
    ContentReading(id const& content, std::span<ArrangedEntry const> former, ContentKeys const& keys);

    // Works on for about as long as reading so many objects takes. True when all is read.
    bool advance(std::size_t objects);
    bool isDone() const { return m_isGathered; }
    // What was read, once all is.
    ContentEntries& result() { return m_result; }
    ContentEntries const& result() const { return m_result; }

private:
    void index(std::size_t most);
    void read(std::size_t most);
    void gather();
    void take(std::size_t index, std::size_t formerPlace);

    NSArray m_objects;
    std::span<ArrangedEntry const> m_former;
    NSString m_identityKeyPath;
    SortValueReader m_sortValueReader;
    IdentityPlaces m_places;
    std::size_t m_indexed{0};
    // In the order of the content.
    std::vector<ArrangedEntry> m_entries;
    std::vector<id> m_sortValues;
    // By former place, the index of the object that has it now.
    std::vector<std::size_t> m_indexAtPlace;
    std::vector<std::size_t> m_added;
    bool m_isGathered{false};
    ContentEntries m_result;
};

// The objects of an array or a set, none of nil.
NSArray objectsOfContent(id const& content);

} // namespace mac
