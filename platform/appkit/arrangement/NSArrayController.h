#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/predicates/NSPredicate.h"

namespace mac {

// What stands between a collection and the table that shows it: the objects of the collection filtered and sorted, and
// which of them are selected. The content is set, or follows a key path of another object by observing. Main thread.
//
// Keys that can be observed: content, arrangedObjects, selectedObjects, selectionIndex, sortDescriptors,
// filterPredicate; and (Linux) selection, which is the one selected object, nil for none and for several, count,
// contentCount, selectionCount, isEmpty, isFilteredToNothing, hasSelection, hasSingleSelection.
class NSArrayController : public Handle<NSArrayController, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSArrayController init() const;

    // An array or a set. Nil means that nothing is known: objects that were selected are selected again when they come
    // back.
    id content() const;
    // Anything but an array, a set or nil raises NSInvalidArgumentException.
    void setContent_(id const& content) const;
    // Keeps the content equal to the object's value of the key path, from now on. The binding is "contentArray" or
    // "contentSet", any other raises NSInvalidArgumentException; the options are ignored. The object is not kept alive.
    void bind_toObject_withKeyPath_options_(NSString const& binding, id const& object, NSString const& keyPath,
                                            NSDictionary const& options) const;
    // The content stays as it is.
    void unbind_(NSString const& binding) const;

    // The content that passes the filter, in order. An array that stays as it is; the next change makes another.
    NSArray arrangedObjects() const;
    // Filters and sorts anew, after objects of the content were changed in place.
    void rearrangeObjects() const;
    NSArray sortDescriptors() const;
    void setSortDescriptors_(NSArray const& descriptors) const;
    // Nil passes everything.
    NSPredicate filterPredicate() const;
    void setFilterPredicate_(NSPredicate const& predicate) const;

    // In the order of arrangedObjects. Linux: no row is selected until one is selected explicitly.
    NSArray selectedObjects() const;
    // Selects those that are arranged; false when none of a non-empty array is. Then nothing changes, but for this:
    // while another content is arranged in steps, those of them that it brings are selected when it is shown, unless
    // something is selected before.
    bool setSelectedObjects_(NSArray const& objects) const;
    // The first selected row, NSNotFound without one.
    NSUInteger selectionIndex() const;

    // Linux: the key path whose value tells an object from another when the content is replaced, so that an equal one
    // stays selected; nil: only the very same object does.
    NSString identityKeyPath() const;
    void setIdentityKeyPath(NSString const& keyPath) const;
};

} // namespace mac
