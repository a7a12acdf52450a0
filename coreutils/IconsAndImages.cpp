#include "coreutils/IconsAndImages.h"
#include "platform/foundation/FourCharCodeText.h"
#include "platform/foundation/NSData.h"
#include "platform/icons/IconFamily.h"

namespace mac {

namespace {

NSString textOf(OSType code) { return NSString::stringWithCodeUnits(textOfCode(code)); }

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
