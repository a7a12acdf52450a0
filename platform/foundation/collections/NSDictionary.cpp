#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

// The keys that records were given last. Records have the same few keys over and over: one object for each of them
// takes less memory, and it is at hand when a look-up goes through many records.
class RecentKeys {
public:
    // An equal key that was given before, else the key.
    static id sharedKey(id key) {
        constexpr NSUInteger longest = 32;
        if (s_areGone || !key.isMemberOfClass_(classOf<NSString>()) || uncheckedCast<NSString>(key).length() > longest)
            return key;
        thread_local RecentKeys keys;
        NSString& recent = keys.m_keys[spreadHash(key.hash()) % keys.m_keys.size()];
        if (!recent.isEqual_(key)) recent = uncheckedCast<NSString>(std::move(key));
        return recent;
    }

    ~RecentKeys() { s_areGone = true; }

private:
    // At the end of a thread dictionaries may still be changed.
    static thread_local bool s_areGone;
    std::array<NSString, 64> m_keys;
};

thread_local bool RecentKeys::s_areGone = false;

void store(HashedEntries& entries, id const& key, id const& value) {
    if (value == nil) return entries.remove(key);
    // A key that is there stays; copying another one for it would be in vain.
    HashedEntries::Entry const* const existing = entries.find(key);
    id const kept = existing ? existing->key : RecentKeys::sharedKey(key.copy());
    entries.set(kept, value);
}

// Observers of a dictionary see each key that is set, however it is set. Without observers this costs nothing.
void change(NSMutableDictionary const& dictionary, id const& key, id const& value) {
    HashedEntries& entries = bodyOf(dictionary)->m_entries;
    NSString const name = dictionary.body()->associationsIfAny() ? as<NSString>(key) : NSString();
    if (name == nil) {
        store(entries, key, value);
        return;
    }
    // Kept, since observers may change what they came from.
    NSString const keptKey = uncheckedCast<NSString>(name.copy());
    id const keptValue = value;
    KeyChange const observed(dictionary, keptKey);
    store(entries, keptKey, keptValue);
}

template <class Dictionary>
Dictionary dictionaryWithEntries(HashedEntries const& entries) {
    Dictionary const copy = adopt<Dictionary>();
    bodyOf(copy)->m_entries = entries.compact();
    return copy;
}

} // namespace

bool NSDictionary::Body::isEqual(id const& other) const {
    if (other.body() == this) return true;
    NSDictionary const dictionary = as<NSDictionary>(other);
    ComparingStep const step;
    if (dictionary == nil || dictionary.count() != m_entries.count() || step.isTooDeep()) return false;
    return std::ranges::all_of(m_entries.entries(), [&](HashedEntries::Entry const& entry) {
        if (entry.key == nil) return true;
        id const value = dictionary.objectForKey_(entry.key);
        return value != nil && isSameOrEqual(entry.value, value);
    });
}

std::uint64_t NSDictionary::Body::hash() const {
    std::uint64_t hash = m_entries.count();
    HashingStep const step;
    if (step.isTooDeep()) return hash;
    // A sum: the order of the entries plays no part.
    for (HashedEntries::Entry const& entry : m_entries.entries()) {
        if (entry.key != nil) hash += combineHashes(entry.hash, entry.value.hash());
    }
    return hash;
}

NSString NSDictionary::Body::description() const {
    return descriptionOfCollection(id::retain(const_cast<Body*>(this)));
}

id NSDictionary::Body::copy() const {
    if (isKindOf(classOf<NSMutableDictionary>())) return dictionaryWithEntries<NSDictionary>(m_entries);
    return id::retain(const_cast<Body*>(this));
}

id NSDictionary::Body::mutableCopy() const { return dictionaryWithEntries<NSMutableDictionary>(m_entries); }

id NSDictionary::Body::valueForKey(NSString const& key) {
    // "@count" asks the dictionary itself, as any other object.
    std::u16string_view const units = key.codeUnits();
    if (units.size() > 1 && units.front() == u'@') return ObjectBody::valueForKey(key.substringFromIndex_(1));
    HashedEntries::Entry const* const entry = m_entries.find(key);
    return entry ? entry->value : id();
}

void NSDictionary::Body::setValueForKey(id const& value, NSString const& key) {
    NSMutableDictionary const self = as<NSMutableDictionary>(id::retain(this));
    if (self == nil) {
        setValueForUndefinedKey(value, key);
        return;
    }
    requireObject(key, "Setting a key of a dictionary");
    change(self, key, value);
}

ClassDescription NSDictionary::describeClass() {
    return {
        .name = "NSDictionary",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSDictionary>,
        .methods =
            {
                method<&NSDictionary::count>("count"),
                method<&NSDictionary::objectForKey_>("objectForKey:"),
                method<&NSDictionary::allKeys>("allKeys"),
                method<&NSDictionary::allValues>("allValues"),
                method<&NSDictionary::allKeysForObject_>("allKeysForObject:"),
                method<&NSDictionary::keyEnumerator>("keyEnumerator"),
                method<&NSDictionary::objectEnumerator>("objectEnumerator"),
                method<&NSDictionary::isEqualToDictionary_>("isEqualToDictionary:"),
            },
    };
}

NSDictionary NSDictionary::dictionary() { return adopt<NSDictionary>(); }

NSDictionary NSDictionary::dictionaryWithObject_forKey_(id const& object, id const& key) {
    NSMutableDictionary const made = NSMutableDictionary::dictionary();
    made.setObject_forKey_(object, key);
    return uncheckedCast<NSDictionary>(made.copy());
}

NSDictionary NSDictionary::dictionaryWithObjectsAndKeys_(std::initializer_list<id> objectsAndKeys) {
    NSMutableDictionary const made = NSMutableDictionary::dictionary();
    for (auto const* pair = objectsAndKeys.begin(); pair != objectsAndKeys.end() && *pair != nil; pair += 2) {
        if (pair + 1 == objectsAndKeys.end())
            throw NSInvalidArgumentException("A dictionary of objects and keys: the last object has no key");
        made.setObject_forKey_(pair[0], pair[1]);
    }
    return uncheckedCast<NSDictionary>(made.copy());
}

NSDictionary NSDictionary::dictionaryWithObjects_forKeys_(NSArray const& objects, NSArray const& keys) {
    if (objects.count() != keys.count())
        throw NSInvalidArgumentException("A dictionary of objects and keys: their counts differ");
    NSMutableDictionary const made = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
    for (NSUInteger index = 0; index < keys.count(); ++index)
        made.setObject_forKey_(objects.objectAtIndex_(index), keys.objectAtIndex_(index));
    return uncheckedCast<NSDictionary>(made.copy());
}

NSDictionary NSDictionary::dictionaryWithDictionary_(NSDictionary const& other) {
    return other == nil ? dictionary() : dictionaryWithEntries<NSDictionary>(bodyOf(other)->m_entries);
}

NSUInteger NSDictionary::count() const {
    return *this == nil ? 0 : static_cast<NSUInteger>(bodyOf(*this)->m_entries.count());
}

id NSDictionary::objectForKey_(id const& key) const {
    HashedEntries::Entry const* const entry = *this == nil ? nullptr : bodyOf(*this)->m_entries.find(key);
    return entry ? entry->value : id();
}

NSArray NSDictionary::allKeys() const {
    return *this == nil ? NSArray() : NSArray::arrayWithVector(keysOf(bodyOf(*this)->m_entries));
}

NSArray NSDictionary::allValues() const {
    if (*this == nil) return nil;
    std::vector<id> values;
    values.reserve(count());
    for (HashedEntries::Entry const& entry : bodyOf(*this)->m_entries.entries()) {
        if (entry.key != nil) values.push_back(entry.value);
    }
    return NSArray::arrayWithVector(std::move(values));
}

NSArray NSDictionary::allKeysForObject_(id const& object) const {
    if (*this == nil) return nil;
    std::vector<id> keys;
    for (HashedEntries::Entry const& entry : bodyOf(*this)->m_entries.entries()) {
        if (entry.key != nil && isSameOrEqual(entry.value, object)) keys.push_back(entry.key);
    }
    return NSArray::arrayWithVector(std::move(keys));
}

bool NSDictionary::isEqualToDictionary_(NSDictionary const& other) const { return isEqual_(other); }

ClassDescription NSMutableDictionary::describeClass() {
    return {
        .name = "NSMutableDictionary",
        .superclass = classOf<NSDictionary>(),
        .makeBody = &makeEmptyBody<NSMutableDictionary>,
        .methods =
            {
                method<&NSMutableDictionary::setObject_forKey_>("setObject:forKey:"),
                method<&NSMutableDictionary::removeObjectForKey_>("removeObjectForKey:"),
                method<&NSMutableDictionary::removeObjectsForKeys_>("removeObjectsForKeys:"),
                method<&NSMutableDictionary::removeAllObjects>("removeAllObjects"),
                method<&NSMutableDictionary::addEntriesFromDictionary_>("addEntriesFromDictionary:"),
                method<&NSMutableDictionary::setDictionary_>("setDictionary:"),
            },
    };
}

NSMutableDictionary NSMutableDictionary::dictionary() { return adopt<NSMutableDictionary>(); }

NSMutableDictionary NSMutableDictionary::dictionaryWithCapacity_(NSUInteger) { return dictionary(); }

NSMutableDictionary NSMutableDictionary::dictionaryWithDictionary_(NSDictionary const& other) {
    return other == nil ? dictionary() : dictionaryWithEntries<NSMutableDictionary>(bodyOf(other)->m_entries);
}

void NSMutableDictionary::setObject_forKey_(id const& object, id const& key) const {
    if (*this == nil) return;
    requireObject(object, "Setting a key of a dictionary");
    requireObject(key, "Setting a key of a dictionary");
    change(*this, key, object);
}

void NSMutableDictionary::removeObjectForKey_(id const& key) const {
    if (*this == nil) return;
    requireObject(key, "Removing a key of a dictionary");
    change(*this, key, nil);
}

void NSMutableDictionary::removeObjectsForKeys_(NSArray const& keys) const {
    for (id const& key : keys)
        removeObjectForKey_(key);
}

void NSMutableDictionary::removeAllObjects() const {
    if (*this == nil) return;
    if (body()->associationsIfAny())
        removeObjectsForKeys_(allKeys());
    else
        bodyOf(*this)->m_entries.clear();
}

void NSMutableDictionary::addEntriesFromDictionary_(NSDictionary const& other) const {
    if (*this == nil || other == nil) return;
    // A copy first: the other may be this one, and observers may change it.
    HashedEntries const added = bodyOf(other)->m_entries.compact();
    for (HashedEntries::Entry const& entry : added.entries())
        change(*this, entry.key, entry.value);
}

void NSMutableDictionary::setDictionary_(NSDictionary const& other) const {
    NSDictionary const entries = NSDictionary::dictionaryWithDictionary_(other);
    removeAllObjects();
    addEntriesFromDictionary_(entries);
}

} // namespace mac
