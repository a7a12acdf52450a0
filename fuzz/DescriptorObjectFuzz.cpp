#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/NSArray.h"
#include "scripting/AppleEventDescriptors.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace mac::fuzz {

namespace {

char const* complaintAbout(std::span<std::byte const> bytes) {
    Result<AEDesc> const desc = unflattened(bytes);
    if (!desc.hasValue()) return nullptr;
    NSAppleEventDescriptor const descriptor = NSAppleEventDescriptor::descriptorWithAEDesc(desc.value());
    id const object = pxObject(descriptor);
    NSArray const array = as<NSArray>(object);
    if (array != nil && array.count() > static_cast<NSUInteger>(descriptor.numberOfItems()))
        return "more objects than items";
    if (object != nil && !object.isEqual_(pxObject(descriptor))) return "another object the second time";
    object.description();
    return nullptr;
}

} // namespace

} // namespace mac::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    char const* const complaint = mac::fuzz::complaintAbout(std::as_bytes(std::span(data, size)));
    if (!complaint) return 0;
    std::fprintf(stderr, "%s\n", complaint);
    std::abort();
}
