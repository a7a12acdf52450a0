#include "platform/foundation/CollectionBodies.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSArray.h"
#include <algorithm>
#include <iterator>

namespace mac {

namespace {

void requireIndex(NSUInteger index, std::size_t count) {
    if (index >= count)
        throw NSRangeException("Index " + std::to_string(index) + " is beyond the " + std::to_string(count) +
                               " objects of the array");
}

// What isUnwanted asks, and what goes, may look at the array meanwhile: it changes in one step.
template <class Predicate>
void removeWhere(NSMutableArray const& array, Predicate const& isUnwanted) {
    std::vector<id> const objects(array.begin(), array.end());
    std::vector<id> kept;
    kept.reserve(objects.size());
    std::ranges::remove_copy_if(objects, std::back_inserter(kept), isUnwanted);
    if (kept.size() != objects.size()) bodyOf(array)->replaceObjects(std::move(kept));
}

} // namespace

ClassDescription NSMutableArray::describeClass() {
    return {
        .name = "NSMutableArray",
        .superclass = classOf<NSArray>(),
        .makeBody = &makeEmptyBody<NSMutableArray>,
        .methods =
            {
                method<&NSMutableArray::addObject_>("addObject:"),
                method<&NSMutableArray::removeObject_>("removeObject:"),
                method<&NSMutableArray::removeAllObjects>("removeAllObjects"),
                method<&NSMutableArray::removeObjectAtIndex_>("removeObjectAtIndex:"),
                method<&NSMutableArray::insertObject_atIndex_>("insertObject:atIndex:"),
                method<&NSMutableArray::replaceObjectAtIndex_withObject_>("replaceObjectAtIndex:withObject:"),
                method<&NSMutableArray::addObjectsFromArray_>("addObjectsFromArray:"),
                method<&NSMutableArray::removeLastObject>("removeLastObject"),
                method<&NSMutableArray::removeObjectsInArray_>("removeObjectsInArray:"),
            },
    };
}

NSMutableArray NSMutableArray::array() { return adopt<NSMutableArray>(); }

NSMutableArray NSMutableArray::arrayWithCapacity_(NSUInteger capacity) {
    NSMutableArray const made = array();
    // A hint that comes from outside must not take memory by itself.
    constexpr NSUInteger largestHint = 1U << 20;
    bodyOf(made)->m_objects.reserve(std::min(capacity, largestHint));
    return made;
}

NSMutableArray NSMutableArray::arrayWithArray_(NSArray const& other) {
    return adopt<NSMutableArray>(std::vector<id>(other.begin(), other.end()));
}

NSMutableArray NSMutableArray::arrayWithObjects_(std::initializer_list<id> objects) {
    return arrayWithArray_(NSArray::arrayWithObjects_(objects));
}

void NSMutableArray::addObject_(id const& object) const {
    if (*this == nil) return;
    requireObject(object, "Adding to an array");
    bodyOf(*this)->m_objects.push_back(object);
}

void NSMutableArray::addObjectsFromArray_(NSArray const& other) const {
    if (*this == nil) return;
    // A copy first: the other may be this one.
    std::vector<id> const added(other.begin(), other.end());
    std::vector<id>& objects = bodyOf(*this)->m_objects;
    objects.insert(objects.end(), added.begin(), added.end());
}

void NSMutableArray::insertObject_atIndex_(id const& object, NSUInteger index) const {
    if (*this == nil) return;
    requireObject(object, "Inserting into an array");
    std::vector<id>& objects = bodyOf(*this)->m_objects;
    if (index > objects.size())
        throw NSRangeException("Index " + std::to_string(index) + " to insert at is beyond the end of the array, " +
                               std::to_string(objects.size()));
    objects.insert(objects.begin() + index, object);
}

void NSMutableArray::replaceObjectAtIndex_withObject_(NSUInteger index, id const& object) const {
    if (*this == nil) return;
    requireObject(object, "Replacing in an array");
    std::vector<id>& objects = bodyOf(*this)->m_objects;
    requireIndex(index, objects.size());
    id replaced = object;
    std::swap(objects[index], replaced);
}

void NSMutableArray::removeObjectAtIndex_(NSUInteger index) const {
    if (*this == nil) return;
    std::vector<id>& objects = bodyOf(*this)->m_objects;
    requireIndex(index, objects.size());
    id const removed = std::exchange(objects[index], id());
    objects.erase(objects.begin() + index);
}

void NSMutableArray::removeLastObject() const {
    if (*this == nil) return;
    std::vector<id>& objects = bodyOf(*this)->m_objects;
    if (objects.empty()) throw NSRangeException("There is no last object to remove from an empty array");
    id const removed = std::exchange(objects.back(), id());
    objects.pop_back();
}

void NSMutableArray::removeObject_(id const& object) const {
    if (*this == nil) return;
    id const kept = object;
    removeWhere(*this, [&](id const& member) { return isSameOrEqual(member, kept); });
}

void NSMutableArray::removeObjectIdenticalTo_(id const& object) const {
    if (*this == nil) return;
    id const kept = object;
    removeWhere(*this, [&](id const& member) { return isSame(member, kept); });
}

void NSMutableArray::removeObjectsInArray_(NSArray const& other) const {
    if (*this == nil) return;
    HashedEntries unwanted;
    unwanted.reserve(other.count());
    for (id const& object : other)
        unwanted.set(object, nil);
    removeWhere(*this, [&](id const& member) { return unwanted.find(member) != nullptr; });
}

void NSMutableArray::removeAllObjects() const {
    if (*this != nil) bodyOf(*this)->replaceObjects({});
}

void NSMutableArray::exchangeObjectAtIndex_withObjectAtIndex_(NSUInteger first, NSUInteger second) const {
    if (*this == nil) return;
    std::vector<id>& objects = bodyOf(*this)->m_objects;
    requireIndex(std::max(first, second), objects.size());
    std::swap(objects[first], objects[second]);
}

void NSMutableArray::setArray_(NSArray const& other) const {
    if (*this != nil) bodyOf(*this)->replaceObjects(std::vector<id>(other.begin(), other.end()));
}

} // namespace mac
