#pragma once

#include "platform/foundation/objects/Object.h"
#include <span>
#include <string_view>

namespace mac {

// A sequence of bytes. Immutable; any thread.
class NSData : public Handle<NSData, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSData data();
    // A copy. A null pointer with a length raises NSInvalidArgumentException.
    static NSData dataWithBytes_length_(void const* bytes, NSUInteger length);
    static NSData dataWithBytes(std::span<std::byte const> bytes);
    // The whole file; nil when it cannot be read, is no regular file or is larger than 1 GiB.
    static NSData dataWithContentsOfFile_(NSString const& path);

    NSUInteger length() const;
    // Null for nil; valid while an unchanged object lives.
    std::byte const* bytes() const;
    std::span<std::byte const> span() const;
    // NO for nil.
    bool isEqualToData_(NSData const& other) const;
    // Raises NSRangeException past the end.
    NSData subdataWithRange_(NSRange range) const;
    // Written beside the file and renamed over it, so that a reader finds the old or the new bytes; NO when it
    // failed, for a nil path too.
    bool writeToFile_atomically_(NSString const& path, BOOL atomically) const;
};

// Bytes that can be changed in place. One thread at a time.
class NSMutableData : public Handle<NSMutableData, NSData> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSMutableData data();
    // Nil counts as no bytes.
    static NSMutableData dataWithData_(NSData const& other);

    // A null pointer with a length raises NSInvalidArgumentException, as does growing to 2 GiB.
    void appendBytes_length_(void const* bytes, NSUInteger length) const;
    // Nil counts as no bytes.
    void appendData_(NSData const& other) const;
    // Grows with zero bytes or cuts the end off. Raises NSInvalidArgumentException from 2 GiB on.
    void setLength_(NSUInteger length) const;
    // Null for nil; valid until the length changes.
    std::byte* mutableBytes() const;
};

}
