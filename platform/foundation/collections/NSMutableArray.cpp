#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/objects/ArrayBehindKey.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include <algorithm>
#include <iterator>

namespace mac {

namespace {

void requireIndex(NSUInteger index, std::size_t count) {
    if (index >= count) raiseRange(index, count);
}

void requireIndexes(NSIndexSet const& indexes, std::size_t count) {
    if (indexes.count() > 0) requireIndex(indexes.lastIndex(), count);
}

// Every change of an array passes here: the function gets the objects to change, or raises. Where the array stands for
// one under a key, the indexes are the change's word to observers.
template <class Edit>
void change(NSMutableArray const& array, NSUInteger kind, NSIndexSet const& indexes, Edit const& edit) {
    NSArray::Body& body = *bodyOf(array);
    NSUInteger const counted = kind == NSKeyValueChangeReplacement ? 0 : 1;
    if (!body.m_source) {
        edit(body.m_objects);
        body.m_changes += counted;
        return;
    }
    // Observers may let go of it.
    id const kept = array;
    body.m_source->change(kind, indexes, edit);
    body.m_changes += counted;
}

// Avoids making an index set that no observer asks for.
template <class Edit>
void changeAt(NSMutableArray const& array, NSUInteger kind, NSRange range, Edit const& edit) {
    change(array, kind, bodyOf(array)->m_source ? NSIndexSet::indexSetWithIndexesInRange_(range) : NSIndexSet(), edit);
}

void replaceAll(NSMutableArray const& array, std::vector<id> objects) {
    // The old ones are released when the array holds the new ones already.
    change(array, NSKeyValueChangeSetting, nil, [&](std::vector<id>& all) { all.swap(objects); });
}

// What isUnwanted asks, and what goes, may look at the array meanwhile: it changes in one step.
template <class Predicate>
void removeWhere(NSMutableArray const& array, Predicate const& isUnwanted) {
    std::vector<id> const objects = copied(array.objects());
    NSMutableIndexSet const indexes = NSMutableIndexSet::indexSet();
    std::vector<id> kept;
    kept.reserve(objects.size());
    for (NSUInteger index = 0; index < objects.size(); ++index) {
        if (isUnwanted(objects[index]))
            indexes.addIndex_(index);
        else
            kept.push_back(objects[index]);
    }
    if (kept.size() == objects.size()) return;
    change(array, NSKeyValueChangeRemoval, indexes, [&](std::vector<id>& all) { all.swap(kept); });
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
                method<&NSMutableArray::insertObjects_atIndexes_>("insertObjects:atIndexes:"),
                method<&NSMutableArray::removeObjectsAtIndexes_>("removeObjectsAtIndexes:"),
                method<&NSMutableArray::replaceObjectsAtIndexes_withObjects_>("replaceObjectsAtIndexes:withObjects:"),
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
    return adopt<NSMutableArray>(copied(other.objects()));
}

NSMutableArray NSMutableArray::arrayWithObjects_(std::initializer_list<id> objects) {
    return arrayWithArray_(NSArray::arrayWithObjects_(objects));
}

void NSMutableArray::addObject_(id const& object) const {
    if (*this == nil) return;
    requireObject(object, "Adding to an array");
    if (bodyOf(*this)->m_source)
        insertObject_atIndex_(object, count());
    else
        changeAt(*this, NSKeyValueChangeInsertion, {}, [&](std::vector<id>& objects) { objects.push_back(object); });
}

void NSMutableArray::addObjectsFromArray_(NSArray const& other) const {
    if (*this == nil || other.count() == 0) return;
    // A copy first: the other may be this one.
    std::vector<id> const added = copied(other.objects());
    NSRange const range{count(), static_cast<NSUInteger>(added.size())};
    changeAt(*this, NSKeyValueChangeInsertion, range,
             [&](std::vector<id>& objects) { objects.insert(objects.end(), added.begin(), added.end()); });
}

void NSMutableArray::insertObject_atIndex_(id const& object, NSUInteger index) const {
    if (*this == nil) return;
    requireObject(object, "Inserting into an array");
    changeAt(*this, NSKeyValueChangeInsertion, {index, 1}, [&](std::vector<id>& objects) {
        if (index > objects.size())
            throw NSRangeException("Index " + std::to_string(index) + " to insert at is beyond the end of the array, " +
                                   std::to_string(objects.size()));
        objects.insert(objects.begin() + index, object);
    });
}

void NSMutableArray::insertObjects_atIndexes_(NSArray const& objects, NSIndexSet const& indexes) const {
    if (*this == nil) return;
    std::vector<id> const inserted = copied(objects.objects());
    if (inserted.size() != indexes.count())
        throw NSInvalidArgumentException("Inserting " + std::to_string(inserted.size()) + " objects at " +
                                         std::to_string(indexes.count()) + " indexes of an array");
    if (inserted.empty()) return;
    change(*this, NSKeyValueChangeInsertion, indexes, [&](std::vector<id>& all) {
        requireIndexes(indexes, all.size() + inserted.size());
        std::vector<id> result;
        result.reserve(all.size() + inserted.size());
        std::span<id const> old = all;
        std::span<id const> added = inserted;
        for (NSRange const range : indexes.ranges()) {
            std::size_t const before = range.location - result.size();
            std::ranges::copy(old.first(before), std::back_inserter(result));
            std::ranges::copy(added.first(range.length), std::back_inserter(result));
            old = old.subspan(before);
            added = added.subspan(range.length);
        }
        std::ranges::copy(old, std::back_inserter(result));
        all.swap(result);
    });
}

void NSMutableArray::replaceObjectAtIndex_withObject_(NSUInteger index, id const& object) const {
    if (*this == nil) return;
    requireObject(object, "Replacing in an array");
    id replaced = object;
    changeAt(*this, NSKeyValueChangeReplacement, {index, 1}, [&](std::vector<id>& objects) {
        requireIndex(index, objects.size());
        std::swap(objects[index], replaced);
    });
}

void NSMutableArray::replaceObjectsAtIndexes_withObjects_(NSIndexSet const& indexes, NSArray const& objects) const {
    if (*this == nil) return;
    std::vector<id> replaced = copied(objects.objects());
    if (replaced.size() != indexes.count())
        throw NSInvalidArgumentException("Replacing the objects at " + std::to_string(indexes.count()) +
                                         " indexes of an array by " + std::to_string(replaced.size()));
    if (replaced.empty()) return;
    change(*this, NSKeyValueChangeReplacement, indexes, [&](std::vector<id>& all) {
        requireIndexes(indexes, all.size());
        auto next = replaced.begin();
        for (NSRange const range : indexes.ranges())
            next = std::swap_ranges(all.begin() + range.location, all.begin() + range.location + range.length, next);
    });
}

void NSMutableArray::removeObjectAtIndex_(NSUInteger index) const {
    if (*this == nil) return;
    id removed;
    changeAt(*this, NSKeyValueChangeRemoval, {index, 1}, [&](std::vector<id>& objects) {
        requireIndex(index, objects.size());
        removed = std::exchange(objects[index], id());
        objects.erase(objects.begin() + index);
    });
}

void NSMutableArray::removeLastObject() const {
    if (*this == nil) return;
    if (count() == 0) throw NSRangeException("There is no last object to remove from an empty array");
    removeObjectAtIndex_(count() - 1);
}

void NSMutableArray::removeObjectsInRange_(NSRange range) const {
    if (*this == nil) return;
    if (range.location > count() || range.length > count() - range.location)
        raiseRange(std::size_t{range.location} + range.length, count());
    removeObjectsAtIndexes_(NSIndexSet::indexSetWithIndexesInRange_(range));
}

void NSMutableArray::removeObjectsAtIndexes_(NSIndexSet const& indexes) const {
    if (*this == nil || indexes.count() == 0) return;
    // Kept until the array is whole again.
    std::vector<id> old;
    change(*this, NSKeyValueChangeRemoval, indexes, [&](std::vector<id>& objects) {
        requireIndexes(indexes, objects.size());
        std::vector<id> rest;
        rest.reserve(objects.size() - indexes.count());
        std::size_t start = 0;
        for (NSRange const range : indexes.ranges()) {
            rest.insert(rest.end(), objects.begin() + static_cast<std::ptrdiff_t>(start),
                        objects.begin() + range.location);
            start = std::size_t{range.location} + range.length;
        }
        rest.insert(rest.end(), objects.begin() + static_cast<std::ptrdiff_t>(start), objects.end());
        objects.swap(rest);
        old.swap(rest);
    });
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
    if (*this != nil) replaceAll(*this, {});
}

void NSMutableArray::exchangeObjectAtIndex_withObjectAtIndex_(NSUInteger first, NSUInteger second) const {
    if (*this == nil) return;
    NSMutableIndexSet const indexes = NSMutableIndexSet::indexSetWithIndex_(first);
    indexes.addIndex_(second);
    change(*this, NSKeyValueChangeReplacement, indexes, [&](std::vector<id>& objects) {
        requireIndexes(indexes, objects.size());
        std::swap(objects[first], objects[second]);
    });
}

void NSMutableArray::setArray_(NSArray const& other) const {
    if (*this != nil) replaceAll(*this, copied(other.objects()));
}

} // namespace mac
