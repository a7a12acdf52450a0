#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/collections/ValueOrder.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include <algorithm>

namespace mac {

namespace {

// The objects in the order of their values, one for each descriptor.
template <class Read>
NSArray sorted(std::vector<id> const& objects, NSArray const& descriptors, Read const& read) {
    std::vector<id> values;
    values.reserve(objects.size() * descriptors.count());
    for (id const& object : objects) {
        for (id const& descriptor : descriptors)
            values.push_back(read(object, uncheckedCast<NSSortDescriptor>(descriptor)));
    }
    if (descriptors.count() == 0) return NSArray::arrayWithVector(objects);
    std::vector<id> result;
    result.reserve(objects.size());
    for (std::size_t const index : orderOfRows(values, descriptors))
        result.push_back(objects[index]);
    return NSArray::arrayWithVector(std::move(result));
}

// In place and without a copy, which would take longer than a simple test of each object.
std::vector<id> passing(NSArray const& array, NSPredicate const& predicate) {
    std::vector<id> result;
    if (!array.isKindOfClass_(classOf<NSMutableArray>())) {
        std::ranges::copy_if(array.objects(), std::back_inserter(result),
                             [&](id const& object) { return predicate.evaluateWithObject_(object); });
        return result;
    }
    std::uint32_t const changes = bodyOf(array)->m_changes;
    NSUInteger const count = array.count();
    for (NSUInteger index = 0; index < count; ++index) {
        // Kept, since a getter may replace it.
        id const object = array.objects()[index];
        if (predicate.evaluateWithObject_(object)) result.push_back(object);
        if (bodyOf(array)->m_changes != changes || array.count() != count)
            throw NSGenericException("An array was mutated while it was filtered.");
    }
    return result;
}

} // namespace

NSArray NSArray::sortedArrayUsingDescriptors_(NSArray const& descriptors) const {
    if (*this == nil) return nil;
    std::vector<id> criteria;
    std::ranges::copy_if(descriptors, std::back_inserter(criteria),
                         [](id const& object) { return as<NSSortDescriptor>(object) != nil; });
    return sorted(
        copied(objects()), NSArray::arrayWithVector(std::move(criteria)),
        [](id const& object, NSSortDescriptor const& descriptor) { return descriptor.valueOfObject(object); });
}

NSArray NSArray::sortedArrayUsingSelector_(SEL comparator) const {
    if (*this == nil) return nil;
    NSArray const criteria =
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_selector_(nil, YES, comparator));
    return sorted(copied(objects()), criteria, [](id const& object, NSSortDescriptor const&) { return object; });
}

NSArray NSArray::filteredArrayUsingPredicate_(NSPredicate const& predicate) const {
    if (*this == nil) return nil;
    NSArray const kept = *this;
    return NSArray::arrayWithVector(passing(kept, predicate));
}

void NSMutableArray::sortUsingDescriptors_(NSArray const& descriptors) const {
    if (*this != nil) setArray_(sortedArrayUsingDescriptors_(descriptors));
}

void NSMutableArray::filterUsingPredicate_(NSPredicate const& predicate) const {
    if (*this != nil) setArray_(filteredArrayUsingPredicate_(predicate));
}

NSSet NSSet::filteredSetUsingPredicate_(NSPredicate const& predicate) const {
    if (*this == nil) return nil;
    return NSSet::setWithArray_(allObjects().filteredArrayUsingPredicate_(predicate));
}

} // namespace mac
