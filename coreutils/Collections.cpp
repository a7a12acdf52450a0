#include "coreutils/Collections.h"
#include "coreutils/ArrayLookups.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include <algorithm>

namespace mac {

namespace {

NSUInteger indexOf(id const& number) {
    if (NSString const text = as<NSString>(number); text != nil) return static_cast<NSUInteger>(text.intValue());
    if (NSNumber const boxed = as<NSNumber>(number); boxed != nil) return boxed.unsignedIntegerValue();
    return as<NSNumber>(number.performSelector_("unsignedIntegerValue")).unsignedIntegerValue();
}

} // namespace

NSMutableIndexSet pxIndexSetWithNumbers(NSEnumerator receiver) {
    if (receiver == nil) return nil;
    std::vector<NSUInteger> values;
    for (id number = receiver.nextObject(); number != nil; number = receiver.nextObject())
        values.push_back(indexOf(number));
    // In order each index goes to the end, where adding costs least.
    std::ranges::sort(values);
    NSMutableIndexSet const indexes = NSMutableIndexSet::indexSet();
    for (NSUInteger const value : values)
        indexes.addIndex_(value);
    return indexes;
}

NSMutableIndexSet pxIndexSetWithNumbers(NSArray receiver) { return pxIndexSetWithNumbers(receiver.objectEnumerator()); }

NSMutableIndexSet pxIndexSetWithNumbers(NSSet receiver) { return pxIndexSetWithNumbers(receiver.objectEnumerator()); }

NSArray pxArrayWithIndexes(NSIndexSet receiver) {
    if (receiver == nil) return nil;
    NSMutableArray const numbers = NSMutableArray::arrayWithCapacity_(receiver.count());
    for (NSUInteger index = receiver.firstIndex(); index != NSNotFound; index = receiver.indexGreaterThanIndex_(index))
        numbers.addObject_(NSNumber::numberWithUnsignedInteger_(index));
    return as<NSArray>(numbers.copy());
}

NSArray pxStringValues(NSArray receiver) {
    if (receiver == nil) return nil;
    NSMutableArray const values = NSMutableArray::arrayWithCapacity_(receiver.count());
    // By enumerator: what an element does may change the array.
    NSEnumerator const elements = receiver.objectEnumerator();
    for (id element = elements.nextObject(); element != nil; element = elements.nextObject())
        values.addObject_(element.performSelector_("stringValue"));
    return as<NSArray>(values.copy());
}

NSMutableArray pxFlattenedMutableArrayOfArrays(NSArray receiver) {
    if (receiver == nil) return nil;
    NSMutableArray const all = NSMutableArray::array();
    for (id const& element : receiver) {
        NSArray const array = as<NSArray>(element);
        if (array == nil)
            throw NSInvalidArgumentException("Flattening meets what is no array: " +
                                             element.description().UTF8String());
        all.addObjectsFromArray_(array);
    }
    return all;
}

NSMutableSet pxFlattenedMutableSetOfSets(NSArray receiver) {
    if (receiver == nil) return nil;
    NSMutableSet const all = NSMutableSet::set();
    NSEnumerator const elements = receiver.objectEnumerator();
    for (id element = elements.nextObject(); element != nil; element = elements.nextObject())
        element.performSelector_withObject_("pxUnionWithSet:", all);
    return all;
}

void pxUnionWithSet_(NSSet receiver, NSMutableSet set) { set.unionSet_(receiver); }

NSMutableArray pxMutableArrayWithTrimmedObjectsForKeys_(NSArray receiver, NSArray keys) {
    if (receiver == nil) return nil;
    NSMutableArray const trimmed = NSMutableArray::arrayWithCapacity_(receiver.count());
    NSEnumerator const elements = receiver.objectEnumerator();
    for (id element = elements.nextObject(); element != nil; element = elements.nextObject()) {
        NSMutableDictionary const values = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
        pxSetValuesFrom_forKeys_(values, element, keys);
        trimmed.addObject_(values);
    }
    return trimmed;
}

NSMutableDictionary pxDictionaryWithDictionary_forKeys_(NSDictionary source, NSArray keys) {
    NSMutableDictionary const values = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
    pxSetValuesFrom_forKeys_(values, source, keys);
    return values;
}

NSString pxUniqueCopyNameForName_(NSArray receiver, NSString name) {
    if (receiver == nil) return nil;
    NSSet const taken = NSSet::setWithArray_(receiver);
    NSString free = name;
    for (NSUInteger number = 1; taken.containsObject_(free); ++number)
        free = NSString::stringWithFormat_("%@ %u", name, number);
    return free;
}

NSEnumerator objectEnumerator(NSNull) { return nil; }

void pxMoveObjectAtIndex_toIndex_(NSMutableArray receiver, NSUInteger from, NSUInteger to) {
    if (from == to) return;
    id const element = receiver.objectAtIndex_(from);
    if (from < to) {
        receiver.insertObject_atIndex_(element, to);
        receiver.removeObjectAtIndex_(from);
        return;
    }
    receiver.removeObjectAtIndex_(from);
    receiver.insertObject_atIndex_(element, to);
}

void pxMoveObjectsAtIndexes_toIndex_(NSMutableArray receiver, NSIndexSet indexes, NSUInteger to) {
    if (receiver == nil) return;
    id const anchor = pxObjectAtIndex_(receiver, to);
    NSArray const block = receiver.objectsAtIndexes_(indexes);
    receiver.removeObjectsAtIndexes_(indexes);
    if (anchor == nil) {
        receiver.addObjectsFromArray_(block);
        return;
    }
    // By equality, by design: with equal elements the block goes in front of the first.
    NSRange const places{receiver.indexOfObject_(anchor), block.count()};
    receiver.insertObjects_atIndexes_(block, NSIndexSet::indexSetWithIndexesInRange_(places));
}

} // namespace mac
