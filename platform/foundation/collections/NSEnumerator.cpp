#include "platform/foundation/collections/NSEnumerator.h"
#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/collections/EnumeratorBody.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

// Raises when a member of the collection came or went.
void requireUnchanged(bool isUnchanged, id const& collection) {
    if (isUnchanged) return;
    throw NSGenericException("The collection of class " + std::string(collection.class_().name()) +
                             " was mutated while being enumerated.");
}

NSEnumerator enumeratorOfArray(NSArray const& array, bool isReverse) {
    if (array == nil) return nil;
    return adopt<NSEnumerator>([array, isReverse, changes = bodyOf(array)->m_changes, count = array.count(),
                                given = NSUInteger{0}]() mutable -> id {
        if (given == count) return nil;
        std::span<id const> const objects = array.objects();
        requireUnchanged(bodyOf(array)->m_changes == changes && objects.size() == count, array);
        ++given;
        return objects[isReverse ? count - given : given - 1];
    });
}

// Removed entries keep their places until the table is made anew, and that is a change.
NSEnumerator enumeratorOfEntries(id const& collection, HashedEntries const& entries, id HashedEntries::Entry::*part) {
    return adopt<NSEnumerator>([collection, &entries, part, changes = entries.changes(), left = entries.count(),
                                place = std::size_t{0}]() mutable -> id {
        if (left == 0) return nil;
        requireUnchanged(entries.changes() == changes, collection);
        --left;
        while (entries.entries()[place].key == nil)
            ++place;
        return entries.entries()[place++].*part;
    });
}

} // namespace

ClassDescription NSEnumerator::describeClass() {
    return {
        .name = "NSEnumerator",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&NSEnumerator::nextObject>("nextObject"),
                method<&NSEnumerator::allObjects>("allObjects"),
            },
    };
}

id NSEnumerator::nextObject() const { return *this == nil ? id() : bodyOf(*this)->next(); }

NSArray NSEnumerator::allObjects() const {
    if (*this == nil) return nil;
    std::vector<id> rest;
    for (id object = nextObject(); object != nil; object = nextObject())
        rest.push_back(object);
    return NSArray::arrayWithVector(std::move(rest));
}

NSEnumerator NSArray::objectEnumerator() const { return enumeratorOfArray(*this, false); }

NSEnumerator NSArray::reverseObjectEnumerator() const { return enumeratorOfArray(*this, true); }

NSEnumerator NSSet::objectEnumerator() const {
    if (*this == nil) return nil;
    return enumeratorOfEntries(*this, bodyOf(*this)->m_entries, &HashedEntries::Entry::key);
}

NSEnumerator NSDictionary::keyEnumerator() const {
    if (*this == nil) return nil;
    return enumeratorOfEntries(*this, bodyOf(*this)->m_entries, &HashedEntries::Entry::key);
}

NSEnumerator NSDictionary::objectEnumerator() const {
    if (*this == nil) return nil;
    return enumeratorOfEntries(*this, bodyOf(*this)->m_entries, &HashedEntries::Entry::value);
}

} // namespace mac
