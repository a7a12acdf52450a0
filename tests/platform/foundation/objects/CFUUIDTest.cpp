#include "platform/foundation/objects/CFUUID.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(CFUUID, IsRandomOfVersionFour) {
    CFUUIDRef const uuid = CFUUIDCreate(kCFAllocatorDefault);
    CFUUIDBytes const bytes = CFUUIDGetUUIDBytes(uuid);
    EXPECT_EQ(bytes[6] & 0xF0, 0x40);
    EXPECT_EQ(bytes[8] & 0xC0, 0x80);
    EXPECT_FALSE(uuid.isEqual_(CFUUIDCreate(kCFAllocatorDefault)));
    EXPECT_TRUE(uuid.isEqual_(uuid.copy()));
    EXPECT_EQ(uuid.hash(), uuid.copy().hash());
}

TEST(CFUUID, WritesItsBytesInFiveGroups) {
    CFUUIDRef const uuid = CFUUIDCreate(kCFAllocatorDefault);
    std::string expected;
    for (std::uint8_t const byte : CFUUIDGetUUIDBytes(uuid)) {
        if (expected.size() == 8 || expected.size() == 13 || expected.size() == 18 || expected.size() == 23)
            expected += '-';
        expected += NSString::stringWithFormat_("%02X", byte).UTF8String();
    }
    EXPECT_EQ(text(CFUUIDCreateString(kCFAllocatorDefault, uuid)), expected);
    EXPECT_EQ(text(uuid), expected);
}

TEST(CFUUID, OfNilIsNothing) {
    EXPECT_TRUE(CFUUIDCreateString(kCFAllocatorDefault, nil) == nil);
    EXPECT_EQ(CFUUIDGetUUIDBytes(nil), CFUUIDBytes{});
}

} // namespace mac::test
