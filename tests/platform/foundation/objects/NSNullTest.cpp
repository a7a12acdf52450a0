#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(NSNull, IsOneObject) {
    EXPECT_TRUE(isSame(NSNull::null(), NSNull::null()));
    EXPECT_TRUE(isSame(NSNull::null().copy(), NSNull::null()));
    EXPECT_TRUE(isSame(as<NSNull>(id(NSNull::null())), NSNull::null()));
}

TEST(NSNull, IsNotNil) {
    EXPECT_TRUE(NSNull::null() != nil);
    EXPECT_TRUE(NSNull::null().isEqual_(NSNull::null()));
    EXPECT_FALSE(NSNull::null().isEqual_(nil));
    EXPECT_FALSE(NSNull::null().isEqual_("<null>"));
}

TEST(NSNull, StandsInCollections) {
    NSArray const array = NSArray::arrayWithObject_(NSNull::null());
    EXPECT_TRUE(array.containsObject_(NSNull::null()));
    EXPECT_EQ(text(NSNull::null()), "<null>");
}

TEST(NSNull, HasNoMutableFormAndAnswersItselfForEachKey) {
    EXPECT_TRUE(isSame(NSNull::null().valueForKey_("name"), NSNull::null()));
    EXPECT_THROW(NSNull::null().mutableCopy(), NSInvalidArgumentException);
}

} // namespace mac::test
