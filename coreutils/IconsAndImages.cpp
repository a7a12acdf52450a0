#include "coreutils/IconsAndImages.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/NSData.h"
#include "platform/icons/IconFamily.h"

namespace mac {

namespace {

// Each byte is a character of the old encoding.
NSString textOf(OSType code) {
    constexpr int bits = 8;
    std::array<std::byte, 4> bytes{};
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<std::byte>(code.value() >> (bits * (bytes.size() - 1 - index)));
    return NSString::stringWithData_encoding_(NSData::dataWithBytes(bytes), NSMacOSRomanStringEncoding);
}

} // namespace

NSDictionary pxDictionaryWithIconRef_(IconRef iconRef) {
    std::optional<std::vector<IconPart>> const parts = partsOfIcon(iconRef);
    if (!parts) return nil;
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    for (IconPart const& part : *parts) {
        if (!part.bytes.empty()) dictionary.setObject_forKey_(NSData::dataWithBytes(part.bytes), textOf(part.type));
    }
    return NSDictionary::dictionaryWithDictionary_(dictionary);
}

NSDate pxDateWithUTCDateTime_(UTCDateTime const* utcDateTime) {
    CFAbsoluteTime time = 0;
    if (UCConvertUTCDateTimeToCFAbsoluteTime(utcDateTime, &time) != noErr) return nil;
    return NSDate::dateWithTimeIntervalSinceReferenceDate_(time);
}

bool pxUTCDateTime_(NSDate receiver, UTCDateTime* utcDateTime) {
    return receiver != nil &&
           UCConvertCFAbsoluteTimeToUTCDateTime(receiver.timeIntervalSinceReferenceDate(), utcDateTime) == noErr;
}

} // namespace mac
