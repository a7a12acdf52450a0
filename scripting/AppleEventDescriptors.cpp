#include "scripting/AppleEventDescriptors.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include "platform/processes/Processes.h"

namespace mac {

namespace {

constexpr AEEventClass FinderClass{"fndr"};
constexpr OSType FinderSignature{"MACS"};
constexpr AEEventID SetData{"setd"};

NSAppleEventDescriptor eventTo(NSAppleEventDescriptor const& target, AEEventClass eventClass, AEEventID eventID) {
    return NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
        eventClass, eventID, target, kAutoGenerateReturnID, kAnyTransactionID);
}

NSAppleEventDescriptor addressOf(ProcessSerialNumber const& psn) {
    return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeProcessSerialNumber, &psn,
                                                                              sizeof psn);
}

id dataOfUnknownType(NSAppleEventDescriptor const& descriptor) {
    std::uint32_t const type = descriptor.descriptorType().value();
    auto const character = [&](int shift) { return static_cast<signed char>(type >> shift); };
    NSLog("%s Unknown descriptor type: '%c%c%c%c'", "-[NSAppleEventDescriptor(PXCoreUtils) pxObject]", character(24),
          character(16), character(8), character(0));
    return descriptor.data();
}

id objectOfList(NSAppleEventDescriptor const& list) {
    NSMutableArray const objects = NSMutableArray::array();
    NSInteger const count = list.numberOfItems();
    for (NSInteger index = 1; index <= count; ++index) {
        id const object = pxObject(list.descriptorAtIndex_(index));
        if (object != nil) objects.addObject_(object);
    }
    return NSArray::arrayWithArray_(objects);
}

id objectOfRecord(NSAppleEventDescriptor const& record) {
    if (record.numberOfItems() != 1) return nil;
    AEKeyword const keyword = record.keywordForDescriptorAtIndex_(1);
    NSArray const keysAndValues = as<NSArray>(pxObject(record.descriptorForKeyword_(keyword)));
    NSUInteger const count = keysAndValues.count();
    if (count == 0 || count % 2 != 0) return nil;
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionaryWithCapacity_(count / 2);
    // A key need not be text; whatever it is, it is only a key.
    for (NSUInteger index = 0; index < count; index += 2)
        dictionary.setObject_forKey_(keysAndValues.objectAtIndex_(index + 1), keysAndValues.objectAtIndex_(index));
    return NSDictionary::dictionaryWithDictionary_(dictionary);
}

} // namespace

NSAppleEventDescriptor pxFinderAppleEventWithEventID_(AEEventID eventID) {
    return eventTo(pxDescriptorWithProcessSerialNumberFinder(), FinderClass, eventID);
}

NSAppleEventDescriptor pxFinderAppleEventWithEventClass_eventID_(AEEventClass, AEEventID) {
    std::uint32_t const signature = FinderSignature.value();
    NSAppleEventDescriptor const target = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
        typeApplSignature, &signature, sizeof signature);
    return eventTo(target, kCoreEventClass, SetData);
}

NSAppleEventDescriptor pxDescriptorWithProcessSerialNumberSelf() { return addressOf({0, kCurrentProcess}); }

NSAppleEventDescriptor pxDescriptorWithProcessSerialNumberFinder() {
    std::optional<ProcessSerialNumber> const finder = processWith(kCFBundleIdentifierKey, "com.apple.finder");
    return finder ? addressOf(*finder) : NSAppleEventDescriptor(nil);
}

bool pxSend(NSAppleEventDescriptor receiver) {
    AEDesc reply{.descriptorType = typeNull};
    OSErr const status = AESend(receiver.aeDesc(), &reply, kAENoReply, kAENormalPriority, kNoTimeOut, nil, nil);
    AEDisposeDesc(&reply);
    return status == noErr;
}

id pxObject(NSAppleEventDescriptor receiver) {
    if (receiver == nil) return nil;
    DescType const type = receiver.descriptorType();
    if (type == typeSInt32) return NSNumber::numberWithInteger_(receiver.int32Value());
    if (type == typeIEEE64BitFloatingPoint) return NSNumber::numberWithDouble_(receiver.stringValue().doubleValue());
    if (type == typeText || type == typeUnicodeText || type == typeEnumerated || type == typeType)
        return receiver.stringValue();
    if (type == typeTrue || type == typeFalse) return NSNumber::numberWithBool_(BOOL(receiver.booleanValue()));
    if (type == typeAEList || type == typeObjectSpecifier) return objectOfList(receiver);
    if (type == typeAERecord) return objectOfRecord(receiver);
    if (type == typeNull) return receiver.data();
    return dataOfUnknownType(receiver);
}

} // namespace mac
