#pragma once

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSString.h"

namespace mac {

// The values are the framework's own.
enum NSPropertyListFormat : NSUInteger {
    NSPropertyListOpenStepFormat = 1,
    NSPropertyListXMLFormat_v1_0 = 100,
    NSPropertyListBinaryFormat_v1_0 = 200,
};

enum NSPropertyListMutabilityOptions : NSUInteger {
    NSPropertyListImmutable = 0,
    NSPropertyListMutableContainers = 1,
    NSPropertyListMutableContainersAndLeaves = 2,
};

// Property lists: trees of dictionaries with string keys, arrays, strings, numbers, truth values, dates and data, read from
// and written as XML and binary; the old-style text form is read only. What is read is bounded in depth, count and size. Any thread.
class NSPropertyListSerialization : public Handle<NSPropertyListSerialization, NSObject> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    // Nil on failure, with the reason and the line in errorString; format and errorString may be null.
    static id propertyListFromData_mutabilityOption_format_errorDescription_(NSData const& data,
        NSPropertyListMutabilityOptions option, NSPropertyListFormat* format, NSString* errorString);
    // Nil for what is no property list, and for the old-style format, which cannot be written.
    static NSData dataFromPropertyList_format_errorDescription_(id const& propertyList, NSPropertyListFormat format,
        NSString* errorString);
    static bool propertyList_isValidForFormat_(id const& propertyList, NSPropertyListFormat format);
};

}
