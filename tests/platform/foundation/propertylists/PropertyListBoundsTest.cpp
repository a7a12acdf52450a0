#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include "tests/platform/foundation/propertylists/PropertyListBytes.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t index = 0; index < count; ++index)
        result += text;
    return result;
}

// A binary file of containers, each holding the next one so many times; the last one is followed by an empty array.
std::string chain(std::size_t containers, std::size_t references) {
    std::string bytes = "bplist00";
    std::string table;
    for (std::size_t index = 0; index < containers; ++index) {
        table += bigEndian(bytes.size(), 4);
        bytes += static_cast<char>(0xA0 | references);
        bytes += repeated(bigEndian(index + 1, 4), references);
    }
    table += bigEndian(bytes.size(), 4);
    bytes += "\xA0";
    return bytes + table + std::string(6, '\0') + "\x04\x04" + bigEndian(containers + 1, 8) + bigEndian(0, 8) +
           bigEndian(bytes.size(), 8);
}

std::string xmlChain(std::size_t depth) { return repeated("<array>", depth) + repeated("</array>", depth); }
std::string oldStyleChain(std::size_t depth) { return repeated("(", depth) + repeated(")", depth); }

bool isTooDeep(std::string_view bytes) {
    Reading const reading = readList(bytes);
    return reading.list == nil && reading.error.find(kPropertyListTooDeep) != std::string::npos;
}

bool isTooLarge(std::string_view bytes, NSPropertyListMutabilityOptions option = NSPropertyListImmutable) {
    Reading const reading = readList(bytes, option);
    return reading.list == nil && reading.error.find(kPropertyListTooLarge) != std::string::npos;
}

TEST(PropertyListBounds, EveryWalkOfTheDeepestListWorks) {
    for (std::string const& bytes : {xmlChain(512), oldStyleChain(512), chain(511, 1)}) {
        id const list = readList(bytes).list;
        std::string const text = repeated("[", 512) + repeated("]", 512);
        EXPECT_EQ(dump(list), text);
        EXPECT_EQ(dump(readList(writeList(list, NSPropertyListXMLFormat_v1_0).bytes).list), text);
        EXPECT_EQ(dump(readList(writeList(list, NSPropertyListBinaryFormat_v1_0).bytes).list), text);
        EXPECT_TRUE(list.isEqual_(readList(bytes, NSPropertyListMutableContainersAndLeaves).list));
        EXPECT_NE(list.hash(), 0U);
        EXPECT_GT(list.description().length(), 0U);
    }
}

TEST(PropertyListBounds, OneContainerMoreIsAnError) {
    EXPECT_TRUE(isTooDeep(xmlChain(513)));
    EXPECT_TRUE(isTooDeep(oldStyleChain(513)));
    EXPECT_TRUE(isTooDeep(chain(512, 1)));
}

TEST(PropertyListBounds, AMillionContainersWithinEachOtherAreAnError) {
    EXPECT_TRUE(isTooDeep(xmlChain(1000000)));
    EXPECT_TRUE(isTooDeep(repeated("<dict><key>k</key>", 1000000)));
    EXPECT_TRUE(isTooDeep(oldStyleChain(1000000)));
    EXPECT_TRUE(isTooDeep(repeated("{k=", 1000000)));
    EXPECT_TRUE(isTooDeep(chain(1000000, 1)));
}

// The path of the first meeting is short, that of the second too long.
TEST(PropertyListBounds, DepthCountsAlsoWhereAnObjectIsShared) {
    std::string bytes = "bplist00";
    std::string table;
    constexpr std::size_t kEach = 300;
    // The list holds the second chain, then the first, whose end holds the second.
    auto const add = [&](std::string const& object) {
        table += bigEndian(bytes.size(), 4);
        bytes += object;
    };
    add("\xA2"_bytes + bigEndian(kEach + 1, 4) + bigEndian(1, 4));
    for (std::size_t index = 1; index <= kEach * 2; ++index)
        add(index == kEach * 2 ? "\xA0"_bytes : "\xA1"_bytes + bigEndian(index + 1, 4));
    EXPECT_TRUE(isTooDeep(bytes + table + std::string(6, '\0') + "\x04\x04" + bigEndian(kEach * 2 + 1, 8) +
                          bigEndian(0, 8) + bigEndian(bytes.size(), 8)));
}

TEST(PropertyListBounds, ABombOfSharedReferencesIsAnError) {
    for (auto const option :
         {NSPropertyListImmutable, NSPropertyListMutableContainers, NSPropertyListMutableContainersAndLeaves}) {
        EXPECT_TRUE(isTooLarge(chain(64, 2), option));
    }
    EXPECT_TRUE(isTooLarge(chain(500, 14)));
}

TEST(PropertyListBounds, SharedContainersBelowTheBoundAreRead) {
    Reading const reading = readList(chain(10, 2));
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(as<NSArray>(reading.list).count(), 2U);
}

// 20 references to one string of 16 MiB.
TEST(PropertyListBounds, SharedTextCountsAsOftenAsItIsMet) {
    std::string bytes = "bplist00\xAF\x10\x14"_bytes + repeated("\x01", 20);
    std::size_t const string = bytes.size();
    bytes += "\x5F\x12"_bytes + bigEndian(16 << 20, 4) + std::string(16 << 20, 'x');
    std::string const table = bigEndian(8, 4) + bigEndian(string, 4);
    EXPECT_TRUE(isTooLarge(bytes + table + std::string(6, '\0') + "\x04\x01" + bigEndian(2, 8) + bigEndian(0, 8) +
                           bigEndian(bytes.size(), 8)));
}

TEST(PropertyListBounds, TooManyObjectsAreAnError) {
    EXPECT_TRUE(isTooLarge(std::string("<array>") + repeated("<true/>", kPropertyListMaximumObjects + 1) + "</array>"));
    EXPECT_TRUE(isTooLarge(std::string("(") + repeated("a,", kPropertyListMaximumObjects + 1) + ")"));
}

NSArray bomb(std::size_t levels) {
    NSArray array = NSArray::array();
    for (std::size_t level = 0; level < levels; ++level)
        array = NSArray::arrayWithObjects_({array, array});
    return array;
}

TEST(PropertyListBounds, ABombIsNotWritten) {
    for (auto const format : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0}) {
        Writing const writing = writeList(bomb(100), format);
        EXPECT_EQ(writing.bytes, "");
        EXPECT_EQ(writing.error, kPropertyListTooLarge);
    }
    EXPECT_FALSE(NSPropertyListSerialization::propertyList_isValidForFormat_(bomb(100), NSPropertyListOpenStepFormat));
}

TEST(PropertyListBounds, AListThatHoldsItselfIsNotWritten) {
    NSMutableArray const array = NSMutableArray::array();
    array.addObject_(array);
    for (auto const format : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0}) {
        EXPECT_EQ(writeList(array, format).error, kPropertyListTooDeep);
        EXPECT_FALSE(NSPropertyListSerialization::propertyList_isValidForFormat_(array, format));
    }
    EXPECT_FALSE(NSPropertyListSerialization::propertyList_isValidForFormat_(array, NSPropertyListOpenStepFormat));
    array.removeAllObjects();
}

} // namespace
} // namespace mac::test
