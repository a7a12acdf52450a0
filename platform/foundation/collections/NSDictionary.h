#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

class NSDate;

// Values by key. Keys are copied when they are set and compared by equality; neither is ever nil. The order is that of
// insertion. Immutable; reading is safe on any thread.
class NSDictionary : public Handle<NSDictionary, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSDictionary dictionary();
    static NSDictionary dictionaryWithObject_forKey_(id const& object, id const& key);
    // Value, key, value, key, up to the first nil.
    static NSDictionary dictionaryWithObjectsAndKeys_(std::initializer_list<id> objectsAndKeys);
    // Raises NSInvalidArgumentException when the counts differ.
    static NSDictionary dictionaryWithObjects_forKeys_(NSArray const& objects, NSArray const& keys);
    static NSDictionary dictionaryWithDictionary_(NSDictionary const& other);

    NSUInteger count() const;
    id objectForKey_(id const& key) const;
    NSArray allKeys() const;
    NSArray allValues() const;
    NSArray allKeysForObject_(id const& object) const;
    NSEnumerator keyEnumerator() const;
    NSEnumerator objectEnumerator() const;
    bool isEqualToDictionary_(NSDictionary const& other) const;

    // Read attributes of a file (NSFileAttributes.h); nil, 0 or NO if one is missing or of another class.
    NSString fileType() const;
    unsigned long long fileSize() const;
    NSUInteger filePosixPermissions() const;
    NSDate fileModificationDate() const;
    NSDate fileCreationDate() const;
    NSString fileOwnerAccountName() const;
    NSString fileGroupOwnerAccountName() const;
    // Linux: 64 bits, since the numbers have as many.
    unsigned long long fileSystemNumber() const;
    unsigned long long fileSystemFileNumber() const;
    bool fileIsImmutable() const;
    bool fileIsAppendOnly() const;
    bool fileExtensionHidden() const;
};

// Values by key that can be changed in place. One thread at a time.
class NSMutableDictionary : public Handle<NSMutableDictionary, NSDictionary> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSMutableDictionary dictionary();
    static NSMutableDictionary dictionaryWithCapacity_(NSUInteger capacity);
    static NSMutableDictionary dictionaryWithDictionary_(NSDictionary const& other);

    // A nil object or key raises NSInvalidArgumentException (key-value coding removes the key instead).
    void setObject_forKey_(id const& object, id const& key) const;
    void removeObjectForKey_(id const& key) const;
    void removeObjectsForKeys_(NSArray const& keys) const;
    void removeAllObjects() const;
    void addEntriesFromDictionary_(NSDictionary const& other) const;
    void setDictionary_(NSDictionary const& other) const;
};

}
