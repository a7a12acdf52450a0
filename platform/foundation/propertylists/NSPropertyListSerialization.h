#pragma once

#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSString.h"

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

// Property lists: trees of dictionaries with string keys, arrays, strings, numbers, truth values, dates, data and
// keyed archives' identifiers (CFKeyedArchiverUIDRef), read
// from and written as XML and binary; the old-style text form is read only. What is read and written is bounded in
// depth, count and size. Of equal keys in one dictionary the last one's value is taken. Any thread.
class NSPropertyListSerialization : public Handle<NSPropertyListSerialization, NSObject> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    // Nil on failure, with the reason in errorString: for text what is wrong with it as XML and what as old-style text,
    // each with its line. The format is found out, not given. format and errorString may be null and are set only on
    // success and on failure.
    static id propertyListFromData_mutabilityOption_format_errorDescription_(NSData const& data,
                                                                             NSPropertyListMutabilityOptions option,
                                                                             NSPropertyListFormat* format,
                                                                             NSString* errorString);
    // Nil for what is no property list, and for the old-style format, which cannot be written. Equal lists become equal
    // bytes: keys are sorted by their code units. XML has dates in whole seconds.
    // Linux: nil also for what XML cannot carry, control characters and lone surrogates, instead of text that nobody
    // reads.
    static NSData dataFromPropertyList_format_errorDescription_(id const& propertyList, NSPropertyListFormat format,
                                                                NSString* errorString);
    // Whether the list could be written; of the old-style format, whether it could be read: it knows no numbers and
    // dates.
    static bool propertyList_isValidForFormat_(id const& propertyList, NSPropertyListFormat format);
};

} // namespace mac
