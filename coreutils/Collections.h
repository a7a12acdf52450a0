#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSEnumerator.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/objects/NSNull.h"

namespace mac {

// Further messages of collections, and of any object for key-value coding and observing. All work on the caller's
// thread and nothing may change the receiver meanwhile. A nil receiver answers nil and does nothing. A nil array, index
// set or collection for an argument is one without members, a nil source has no values, a nil object is not observed. A
// nil key or key path goes on to the object, which raises. Errors are the framework's exceptions, unchanged:
// NSRangeException for an index outside, NSUndefinedKeyException for an unknown key, NSInvalidArgumentException for a
// message that a member does not understand, and for nil under a key that holds a number.

// A new mutable set of the members' unsigned-integer values; of a string, the number it begins with, else 0. A value of
// NSNotFound or more, such as that of -1, raises NSRangeException.
NSMutableIndexSet pxIndexSetWithNumbers(NSArray receiver);
// The integer values of a set's members, as indexes.
NSMutableIndexSet pxIndexSetWithNumbers(NSSet receiver);
// The integer values of the objects that the enumerator has not given yet, as indexes.
NSMutableIndexSet pxIndexSetWithNumbers(NSEnumerator receiver);
// The indexes as numbers, ascending.
NSArray pxArrayWithIndexes(NSIndexSet receiver);

// Each element's stringValue, in order.
NSArray pxStringValues(NSArray receiver);
// A new array of the elements of the element arrays, in order, duplicates kept. An element that is no array raises
// NSInvalidArgumentException.
NSMutableArray pxFlattenedMutableArrayOfArrays(NSArray receiver);
// A new set of the members of the element sets.
NSMutableSet pxFlattenedMutableSetOfSets(NSArray receiver);
// The argument, which may be nil, takes the receiver's members; the receiver stays as it is, whatever the name says.
void pxUnionWithSet_(NSSet receiver, NSMutableSet set);
// A new dictionary an element, with the element's values for the keys; a key without a value is absent.
NSMutableArray pxMutableArrayWithTrimmedObjectsForKeys_(NSArray receiver, NSArray keys);
// A new dictionary with the source's values for the keys; a key without a value is absent. Empty for a nil source.
NSMutableDictionary pxDictionaryWithDictionary_forKeys_(NSDictionary source, NSArray keys);
// The name if no element equals it, nil for a nil name; else the first of "NAME 1", "NAME 2", ... that none equals.
NSString pxUniqueCopyNameForName_(NSArray receiver, NSString name);
// An enumerator that gives no objects.
NSEnumerator objectEnumerator(NSNull receiver);

// The element goes to in front of the one that is at the index now, as a dragged row does; the count stands for the
// end.
void pxMoveObjectAtIndex_toIndex_(NSMutableArray receiver, NSUInteger from, NSUInteger to);
// Moves the elements at the indexes, in their order, in front of the first element that equals the one now at the index
// `to`; to the end if there is none at it. If that element is itself moved and has no equal that stays,
// NSRangeException is raised and the elements are gone from the array.
void pxMoveObjectsAtIndexes_toIndex_(NSMutableArray receiver, NSIndexSet indexes, NSUInteger to);

// Sets the source's value under the same key on the receiver. A nil value removes the key of a mutable dictionary.
void pxSetValueFrom_forKey_(id receiver, id source, NSString key);
// Sets the receiver's value for each of the keys, in their order, to the source's.
void pxSetValuesFrom_forKeys_(id receiver, id source, NSArray keys);
// Sets the receiver's value for each key of the source to the source's.
void pxSetValuesFrom_(id receiver, NSDictionary source);

// Follows the path's components; an array answers with its element at the component's integer value (0 where it is no
// number), without a check of the index, anything else with its value for the key. A nil on the way answers nil, and so
// does a nil path.
id pxValueForKeyPath_(id receiver, NSString keyPath);
// Sets the value for the path's last component on the object that the other components lead to; does nothing if that is
// nil. A mutable array takes the component's integer value as an index: nil removes the element there, an index that is
// negative or not below the count appends, any other replaces the element. In a path of one component the empty key
// leads to the receiver itself.
void pxSetValue_forKeyPath_(id receiver, id value, NSString keyPath);

// Observing. The receiver is always the observer, the object the observed; it gets the context with each notification,
// unchanged. A collection is anything that answers objectEnumerator; nil and the null object have no members. Stopping
// what was not started raises NSRangeException.

// Observes one key path of one object.
void pxStartObserving_forKeyPath_options_context_(id receiver, id object, NSString keyPath, NSUInteger options,
                                                  void* context);
// Ends what the message above began.
void pxStopObserving_forKeyPath_(id receiver, id object, NSString keyPath);
// Observes each of the key paths, in their order.
void pxStartObserving_forKeyPaths_options_context_(id receiver, id object, NSArray keyPaths, NSUInteger options,
                                                   void* context);
// Ends what the message above began.
void pxStopObserving_forKeyPaths_(id receiver, id object, NSArray keyPaths);
// Observes one key path of each member.
void pxStartObservingAllObjectsOf_forKeyPath_options_context_(id receiver, id collection, NSString keyPath,
                                                              NSUInteger options, void* context);
// Ends observing the members that the collection has at the time of the call.
void pxStopObservingAllObjectsOf_forKeyPath_(id receiver, id collection, NSString keyPath);
// Observes each of the key paths of each member.
void pxStartObservingAllObjectsOf_forKeyPaths_options_context_(id receiver, id collection, NSArray keyPaths,
                                                               NSUInteger options, void* context);
// Ends observing the members that the collection has at the time of the call.
void pxStopObservingAllObjectsOf_forKeyPaths_(id receiver, id collection, NSArray keyPaths);
// Observes all keys of all dictionaries in a collection, as they are at the time of the call: stopping covers the keys
// that are there then, not those that were at the start.
void pxStartObservingAllKeysOfAllObjectsOf_options_context_(id receiver, id collection, NSUInteger options,
                                                            void* context);
// Ends observing the members and keys that the collection has at the time of the call.
void pxStopObservingAllKeysOfAllObjectsOf_(id receiver, id collection);

} // namespace mac
