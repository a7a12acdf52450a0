#include "platform/appkit/arrangement/ContentReading.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/objects/Exceptions.h"
#include <algorithm>

namespace mac {

NSArray objectsOfContent(id const& content) {
    if (content == nil) return NSArray::array();
    if (content.isKindOfClass_(classOf<NSSet>())) return as<NSSet>(content).allObjects();
    if (content.isKindOfClass_(classOf<NSArray>())) return NSArray::arrayWithArray_(as<NSArray>(content));
    throw NSInvalidArgumentException("The content of an array controller must be an array or a set, not " +
                                     std::string(content.class_().name()));
}

ArrangedEntry entryOf(id const& object, NSString const& identityKeyPath) {
    return {object, identityKeyPath == nil ? object : valueOfKeyPath(object, identityKeyPath)};
}

// Nothing is known again in an empty content.
ContentReading::ContentReading(id const& content, std::span<ArrangedEntry const> former, ContentKeys const& keys)
    : m_objects(objectsOfContent(content)),
      m_former(m_objects.count() == 0 ? std::span<ArrangedEntry const>() : former),
      m_identityKeyPath(keys.identityKeyPath), m_sortValueReader(keys.sortDescriptors),
      m_places(keys.identityKeyPath != nil, m_former.size()), m_indexAtPlace(m_former.size(), KeptOrder::None) {
    m_entries.reserve(m_objects.count());
    m_sortValues.reserve(m_objects.count() * m_sortValueReader.width());
}

bool ContentReading::advance(std::size_t objects) {
    if (m_isGathered) return true;
    if (m_indexed < m_former.size()) {
        std::size_t const before = m_indexed;
        index(objects);
        objects -= m_indexed - before;
    }
    if (m_indexed < m_former.size()) return false;
    read(objects);
    if (m_entries.size() < m_objects.count()) return false;
    gather();
    return true;
}

void ContentReading::index(std::size_t most) {
    std::size_t const end = m_indexed + std::min(most, m_former.size() - m_indexed);
    for (; m_indexed < end; ++m_indexed)
        m_places.add(m_former[m_indexed].identity, m_indexed);
}

// Everything is read of an object while it is at hand: looking at each once more is what costs.
void ContentReading::read(std::size_t most) {
    std::size_t const end = m_entries.size() + std::min<std::size_t>(most, m_objects.count() - m_entries.size());
    id const* const objects = m_objects.begin();
    while (m_entries.size() < end) {
        std::size_t const index = m_entries.size();
        ArrangedEntry entry = entryOf(objects[index], m_identityKeyPath);
        m_sortValueReader.append(m_sortValues, entry.object);
        if (std::optional<std::size_t> const place = m_places.take(entry.identity))
            m_indexAtPlace[*place] = index;
        else
            m_added.push_back(index);
        m_entries.push_back(std::move(entry));
    }
}

void ContentReading::gather() {
    m_isGathered = true;
    m_result.entries.reserve(m_entries.size());
    m_result.formerPlaces.reserve(m_entries.size());
    m_result.sortValues.reserve(m_sortValues.size());
    for (std::size_t place = 0; place < m_indexAtPlace.size(); ++place) {
        if (m_indexAtPlace[place] != KeptOrder::None) take(m_indexAtPlace[place], place);
    }
    for (std::size_t const index : m_added)
        take(index, KeptOrder::None);
    // What is no longer needed is freed now, and not together with all the rest.
    m_places = IdentityPlaces(false, 0);
    m_objects = nil;
    m_entries.clear();
    m_sortValues.clear();
}

void ContentReading::take(std::size_t index, std::size_t formerPlace) {
    m_result.entries.push_back(std::move(m_entries[index]));
    m_result.formerPlaces.push_back(formerPlace);
    std::size_t const width = m_sortValueReader.width();
    for (std::size_t i = 0; i < width; ++i)
        m_result.sortValues.push_back(std::move(m_sortValues[index * width + i]));
}

} // namespace mac
