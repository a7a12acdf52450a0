#include "platform/foundation/collections/NSDictionary.h"
#include "tests/platform/foundation/propertylists/PropertyListBytes.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {
namespace {

// What the trailer says of the file.
struct Trailer {
    std::size_t offsetSize{2};
    std::size_t referenceSize{1};
    std::uint64_t count{0};
    std::uint64_t top{0};
    std::uint64_t table{0};
};

std::string trailerBytes(Trailer const& trailer) {
    return std::string(6, '\0') + bigEndian(trailer.offsetSize, 1) + bigEndian(trailer.referenceSize, 1) +
           bigEndian(trailer.count, 8) + bigEndian(trailer.top, 8) + bigEndian(trailer.table, 8);
}

// A file of these objects with references of the size; the first is the list.
std::string file(std::vector<std::string> const& objects, std::size_t referenceSize = 1) {
    std::string bytes = "bplist00";
    std::string table;
    for (std::string const& object : objects) {
        table += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    Trailer const trailer{4, referenceSize, objects.size(), 0, bytes.size()};
    return bytes + table + trailerBytes(trailer);
}

std::string binaryComplaint(std::string_view bytes) {
    Reading const reading = readList(bytes);
    std::string const error = reading.error;
    constexpr std::string_view kHead = "Binary parser error:\n\t";
    if (reading.list != nil || !error.starts_with(kHead)) return "no such error: " + error;
    return error.substr(kHead.size(), error.size() - kHead.size() - 1);
}

struct BinaryRow {
    char const* name;
    std::vector<std::string> objects;
    char const* expected;
};

void PrintTo(BinaryRow const& row, std::ostream* out) { *out << row.name; }

class BinaryValue : public testing::TestWithParam<BinaryRow> {};

TEST_P(BinaryValue, IsRead) {
    Reading const reading = readList(file(GetParam().objects));
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(dump(reading.list), GetParam().expected);
    EXPECT_EQ(reading.format, NSPropertyListBinaryFormat_v1_0);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListBinary, BinaryValue,
    testing::Values(
        BinaryRow{"false", {"\x08"_bytes}, "false"}, BinaryRow{"true", {"\x09"_bytes}, "true"},
        BinaryRow{"one byte, unsigned", {"\x10\xFF"_bytes}, "i255"},
        BinaryRow{"two bytes, unsigned", {"\x11\xFF\xFF"_bytes}, "i65535"},
        BinaryRow{"four bytes, unsigned", {"\x12\xFF\xFF\xFF\xFF"_bytes}, "i4294967295"},
        BinaryRow{"eight bytes, signed", {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE"_bytes}, "i-2"},
        BinaryRow{"sixteen bytes, small", {"\x14"_bytes + bigEndian(5, 16)}, "i5"},
        BinaryRow{"sixteen bytes, above the signed range",
                  {"\x14"_bytes + bigEndian(~std::uint64_t{0}, 16)},
                  "i18446744073709551615"},
        BinaryRow{"sixteen bytes, negative", {"\x14"_bytes + std::string(16, '\xFF')}, "i-1"},
        BinaryRow{"real of four bytes", {"\x22\x3F\xC0\0\0"_bytes}, "r1.5"},
        BinaryRow{"real of eight bytes", {"\x23\x3F\xB9\x99\x99\x99\x99\x99\x9A"_bytes}, "r0.10000000000000001"},
        BinaryRow{"real that is no number", {"\x22\x7F\xC0\0\0"_bytes}, "rnan"},
        BinaryRow{"date", {"\x33\xBF\xE0\0\0\0\0\0\0"_bytes}, "d-0.5"},
        BinaryRow{"unique identifier", {"\x80\xFF"_bytes}, "u255"},
        BinaryRow{"unique identifier of three bytes", {"\x82\x01\0\0"_bytes}, "u65536"},
        BinaryRow{"unique identifier of 16 bytes", {"\x8F"_bytes + bigEndian(4294967295U, 16)}, "u4294967295"},
        BinaryRow{"data", {"\x42\0\xFF"_bytes}, "<00ff>"}, BinaryRow{"no data", {"\x40"_bytes}, "<>"},
        BinaryRow{"ASCII", {"\x52hi"_bytes}, "\"hi\""}, BinaryRow{"UTF-16", {"\x62\0h\x20\xAC"_bytes}, "\"h\\u20ac\""},
        BinaryRow{"a lone surrogate", {"\x61\xDC\x80"_bytes}, "\"\\udc80\""},
        BinaryRow{"long ASCII", {"\x5F\x10\x10"_bytes + std::string(16, 'x')}, "\"xxxxxxxxxxxxxxxx\""},
        BinaryRow{"a size of eight bytes", {"\x5F\x13"_bytes + bigEndian(2, 8) + "hi"}, "\"hi\""},
        BinaryRow{"array", {"\xA2\x01\x02"_bytes, "\x09"_bytes, "\x08"_bytes}, "[true,false]"},
        BinaryRow{"no array", {"\xA0"_bytes}, "[]"},
        BinaryRow{"dictionary",
                  {"\xD2\x01\x02\x03\x04"_bytes, "\x51z"_bytes, "\x51k"_bytes, "\x09"_bytes, "\x08"_bytes},
                  "{\"k\":false,\"z\":true}"},
        BinaryRow{
            "equal keys", {"\xD2\x01\x01\x02\x03"_bytes, "\x51k"_bytes, "\x09"_bytes, "\x08"_bytes}, "{\"k\":false}"},
        BinaryRow{"an object that is used twice",
                  {"\xA2\x01\x01"_bytes, "\xA1\x02"_bytes, "\x09"_bytes},
                  "[[true],[true]]"}));

class BinaryMistake : public testing::TestWithParam<BinaryRow> {};

TEST_P(BinaryMistake, IsRefusedWithItsOffset) {
    EXPECT_EQ(binaryComplaint(file(GetParam().objects)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListBinary, BinaryMistake,
    testing::Values(
        BinaryRow{"null", {"\0"_bytes}, "There is an object of a kind that property lists do not hold at offset 8"},
        BinaryRow{
            "fill byte", {"\x0F"_bytes}, "There is an object of a kind that property lists do not hold at offset 8"},
        BinaryRow{"unique identifier of 33 bits",
                  {"\x84\x01\0\0\0\0"_bytes},
                  "A unique identifier is cut off or has more than 32 bits at offset 8"},
        BinaryRow{"unique identifier above all",
                  {"\x8F\x01"_bytes + std::string(15, '\0')},
                  "A unique identifier is cut off or has more than 32 bits at offset 8"},
        BinaryRow{"cut unique identifier",
                  {"\x83\x01"_bytes},
                  "A unique identifier is cut off or has more than 32 bits at offset 8"},
        BinaryRow{"set", {"\xC0"_bytes}, "There is an object of a kind that property lists do not hold at offset 8"},
        BinaryRow{"integer of 32 bytes",
                  {"\x15"_bytes + std::string(32, '\0')},
                  "An integer is cut off or has more than 64 bits at offset 8"},
        BinaryRow{"integer above 64 bits",
                  {"\x14"_bytes + std::string(16, '\x01')},
                  "An integer is cut off or has more than 64 bits at offset 8"},
        BinaryRow{"integer below 64 bits",
                  {"\x14"_bytes + std::string(8, '\xFF') + std::string(8, '\0')},
                  "An integer is cut off or has more than 64 bits at offset 8"},
        BinaryRow{"cut integer", {"\x13\0\0"_bytes}, "An integer is cut off or has more than 64 bits at offset 8"},
        BinaryRow{"real of one byte",
                  {"\x20\0"_bytes},
                  "A real is cut off or has another width than 4 or 8 bytes at offset 8"},
        BinaryRow{"cut real", {"\x23\0"_bytes}, "A real is cut off or has another width than 4 or 8 bytes at offset 8"},
        BinaryRow{"cut date", {"\x33\0"_bytes}, "A date is cut off at offset 8"},
        BinaryRow{"date that is no number", {"\x33\x7F\xF8\0\0\0\0\0\0"_bytes}, "A date is no number at offset 8"},
        BinaryRow{"endless date", {"\x33\x7F\xF0\0\0\0\0\0\0"_bytes}, "A date is no number at offset 8"},
        BinaryRow{"cut string", {"\x55hi"_bytes}, "An object is larger than the file, at offset 8"},
        BinaryRow{"UTF-16 cut in a unit", {"\x62\0h\0"_bytes}, "An object is larger than the file, at offset 8"},
        BinaryRow{"two gigabytes", {"\x4F\x12\x80\0\0\0"_bytes}, "An object is larger than the file, at offset 8"},
        BinaryRow{"all there is",
                  {"\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"_bytes},
                  "An object is larger than the file, at offset 8"},
        BinaryRow{"references past all there is",
                  {"\xDF\x13\x80\0\0\0\0\0\0\0"_bytes},
                  "An object is larger than the file, at offset 8"},
        BinaryRow{"size that is no integer",
                  {"\x5F\x23\0\0\0\0\0\0\0\0"_bytes},
                  "The size of an object is no size at offset 8"},
        BinaryRow{"missing size", {"\x5F"_bytes}, "The size of an object is no size at offset 8"},
        BinaryRow{
            "string that is not ASCII", {"\x51\xE9"_bytes}, "A string that is said to be ASCII is not, at offset 9"},
        BinaryRow{
            "reference to nothing", {"\xA1\x07"_bytes}, "A reference leads outside of the file's objects at offset 8"},
        BinaryRow{"key that is no string",
                  {"\xD1\x01\x01"_bytes, "\x09"_bytes},
                  "A dictionary has a key that is no string at offset 8"},
        BinaryRow{"array in itself", {"\xA1\x01"_bytes, "\xA1\0"_bytes}, "A container holds itself at offset 8"}));

TEST(PropertyListBinary, ReadsNumbersOfAnyWidthInItsTables) {
    for (std::size_t const width : {1U, 2U, 3U, 5U, 8U}) {
        std::string const objects = "bplist00\xA1"_bytes + bigEndian(1, width) + "\x09";
        Trailer const trailer{width, width, 2, 0, objects.size()};
        std::string const table = bigEndian(8, width) + bigEndian(objects.size() - 1, width);
        EXPECT_EQ(dump(readList(objects + table + trailerBytes(trailer)).list), "[true]") << width;
    }
}

TEST(PropertyListBinary, IsRefusedWhereverItIsCut) {
    std::string const whole = file({"\xA2\x01\x02"_bytes,
                                    "\x53"
                                    "abc"_bytes,
                                    "\x13\0\0\0\0\0\0\0\x05"_bytes});
    for (std::size_t length = 6; length < whole.size(); ++length)
        EXPECT_NE(binaryComplaint(whole.substr(0, length)), "") << length;
}

TEST(PropertyListBinary, RefusesATrailerThatDoesNotFitTheFile) {
    struct {
        Trailer trailer;
        char const* expected;
    } const rows[]{
        {{0, 1, 1, 0, 9}, "The trailer has a width of numbers that there is not"},
        {{9, 1, 1, 0, 9}, "The trailer has a width of numbers that there is not"},
        {{1, 0, 1, 0, 9}, "The trailer has a width of numbers that there is not"},
        {{1, 1, 0, 0, 9}, "The table of offsets does not have the file's number of objects"},
        {{1, 1, 2, 0, 9}, "The table of offsets does not have the file's number of objects"},
        {{8, 1, std::uint64_t{1} << 61, 0, 9}, "The table of offsets does not have the file's number of objects"},
        {{1, 1, 1, 1, 9}, "The trailer refers to an object that there is not"},
        {{1, 1, 1, ~std::uint64_t{0}, 9}, "The trailer refers to an object that there is not"},
        {{1, 1, 1, 0, 8}, "The table of offsets lies outside of the file"},
        {{1, 1, 1, 0, 11}, "The table of offsets lies outside of the file"},
        {{1, 1, 1, 0, ~std::uint64_t{0}}, "The table of offsets lies outside of the file"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(binaryComplaint("bplist00\x09\x08" + trailerBytes(row.trailer)), row.expected);
}

TEST(PropertyListBinary, RefusesAnOffsetOutsideOfTheObjects) {
    for (char const offset : {'\0', '\x07', '\x09', '\x7F'}) {
        std::string const bytes = "bplist00\x09"_bytes + offset + trailerBytes({1, 1, 1, 0, 9});
        EXPECT_EQ(binaryComplaint(bytes),
                  "An object lies outside of the file's objects, at offset " + std::to_string(int{offset}));
    }
}

TEST(PropertyListBinary, RefusesAVersionThatIsNotKnown) {
    std::string bytes = file({"\x09"_bytes});
    bytes[6] = '1';
    EXPECT_EQ(binaryComplaint(bytes), "The version of the file is not known");
}

TEST(PropertyListBinary, SharesWhatTheFileShares) {
    auto const array = as<NSArray>(readList(file({"\xA2\x01\x01"_bytes, "\xA1\x02"_bytes, "\x09"_bytes})).list);
    EXPECT_TRUE(isSame(array.objectAtIndex_(0), array.objectAtIndex_(1)));
}

TEST(PropertyListBinary, SharesNoContainersThatCanBeChanged) {
    auto const array = as<NSArray>(
        readList(file({"\xA3\x01\x01\x02"_bytes, "\xA1\x02"_bytes, "Qx"_bytes}), NSPropertyListMutableContainers).list);
    EXPECT_FALSE(isSame(array.objectAtIndex_(0), array.objectAtIndex_(1)));
    auto const inner = as<NSMutableArray>(array.objectAtIndex_(0));
    inner.addObject_("added");
    EXPECT_EQ(dump(array), R"([["x","added"],["x"],"x"])");
    EXPECT_EQ(as<NSMutableString>(array.objectAtIndex_(2)) == nil, true);
}

TEST(PropertyListBinary, SharesNoLeavesThatCanBeChanged) {
    auto const array = as<NSArray>(
        readList(file({"\xA4\x01\x01\x02\x02"_bytes, "Qx"_bytes, "Ay"_bytes}), NSPropertyListMutableContainersAndLeaves)
            .list);
    as<NSMutableString>(array.objectAtIndex_(0)).appendString_("!");
    as<NSMutableData>(array.objectAtIndex_(2)).setLength_(0);
    EXPECT_EQ(dump(array), R"(["x!","x",<>,<79>])");
}

} // namespace
} // namespace mac::test
