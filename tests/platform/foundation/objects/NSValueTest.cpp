#include "platform/foundation/objects/NSValue.h"
#include "platform/foundation/objects/Method.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

struct Size {
    int width{0};
    int height{0};
};

bool readWidth(Parcel const&, Size const* size, int* width) {
    if (!size || !width) return false;
    *width = size->width;
    return true;
}

int heightOf(Parcel const&, Size size) { return size.height; }

std::uint32_t codeOf(FourCharCode code) { return code.value(); }

NSString join(NSString const& first, NSString const& second) { return first.stringByAppendingString_(second); }

} // namespace

TEST(NSValue, GivesAPointerBackAsTheTypeThatItWasMadeWith) {
    int number = 3;
    NSValue const value = NSValue::valueWithPointer_(&number);
    EXPECT_EQ(value.pointerValue<int>(), &number);
    EXPECT_EQ(value.pointerValue<int const>(), &number);
    EXPECT_EQ(value.pointerValue<unsigned>(), nullptr);
    EXPECT_EQ(NSValue::valueWithPointer_(static_cast<int const*>(&number)).pointerValue<int>(), nullptr);
    EXPECT_EQ(NSValue().pointerValue<int>(), nullptr);
}

TEST(NSValue, IsEqualByPointerAndType) {
    Size size;
    NSValue const value = NSValue::valueWithPointer_(&size);
    EXPECT_TRUE(value.isEqual_(NSValue::valueWithPointer_(&size)));
    EXPECT_EQ(value.hash(), NSValue::valueWithPointer_(&size).hash());
    EXPECT_FALSE(value.isEqual_(NSValue::valueWithPointer_(&size.width)));
    EXPECT_FALSE(value.isEqual_("text"));
    EXPECT_TRUE(isSame(value.copy(), value));
}

TEST(Message, CarriesPointersAndRecordsInValues) {
    Parcel const parcel = Parcel::parcelWithName_("Ida");
    Method const rows[]{method<&readWidth>("readWidth:to:"), method<&heightOf>("heightOf:")};
    classOf<Parcel>().addMethods(rows);
    Size const size{.width = 7, .height = 9};
    int width = 0;
    id const there = NSValue::valueWithPointer_(&size);
    id const answer = NSValue::valueWithPointer_(&width);
    EXPECT_TRUE(
        as<NSNumber>(parcel.performSelector_withObject_withObject_("readWidth:to:", there, answer)).boolValue());
    EXPECT_EQ(width, 7);
    EXPECT_EQ(as<NSNumber>(parcel.performSelector_withObject_("heightOf:", there)).intValue(), 9);
}

TEST(Message, GivesANullPointerForAMissingPart) {
    Parcel const parcel = Parcel::parcelWithName_("Ida");
    Method const rows[]{method<&readWidth>("readWidth:to:"), method<&heightOf>("heightOf:")};
    classOf<Parcel>().addMethods(rows);
    int width = 0;
    id const number = NSNumber::numberWithUnsignedLongLong_(reinterpret_cast<std::uintptr_t>(&width));
    id const pointer = NSValue::valueWithPointer_(&width);
    EXPECT_FALSE(
        as<NSNumber>(parcel.performSelector_withObject_withObject_("readWidth:to:", number, pointer)).boolValue());
    EXPECT_FALSE(
        as<NSNumber>(parcel.performSelector_withObject_withObject_("readWidth:to:", pointer, number)).boolValue());
    EXPECT_FALSE(as<NSNumber>(parcel.performSelector_("readWidth:to:")).boolValue());
    EXPECT_EQ(as<NSNumber>(parcel.performSelector_withObject_("heightOf:", pointer)).intValue(), 0);
}

TEST(Class, TakesFurtherClassMethods) {
    addCategory<Parcel>({}, {classMethod<&codeOf>("codeOf:"), classMethod<&join>("join:with:")});
    id const cls = classOf<Parcel>();
    id const code = NSNumber::numberWithUnsignedInt_(FourCharCode("psn ").value());
    EXPECT_EQ(as<NSNumber>(cls.performSelector_withObject_("codeOf:", code)).unsignedIntValue(), 0x70736E20U);
    EXPECT_EQ(text(cls.performSelector_withObject_withObject_("join:with:", "a", "b")), "ab");
    EXPECT_TRUE(as<NSNumber>(cls.performSelector_("count")) != nil);
    EXPECT_FALSE(Parcel::parcelWithName_("Ida").respondsToSelector_("codeOf:"));
}

} // namespace mac::test
