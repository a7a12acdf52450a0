#include "fuzz/Complaint.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

// Every accessor, on the descriptor and what it holds.
void readAll(NSAppleEventDescriptor const& descriptor) {
    descriptor.stringValue();
    descriptor.int32Value();
    descriptor.booleanValue();
    descriptor.typeCodeValue();
    descriptor.returnID();
    for (DescType const type : {typeAEList, typeAERecord, typeText, typeSInt64, typeIEEE64BitFloatingPoint, typeTrue})
        descriptor.coerceToDescriptorType_(type);
    for (NSInteger index = 1; index <= descriptor.numberOfItems(); ++index) {
        descriptor.keywordForDescriptorAtIndex_(index);
        readAll(descriptor.descriptorAtIndex_(index));
    }
}

std::string complaintAbout(std::span<std::byte const> bytes) {
    Result<AEDesc, Failure> const desc = unflattened(bytes);
    if (!desc.hasValue()) return desc.problem().reason.empty() ? "a failure without a reason" : "";
    Result<std::vector<std::byte>, Failure> const again = flattened(desc.value());
    if (!again.hasValue() || !std::ranges::equal(again.value(), bytes)) return "it comes back as other bytes";
    NSAppleEventDescriptor const descriptor = NSAppleEventDescriptor::descriptorWithAEDesc(desc.value());
    descriptor.description();
    readAll(descriptor);
    return {};
}

} // namespace

} // namespace mac::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAbout(mac::fuzz::bytesOf(data, size)));
    return 0;
}
