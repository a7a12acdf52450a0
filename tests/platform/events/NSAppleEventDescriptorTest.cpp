#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/running/Log.h"
#include "tests/platform/events/Descriptors.h"
#include <array>
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {

namespace {

constexpr AEKeyword Name{"pnam"};
constexpr AEKeyword Size{"ptsz"};

NSAppleEventDescriptor quitEvent(NSAppleEventDescriptor const& target, AEReturnID returnID = kAutoGenerateReturnID) {
    return NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
        kCoreEventClass, kAEQuitApplication, target, returnID, kAnyTransactionID);
}

} // namespace

TEST(NSAppleEventDescriptor, IsNullWithoutDataAtFirst) {
    NSAppleEventDescriptor const descriptor = NSAppleEventDescriptor::nullDescriptor();
    EXPECT_EQ(descriptor.descriptorType(), typeNull);
    EXPECT_EQ(descriptor.data().length(), 0U);
    EXPECT_EQ(descriptor.numberOfItems(), 0);
    EXPECT_TRUE(descriptor.stringValue() == nil);
}

TEST(NSAppleEventDescriptor, HoldsACopyOfTheBytesItIsMadeOf) {
    std::array<std::uint32_t, 2> serialNumber{0, 2};
    NSAppleEventDescriptor const descriptor = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
        typeProcessSerialNumber, serialNumber.data(), sizeof serialNumber);
    serialNumber[1] = 7;
    EXPECT_EQ(descriptor.descriptorType(), typeProcessSerialNumber);
    ASSERT_EQ(descriptor.data().length(), 8U);
    std::array<std::uint32_t, 2> const expected{0, 2};
    EXPECT_TRUE(descriptor.data().isEqualToData_(NSData::dataWithBytes_length_(expected.data(), sizeof expected)));
}

TEST(NSAppleEventDescriptor, IsMadeOfDataAndOfNoData) {
    NSData const data = NSData::dataWithBytes_length_("abc", 3);
    EXPECT_TRUE(NSAppleEventDescriptor::descriptorWithDescriptorType_data_(typeData, data).data().isEqualToData_(data));
    EXPECT_EQ(NSAppleEventDescriptor::descriptorWithDescriptorType_data_(typeData, nil).data().length(), 0U);
    EXPECT_TRUE(NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeData, nullptr, 1) == nil);
    EXPECT_FALSE(NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeData, nullptr, 0) == nil);
}

TEST(NSAppleEventDescriptor, HoldsATruthValueInItsType) {
    NSAppleEventDescriptor const yes = NSAppleEventDescriptor::descriptorWithBoolean_(YES);
    NSAppleEventDescriptor const no = NSAppleEventDescriptor::descriptorWithBoolean_(NO);
    EXPECT_EQ(yes.descriptorType(), typeTrue);
    EXPECT_EQ(no.descriptorType(), typeFalse);
    EXPECT_TRUE(yes.booleanValue());
    EXPECT_FALSE(no.booleanValue());
    EXPECT_EQ(yes.data().length(), 0U);
}

TEST(NSAppleEventDescriptor, HoldsCodesNumbersAndTexts) {
    NSAppleEventDescriptor const code = NSAppleEventDescriptor::descriptorWithEnumCode_(OSType("yes "));
    EXPECT_EQ(code.descriptorType(), typeEnumerated);
    EXPECT_EQ(code.enumCodeValue(), OSType("yes "));
    EXPECT_TRUE(code.stringValue().isEqualToString_("yes "));
    NSAppleEventDescriptor const type = NSAppleEventDescriptor::descriptorWithTypeCode_(OSType("cfol"));
    EXPECT_EQ(type.descriptorType(), typeType);
    EXPECT_EQ(type.typeCodeValue(), OSType("cfol"));
    EXPECT_EQ(numberDescriptor(-5).descriptorType(), typeSInt32);
    EXPECT_EQ(numberDescriptor(-5).int32Value(), -5);
    EXPECT_EQ(stringDescriptor("x").descriptorType(), typeUnicodeText);
    EXPECT_TRUE(stringDescriptor("x").stringValue().isEqualToString_("x"));
    EXPECT_TRUE(stringDescriptor("").stringValue().isEqualToString_(""));
    EXPECT_TRUE(NSAppleEventDescriptor::descriptorWithString_(nil) == nil);
}

TEST(NSAppleEventDescriptor, KeepsLoneSurrogatesOfFileNames) {
    NSString const name = NSString::stringWithFileSystemRepresentation_("caf\xE9\".app");
    EXPECT_TRUE(stringDescriptor(name).stringValue().isEqualToString_(name));
}

TEST(NSAppleEventDescriptor, PutsItemsIntoAListByIndexesFromOne) {
    NSAppleEventDescriptor const list = listDescriptor({numberDescriptor(1), numberDescriptor(2)});
    list.insertDescriptor_atIndex_(numberDescriptor(3), 3);
    ASSERT_EQ(list.numberOfItems(), 3);
    list.insertDescriptor_atIndex_(numberDescriptor(20), 2);
    ASSERT_EQ(list.numberOfItems(), 3) << "an item that is there is replaced";
    EXPECT_EQ(list.descriptorAtIndex_(1).int32Value(), 1);
    EXPECT_EQ(list.descriptorAtIndex_(2).int32Value(), 20);
    EXPECT_EQ(list.descriptorAtIndex_(3).int32Value(), 3);
    for (NSInteger const index : {0, 4, -1})
        EXPECT_TRUE(list.descriptorAtIndex_(index) == nil) << index;
    EXPECT_EQ(list.keywordForDescriptorAtIndex_(1), AEKeyword());
    EXPECT_TRUE(list.descriptorForKeyword_(AEKeyword()) == nil) << "a list has no keywords";
}

TEST(NSAppleEventDescriptor, IgnoresItemsBeyondTheEndOfAList) {
    NSAppleEventDescriptor const list = listDescriptor({numberDescriptor(1)});
    for (NSInteger const index : {3, -1, 0x7FFFFFFF})
        list.insertDescriptor_atIndex_(numberDescriptor(9), index);
    list.insertDescriptor_atIndex_(nil, 0);
    list.removeDescriptorAtIndex_(2);
    list.removeDescriptorAtIndex_(0);
    EXPECT_EQ(list.numberOfItems(), 1);
    list.removeDescriptorAtIndex_(1);
    EXPECT_EQ(list.numberOfItems(), 0);
}

TEST(NSAppleEventDescriptor, CopiesWhatIsPutInAndTakenOut) {
    NSAppleEventDescriptor const inner = listDescriptor({numberDescriptor(1)});
    NSAppleEventDescriptor const outer = listDescriptor({inner});
    inner.insertDescriptor_atIndex_(numberDescriptor(2), 0);
    EXPECT_EQ(outer.descriptorAtIndex_(1).numberOfItems(), 1);
    outer.descriptorAtIndex_(1).insertDescriptor_atIndex_(numberDescriptor(3), 0);
    EXPECT_EQ(outer.descriptorAtIndex_(1).numberOfItems(), 1);
    outer.insertDescriptor_atIndex_(outer, 0);
    ASSERT_EQ(outer.numberOfItems(), 2) << "a list in itself is a copy of what it was";
    EXPECT_EQ(outer.descriptorAtIndex_(2).numberOfItems(), 1);
    NSAppleEventDescriptor const copy = as<NSAppleEventDescriptor>(outer.copy());
    copy.removeDescriptorAtIndex_(1);
    EXPECT_EQ(outer.numberOfItems(), 2);
}

TEST(NSAppleEventDescriptor, PutsValuesIntoARecordByKeyword) {
    NSAppleEventDescriptor const record = NSAppleEventDescriptor::recordDescriptor();
    record.setDescriptor_forKeyword_(stringDescriptor("a"), Name);
    record.setDescriptor_forKeyword_(numberDescriptor(1), Size);
    record.setDescriptor_forKeyword_(stringDescriptor("b"), Name);
    record.setDescriptor_forKeyword_(nil, Size);
    ASSERT_EQ(record.numberOfItems(), 2);
    EXPECT_EQ(record.keywordForDescriptorAtIndex_(1), Name);
    EXPECT_EQ(record.keywordForDescriptorAtIndex_(2), Size);
    EXPECT_EQ(record.keywordForDescriptorAtIndex_(3), AEKeyword());
    EXPECT_TRUE(record.descriptorForKeyword_(Name).stringValue().isEqualToString_("b"));
    EXPECT_TRUE(record.paramDescriptorForKeyword_(Name).stringValue().isEqualToString_("b"));
    EXPECT_TRUE(record.descriptorForKeyword_(AEKeyword("none")) == nil);
    record.insertDescriptor_atIndex_(numberDescriptor(3), 0);
    EXPECT_EQ(record.numberOfItems(), 2) << "a record takes values by keyword alone";
    record.removeDescriptorWithKeyword_(Name);
    record.removeDescriptorWithKeyword_(Name);
    EXPECT_EQ(record.numberOfItems(), 1);
}

TEST(NSAppleEventDescriptor, TakesNothingIntoAValue) {
    NSAppleEventDescriptor const value = numberDescriptor(1);
    value.insertDescriptor_atIndex_(numberDescriptor(2), 0);
    value.setDescriptor_forKeyword_(numberDescriptor(2), Name);
    value.setAttributeDescriptor_forKeyword_(numberDescriptor(2), Name);
    EXPECT_EQ(value.numberOfItems(), 0);
    EXPECT_TRUE(value.attributeDescriptorForKeyword_(Name) == nil);
    EXPECT_EQ(value.int32Value(), 1);
}

TEST(NSAppleEventDescriptor, MakesAnEventWithItsAttributes) {
    NSAppleEventDescriptor const event = quitEvent(numberDescriptor(3), 12);
    EXPECT_EQ(event.descriptorType(), typeAppleEvent);
    EXPECT_EQ(event.eventClass(), kCoreEventClass);
    EXPECT_EQ(event.eventID(), kAEQuitApplication);
    EXPECT_EQ(event.returnID(), 12);
    EXPECT_EQ(event.transactionID(), kAnyTransactionID);
    EXPECT_EQ(event.attributeDescriptorForKeyword_(keyAddressAttr).int32Value(), 3);
    EXPECT_EQ(event.attributeDescriptorForKeyword_(keyEventIDAttr).typeCodeValue(), kAEQuitApplication);
    EXPECT_TRUE(event.attributeDescriptorForKeyword_(keySenderPIDAttr) == nil);
    EXPECT_EQ(event.numberOfItems(), 0);
}

TEST(NSAppleEventDescriptor, MakesAnEventWithoutATarget) {
    EXPECT_TRUE(quitEvent(nil).attributeDescriptorForKeyword_(keyAddressAttr) == nil);
    EXPECT_EQ(quitEvent(nil).eventID(), kAEQuitApplication);
}

TEST(NSAppleEventDescriptor, MakesNewReturnIDs) {
    AEReturnID const first = quitEvent(nil).returnID();
    AEReturnID const second = quitEvent(nil).returnID();
    EXPECT_GT(first, 0);
    EXPECT_GT(second, 0);
    EXPECT_NE(first, second);
}

TEST(NSAppleEventDescriptor, SetsAttributesAndParametersOfAnEvent) {
    NSAppleEventDescriptor const event = quitEvent(nil);
    event.setParamDescriptor_forKeyword_(stringDescriptor("x"), keyDirectObject);
    event.setAttributeDescriptor_forKeyword_(numberDescriptor(9), keySenderPIDAttr);
    event.setParamDescriptor_forKeyword_(nil, keyDirectObject);
    event.setAttributeDescriptor_forKeyword_(nil, keySenderPIDAttr);
    EXPECT_EQ(event.numberOfItems(), 1);
    EXPECT_TRUE(event.paramDescriptorForKeyword_(keyDirectObject).stringValue().isEqualToString_("x"));
    EXPECT_EQ(event.attributeDescriptorForKeyword_(keySenderPIDAttr).int32Value(), 9);
    EXPECT_TRUE(event.paramDescriptorForKeyword_(keySenderPIDAttr) == nil) << "an attribute is no parameter";
    event.removeParamDescriptorWithKeyword_(keyDirectObject);
    EXPECT_EQ(event.numberOfItems(), 0);
}

TEST(NSAppleEventDescriptor, GivesItsRecordForTheProceduralCalls) {
    NSAppleEventDescriptor const descriptor = numberDescriptor(1);
    AEDesc copy = *descriptor.aeDesc();
    EXPECT_EQ(copy.descriptorType, typeSInt32);
    EXPECT_EQ(AEDisposeDesc(&copy), noErr);
    EXPECT_EQ(copy.descriptorType, typeNull);
    EXPECT_EQ(copy.dataHandle, nullptr);
    EXPECT_EQ(descriptor.int32Value(), 1) << "a copy is disposed of alone";
    EXPECT_EQ(AEDisposeDesc(nullptr), paramErr);
    EXPECT_EQ(NSAppleEventDescriptor::descriptorWithAEDesc(*descriptor.aeDesc()).int32Value(), 1);
}

TEST(NSAppleEventDescriptor, MakesTheDataOfAListAListAgain) {
    NSAppleEventDescriptor const list = listDescriptor({numberDescriptor(1), listDescriptor({stringDescriptor("x")})});
    NSAppleEventDescriptor const again =
        NSAppleEventDescriptor::descriptorWithDescriptorType_data_(typeAEList, list.data());
    ASSERT_EQ(again.numberOfItems(), 2);
    EXPECT_TRUE(again.descriptorAtIndex_(2).stringValue().isEqualToString_("x"));
    NSAppleEventDescriptor const other =
        NSAppleEventDescriptor::descriptorWithDescriptorType_data_(typeAERecord, list.data());
    EXPECT_EQ(other.numberOfItems(), 0) << "a list is no record";
    EXPECT_EQ(NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeAEList, "x", 1).numberOfItems(),
              0);
}

TEST(NSAppleEventDescriptor, RefusesToNestDeeperThanItsBound) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    NSAppleEventDescriptor list = NSAppleEventDescriptor::listDescriptor();
    std::size_t depth = 1;
    while (depth < 2 * kDescriptorMaximumDepth) {
        NSAppleEventDescriptor const outer = listDescriptor({list});
        if (outer.numberOfItems() == 0) break;
        list = outer;
        ++depth;
    }
    EXPECT_EQ(depth, kDescriptorMaximumDepth);
    EXPECT_EQ(lines, std::vector<std::string>{"A descriptor nested deeper than 512 containers was left out"});
    EXPECT_GT(list.data().length(), 0U);
    EXPECT_GT(list.description().length(), kDescriptorMaximumDepth);
}

TEST(NSAppleEventDescriptor, DescribesItself) {
    NSAppleEventDescriptor const record = NSAppleEventDescriptor::recordDescriptor();
    record.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithEnumCode_(OSType("indx")),
                                     AEKeyword("form"));
    record.setDescriptor_forKeyword_(NSAppleEventDescriptor::nullDescriptor(), AEKeyword("from"));
    auto const described = [](NSAppleEventDescriptor const& descriptor) {
        return descriptor.description().UTF8String();
    };
    EXPECT_EQ(described(stringDescriptor("x")), "<NSAppleEventDescriptor: 'utxt'(\"x\")>");
    EXPECT_EQ(described(listDescriptor({numberDescriptor(1), stringDescriptor("a")})),
              "<NSAppleEventDescriptor: [ 1, 'utxt'(\"a\") ]>");
    EXPECT_EQ(described(record), "<NSAppleEventDescriptor: { 'form':'indx', 'from':'null'() }>");
    EXPECT_EQ(described(record.coerceToDescriptorType_(typeObjectSpecifier)),
              "<NSAppleEventDescriptor: 'obj '{ 'form':'indx', 'from':'null'() }>");
    EXPECT_EQ(described(NSAppleEventDescriptor::descriptorWithBoolean_(YES)),
              "<NSAppleEventDescriptor: 'true'(\"true\")>");
    EXPECT_EQ(described(NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeData, "\x01\xAB", 2)),
              "<NSAppleEventDescriptor: 'tdta'($01AB$)>");
    EXPECT_EQ(described(quitEvent(nil)), "<NSAppleEventDescriptor: 'aevt'\\'quit'{  }>");
}

TEST(NSAppleEventDescriptor, EndsALongDescriptionInDots) {
    // Each list holds the one before twice.
    NSAppleEventDescriptor list = listDescriptor({stringDescriptor("abc")});
    for (int doubling = 0; doubling < 60; ++doubling)
        list = listDescriptor({list, list});
    NSString const description = list.description();
    EXPECT_TRUE(description.hasSuffix_("...>"));
    EXPECT_LT(description.length(), 70000U);
    EXPECT_TRUE(list.data() == nil) << "nor has it a flat form";
}

TEST(NSAppleEventDescriptor, AnswersNothingForNil) {
    NSAppleEventDescriptor const none;
    EXPECT_EQ(none.descriptorType(), DescType());
    EXPECT_TRUE(none.data() == nil);
    EXPECT_EQ(none.aeDesc(), nullptr);
    EXPECT_FALSE(none.booleanValue());
    EXPECT_EQ(none.int32Value(), 0);
    EXPECT_EQ(none.enumCodeValue(), OSType());
    EXPECT_EQ(none.typeCodeValue(), OSType());
    EXPECT_TRUE(none.stringValue() == nil);
    EXPECT_TRUE(none.coerceToDescriptorType_(typeAEList) == nil);
    EXPECT_EQ(none.eventClass(), AEEventClass());
    EXPECT_EQ(none.eventID(), AEEventID());
    EXPECT_EQ(none.returnID(), 0);
    EXPECT_EQ(none.transactionID(), 0);
    EXPECT_TRUE(none.attributeDescriptorForKeyword_(keyAddressAttr) == nil);
    EXPECT_TRUE(none.paramDescriptorForKeyword_(keyDirectObject) == nil);
    EXPECT_EQ(none.numberOfItems(), 0);
    EXPECT_TRUE(none.descriptorAtIndex_(1) == nil);
    EXPECT_TRUE(none.descriptorForKeyword_(Name) == nil);
    EXPECT_EQ(none.keywordForDescriptorAtIndex_(1), AEKeyword());
    none.insertDescriptor_atIndex_(numberDescriptor(1), 0);
    none.removeDescriptorAtIndex_(1);
    none.setDescriptor_forKeyword_(numberDescriptor(1), Name);
    none.setParamDescriptor_forKeyword_(numberDescriptor(1), Name);
    none.setAttributeDescriptor_forKeyword_(numberDescriptor(1), Name);
    none.removeDescriptorWithKeyword_(Name);
    none.removeParamDescriptorWithKeyword_(Name);
    EXPECT_TRUE(none == nil);
}

} // namespace mac::test
