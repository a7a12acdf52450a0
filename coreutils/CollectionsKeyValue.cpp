#include "coreutils/Collections.h"

namespace mac {

namespace {

// Enumerates the collection's members; a nil collection has none.
NSEnumerator membersOf(id const& collection) {
    return as<NSEnumerator>(collection.performSelector_("objectEnumerator"));
}

// By enumerator, since a setter or an observer may change the collection.
template <class Function>
void forEach(NSEnumerator const& members, Function const& function) {
    for (id member = members.nextObject(); member != nil; member = members.nextObject())
        function(member);
}

NSArray keysOf(id const& dictionary) { return as<NSArray>(dictionary.performSelector_("allKeys")); }

} // namespace

void pxSetValueFrom_forKey_(id receiver, id source, NSString key) {
    receiver.setValue_forKey_(source.valueForKey_(key), key);
}

void pxSetValuesFrom_forKeys_(id receiver, id source, NSArray keys) {
    forEach(keys.objectEnumerator(),
            [&](id const& key) { pxSetValueFrom_forKey_(receiver, source, as<NSString>(key)); });
}

void pxSetValuesFrom_(id receiver, NSDictionary source) {
    pxSetValuesFrom_forKeys_(receiver, source, source.allKeys());
}

id pxValueForKeyPath_(id receiver, NSString keyPath) {
    if (keyPath == nil) return nil;
    id current = receiver;
    for (id const& component : keyPath.componentsSeparatedByString_(".")) {
        if (current == nil) return nil;
        NSString const key = as<NSString>(component);
        NSArray const array = as<NSArray>(current);
        if (array == nil)
            current = current.valueForKey_(key);
        else
            current = array.objectAtIndex_(static_cast<NSUInteger>(key.intValue()));
    }
    return current;
}

void pxSetValue_forKeyPath_(id receiver, id value, NSString keyPath) {
    if (receiver == nil || keyPath == nil) return;
    NSArray const components = keyPath.componentsSeparatedByString_(".");
    NSString const key = as<NSString>(components.lastObject());
    NSArray const others = components.subarrayWithRange_({0, components.count() - 1});
    id const parent = pxValueForKeyPath_(receiver, others.componentsJoinedByString_("."));
    NSMutableArray const array = as<NSMutableArray>(parent);
    if (array == nil) {
        parent.setValue_forKey_(value, key);
        return;
    }
    // Unsigned, by design: a negative index lies behind the end.
    NSUInteger const index = static_cast<NSUInteger>(key.intValue());
    if (value == nil)
        array.removeObjectAtIndex_(index);
    else if (index >= array.count())
        array.addObject_(value);
    else
        array.replaceObjectAtIndex_withObject_(index, value);
}

void pxStartObserving_forKeyPath_options_context_(id receiver, id object, NSString keyPath, NSUInteger options,
                                                  void* context) {
    if (receiver != nil) object.addObserver_forKeyPath_options_context_(receiver, keyPath, options, context);
}

void pxStopObserving_forKeyPath_(id receiver, id object, NSString keyPath) {
    if (receiver != nil) object.removeObserver_forKeyPath_(receiver, keyPath);
}

void pxStartObserving_forKeyPaths_options_context_(id receiver, id object, NSArray keyPaths, NSUInteger options,
                                                   void* context) {
    forEach(keyPaths.objectEnumerator(), [&](id const& path) {
        pxStartObserving_forKeyPath_options_context_(receiver, object, as<NSString>(path), options, context);
    });
}

void pxStopObserving_forKeyPaths_(id receiver, id object, NSArray keyPaths) {
    forEach(keyPaths.objectEnumerator(),
            [&](id const& path) { pxStopObserving_forKeyPath_(receiver, object, as<NSString>(path)); });
}

void pxStartObservingAllObjectsOf_forKeyPath_options_context_(id receiver, id collection, NSString keyPath,
                                                              NSUInteger options, void* context) {
    if (receiver == nil) return;
    forEach(membersOf(collection), [&](id const& member) {
        pxStartObserving_forKeyPath_options_context_(receiver, member, keyPath, options, context);
    });
}

void pxStopObservingAllObjectsOf_forKeyPath_(id receiver, id collection, NSString keyPath) {
    if (receiver == nil) return;
    forEach(membersOf(collection), [&](id const& member) { pxStopObserving_forKeyPath_(receiver, member, keyPath); });
}

void pxStartObservingAllObjectsOf_forKeyPaths_options_context_(id receiver, id collection, NSArray keyPaths,
                                                               NSUInteger options, void* context) {
    if (receiver == nil) return;
    forEach(membersOf(collection), [&](id const& member) {
        pxStartObserving_forKeyPaths_options_context_(receiver, member, keyPaths, options, context);
    });
}

void pxStopObservingAllObjectsOf_forKeyPaths_(id receiver, id collection, NSArray keyPaths) {
    if (receiver == nil) return;
    forEach(membersOf(collection), [&](id const& member) { pxStopObserving_forKeyPaths_(receiver, member, keyPaths); });
}

void pxStartObservingAllKeysOfAllObjectsOf_options_context_(id receiver, id collection, NSUInteger options,
                                                            void* context) {
    if (receiver == nil) return;
    forEach(membersOf(collection), [&](id const& member) {
        pxStartObserving_forKeyPaths_options_context_(receiver, member, keysOf(member), options, context);
    });
}

void pxStopObservingAllKeysOfAllObjectsOf_(id receiver, id collection) {
    if (receiver == nil) return;
    forEach(membersOf(collection),
            [&](id const& member) { pxStopObserving_forKeyPaths_(receiver, member, keysOf(member)); });
}

} // namespace mac
