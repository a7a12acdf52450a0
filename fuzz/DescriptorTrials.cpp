#include "fuzz/Trials.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/collections/NSArray.h"
#include "scripting/AppleEventDescriptors.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

void readValues(NSAppleEventDescriptor const& descriptor, bool isAsItsItem) {
    descriptor.coerceToDescriptorType_(typeAEList);
    if (isAsItsItem) return;
    descriptor.stringValue();
    descriptor.int32Value();
    descriptor.booleanValue();
    descriptor.typeCodeValue();
    descriptor.returnID();
    for (DescType const type : {typeAERecord, typeText, typeSInt64, typeIEEE64BitFloatingPoint, typeTrue})
        descriptor.coerceToDescriptorType_(type);
}

// Every accessor, on the descriptor and what it holds. A list of one item is converted to anything but a list as that
// item is: with lists of one in lists of one, to read the values of each would take time by the square of their number.
void readAll(NSAppleEventDescriptor const& descriptor) {
    bool const isAsItsItem = descriptor.descriptorType() == typeAEList && descriptor.numberOfItems() == 1;
    readValues(descriptor, isAsItsItem);
    for (NSInteger index = 1; index <= descriptor.numberOfItems(); ++index) {
        descriptor.keywordForDescriptorAtIndex_(index);
        readAll(descriptor.descriptorAtIndex_(index));
    }
}

} // namespace

std::string complaintAboutFlatDescriptor(std::span<std::byte const> bytes) {
    Result<AEDesc, Failure> const desc = unflattened(bytes);
    if (!desc.hasValue()) return desc.problem().reason.empty() ? "a failure without a reason" : "";
    Result<std::vector<std::byte>, Failure> const again = flattened(desc.value());
    if (!again.hasValue() || !std::ranges::equal(again.value(), bytes)) return "it comes back as other bytes";
    NSAppleEventDescriptor const descriptor = NSAppleEventDescriptor::descriptorWithAEDesc(desc.value());
    descriptor.description();
    readValues(descriptor, false);
    readAll(descriptor);
    return {};
}

std::string complaintAboutDescriptorObject(std::span<std::byte const> bytes) {
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

} // namespace mac::fuzz
