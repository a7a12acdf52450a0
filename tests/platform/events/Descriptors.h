#pragma once

#include "platform/events/NSAppleEventDescriptor.h"
#include <initializer_list>
#include <string_view>

// Short spellings for the descriptors that tests make.

namespace mac::test {

inline NSAppleEventDescriptor numberDescriptor(std::int32_t value) {
    return NSAppleEventDescriptor::descriptorWithInt32_(value);
}

inline NSAppleEventDescriptor stringDescriptor(NSString const& value) {
    return NSAppleEventDescriptor::descriptorWithString_(value);
}

inline NSAppleEventDescriptor descriptorOfBytes(DescType type, std::string_view bytes) {
    return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(type, bytes.data(),
                                                                              static_cast<NSUInteger>(bytes.size()));
}

inline NSAppleEventDescriptor realDescriptor(double value) {
    return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeIEEE64BitFloatingPoint, &value,
                                                                              sizeof value);
}

inline NSAppleEventDescriptor listDescriptor(std::initializer_list<NSAppleEventDescriptor> items) {
    NSAppleEventDescriptor const list = NSAppleEventDescriptor::listDescriptor();
    for (NSAppleEventDescriptor const& item : items)
        list.insertDescriptor_atIndex_(item, 0);
    return list;
}

} // namespace mac::test
