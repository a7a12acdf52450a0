#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/objects/Method.h"
#include <algorithm>

namespace mac {

namespace {

void addAll(HashedEntries& entries, std::span<id const> objects) {
    entries.reserve(entries.count() + objects.size());
    for (id const& object : objects)
        entries.set(object, nil);
}

template <class Set>
Set setOf(std::span<id const> objects) {
    Set const set = adopt<Set>();
    addAll(bodyOf(set)->m_entries, objects);
    return set;
}

template <class Set>
Set setWithEntries(HashedEntries const& entries) {
    Set const set = adopt<Set>();
    bodyOf(set)->m_entries = entries.compact();
    return set;
}

} // namespace

std::vector<id> keysOf(HashedEntries const& entries) {
    std::vector<id> keys;
    keys.reserve(entries.count());
    for (HashedEntries::Entry const& entry : entries.entries()) {
        if (entry.key != nil) keys.push_back(entry.key);
    }
    return keys;
}

bool NSSet::Body::isEqual(id const& other) const {
    if (other.body() == this) return true;
    NSSet const set = as<NSSet>(other);
    ComparingStep const step;
    if (set == nil || set.count() != m_entries.count() || step.isTooDeep()) return false;
    return std::ranges::all_of(keysOf(m_entries), [&](id const& member) { return set.containsObject_(member); });
}

std::uint64_t NSSet::Body::hash() const {
    // A sum: the order of the members plays no part.
    std::uint64_t hash = m_entries.count();
    for (HashedEntries::Entry const& entry : m_entries.entries())
        hash += entry.key == nil ? 0 : entry.hash;
    return hash;
}

NSString NSSet::Body::description() const { return descriptionOfCollection(id::retain(const_cast<Body*>(this))); }

id NSSet::Body::copy() const {
    if (isKindOf(classOf<NSMutableSet>())) return setWithEntries<NSSet>(m_entries);
    return id::retain(const_cast<Body*>(this));
}

id NSSet::Body::mutableCopy() const { return setWithEntries<NSMutableSet>(m_entries); }

id NSSet::Body::valueForKey(NSString const& key) {
    if (isCollectionOperator(key)) return valueOfCollectionOperator(keysOf(m_entries), key);
    NSSet const values = adopt<NSSet>();
    bodyOf(values)->m_entries.reserve(m_entries.count());
    for (id const& member : keysOf(m_entries)) {
        id const value = member.valueForKey_(key);
        if (value != nil) bodyOf(values)->m_entries.set(value, nil);
    }
    return values;
}

void NSSet::Body::setValueForKey(id const& value, NSString const& key) {
    for (id const& member : keysOf(m_entries))
        member.setValue_forKey_(value, key);
}

id NSSet::Body::valueForKeyPath(NSString const& keyPath) {
    return isCollectionOperator(keyPath) ? valueOfCollectionOperator(keysOf(m_entries), keyPath)
                                         : ObjectBody::valueForKeyPath(keyPath);
}

void NSSet::Body::setValueForKeyPath(id const& value, NSString const& keyPath) {
    for (id const& member : keysOf(m_entries))
        member.setValue_forKeyPath_(value, keyPath);
}

ClassDescription NSSet::describeClass() {
    return {
        .name = "NSSet",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSSet>,
        .methods =
            {
                method<&NSSet::count>("count"),
                method<&NSSet::containsObject_>("containsObject:"),
                method<&NSSet::anyObject>("anyObject"),
                method<&NSSet::allObjects>("allObjects"),
                method<&NSSet::objectEnumerator>("objectEnumerator"),
                method<&NSSet::member_>("member:"),
                method<&NSSet::isEqualToSet_>("isEqualToSet:"),
                method<&NSSet::isSubsetOfSet_>("isSubsetOfSet:"),
                method<&NSSet::intersectsSet_>("intersectsSet:"),
            },
    };
}

NSSet NSSet::set() { return adopt<NSSet>(); }

NSSet NSSet::setWithObject_(id const& object) { return setOf<NSSet>(NSArray::arrayWithObject_(object).objects()); }

NSSet NSSet::setWithObjects_(std::initializer_list<id> objects) {
    return setWithArray_(NSArray::arrayWithObjects_(objects));
}

NSSet NSSet::setWithArray_(NSArray const& array) { return setOf<NSSet>(array.objects()); }

NSSet NSSet::setWithSet_(NSSet const& other) {
    return other == nil ? set() : setWithEntries<NSSet>(bodyOf(other)->m_entries);
}

NSUInteger NSSet::count() const { return *this == nil ? 0 : static_cast<NSUInteger>(bodyOf(*this)->m_entries.count()); }

bool NSSet::containsObject_(id const& object) const {
    return *this != nil && bodyOf(*this)->m_entries.find(object) != nullptr;
}

id NSSet::member_(id const& object) const {
    HashedEntries::Entry const* const entry = *this == nil ? nullptr : bodyOf(*this)->m_entries.find(object);
    return entry ? entry->key : id();
}

id NSSet::anyObject() const {
    if (*this == nil) return nil;
    for (HashedEntries::Entry const& entry : bodyOf(*this)->m_entries.entries()) {
        if (entry.key != nil) return entry.key;
    }
    return nil;
}

NSArray NSSet::allObjects() const {
    return *this == nil ? NSArray() : NSArray::arrayWithVector(keysOf(bodyOf(*this)->m_entries));
}

bool NSSet::isEqualToSet_(NSSet const& other) const { return isEqual_(other); }

bool NSSet::isSubsetOfSet_(NSSet const& other) const {
    return *this != nil &&
           std::ranges::all_of(allObjects(), [&](id const& member) { return other.containsObject_(member); });
}

bool NSSet::intersectsSet_(NSSet const& other) const {
    return *this != nil &&
           std::ranges::any_of(allObjects(), [&](id const& member) { return other.containsObject_(member); });
}

ClassDescription NSMutableSet::describeClass() {
    return {
        .name = "NSMutableSet",
        .superclass = classOf<NSSet>(),
        .makeBody = &makeEmptyBody<NSMutableSet>,
        .methods =
            {
                method<&NSMutableSet::addObject_>("addObject:"),
                method<&NSMutableSet::removeObject_>("removeObject:"),
                method<&NSMutableSet::removeAllObjects>("removeAllObjects"),
                method<&NSMutableSet::addObjectsFromArray_>("addObjectsFromArray:"),
                method<&NSMutableSet::unionSet_>("unionSet:"),
                method<&NSMutableSet::minusSet_>("minusSet:"),
                method<&NSMutableSet::intersectSet_>("intersectSet:"),
                method<&NSMutableSet::setSet_>("setSet:"),
            },
    };
}

NSMutableSet NSMutableSet::set() { return adopt<NSMutableSet>(); }

NSMutableSet NSMutableSet::setWithCapacity_(NSUInteger) { return set(); }

NSMutableSet NSMutableSet::setWithArray_(NSArray const& array) { return setOf<NSMutableSet>(array.objects()); }

NSMutableSet NSMutableSet::setWithSet_(NSSet const& other) {
    return other == nil ? set() : setWithEntries<NSMutableSet>(bodyOf(other)->m_entries);
}

void NSMutableSet::addObject_(id const& object) const {
    if (*this == nil) return;
    requireObject(object, "Adding to a set");
    bodyOf(*this)->m_entries.set(object, nil);
}

void NSMutableSet::addObjectsFromArray_(NSArray const& array) const {
    if (*this != nil) addAll(bodyOf(*this)->m_entries, array.objects());
}

void NSMutableSet::removeObject_(id const& object) const {
    if (*this != nil) bodyOf(*this)->m_entries.remove(object);
}

void NSMutableSet::removeAllObjects() const {
    if (*this != nil) bodyOf(*this)->m_entries.clear();
}

void NSMutableSet::unionSet_(NSSet const& other) const { addObjectsFromArray_(other.allObjects()); }

void NSMutableSet::minusSet_(NSSet const& other) const {
    for (id const& member : other.allObjects())
        removeObject_(member);
}

void NSMutableSet::intersectSet_(NSSet const& other) const {
    for (id const& member : allObjects()) {
        if (!other.containsObject_(member)) removeObject_(member);
    }
}

void NSMutableSet::setSet_(NSSet const& other) const {
    NSArray const members = other.allObjects();
    removeAllObjects();
    addObjectsFromArray_(members);
}

} // namespace mac
