#include "fuzz/Complaint.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/collections/NSArray.h"
#include "scripting/AppleEventDescriptors.h"

namespace mac::fuzz {

namespace {

std::string complaintAbout(std::span<std::byte const> bytes) {
    Result<AEDesc, Failure> const desc = unflattened(bytes);
    if (!desc.hasValue()) return {};
    NSAppleEventDescriptor const descriptor = NSAppleEventDescriptor::descriptorWithAEDesc(desc.value());
    id const object = pxObject(descriptor);
    NSArray const array = as<NSArray>(object);
    if (array != nil && array.count() > static_cast<NSUInteger>(descriptor.numberOfItems()))
        return "more objects than items";
    if (object != nil && !object.isEqual_(pxObject(descriptor))) return "another object the second time";
    object.description();
    return {};
}

} // namespace

} // namespace mac::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAbout(mac::fuzz::bytesOf(data, size)));
    return 0;
}
