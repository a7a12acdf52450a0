#include "coreutils/Strings.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/dates/UTCDateTime.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSValue.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(CoreUtilsRegistration, AnswersClassMethodsSentBySelector) {
    id const strings = classOf<NSString>();
    EXPECT_EQ(as<NSString>(strings.performSelector_("pxUUID")).length(), 36U);
    id const size = NSNumber::numberWithInt_(1572864);
    id const formatted = strings.performSelector_withObject_("pxFormattedStringWithSize:", size);
    EXPECT_TRUE(formatted.isEqual_(pxFormattedStringWithSize_(1572864)));
    id const noError = NSNumber::numberWithInt_(0);
    EXPECT_TRUE(strings.performSelector_withObject_("pxDescriptionOfSystemErrorCode:", noError) == nil);
    EXPECT_FALSE(id("text").respondsToSelector_("pxUUID"));
}

TEST(CoreUtilsRegistration, KeepsTheKeysOfADictionaryByAClassMethod) {
    NSDictionary const source = NSDictionary::dictionaryWithObjectsAndKeys_({"1", "one", "2", "two"});
    id const dictionaries = classOf<NSMutableDictionary>();
    NSDictionary const kept = as<NSDictionary>(dictionaries.performSelector_withObject_withObject_(
        "pxDictionaryWithDictionary:forKeys:", source, NSArray::arrayWithObject_("two")));
    EXPECT_TRUE(kept.isEqual_(NSDictionary::dictionaryWithObject_forKey_("2", "two")));
}

TEST(CoreUtilsRegistration, CarriesADateTimeThereAndBackByItsAddress) {
    NSDate const date = NSDate::dateWithTimeIntervalSinceReferenceDate_(1000);
    UTCDateTime record{};
    id const address = NSValue::valueWithPointer_(&record);
    EXPECT_TRUE(as<NSNumber>(date.performSelector_withObject_("pxUTCDateTime:", address)).boolValue());
    id const back = id(classOf<NSDate>()).performSelector_withObject_("pxDateWithUTCDateTime:", address);
    EXPECT_TRUE(back.isEqual_(date));
}

} // namespace mac::test
