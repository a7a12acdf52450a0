#include "platform/events/FlatDescriptor.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include <cstring>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSAppleEventDescriptor sample() {
    NSAppleEventDescriptor const list = NSAppleEventDescriptor::listDescriptor();
    list.insertDescriptor_atIndex_(NSAppleEventDescriptor::descriptorWithInt32_(1), 0);
    list.insertDescriptor_atIndex_(NSAppleEventDescriptor::nullDescriptor(), 0);
    NSAppleEventDescriptor const record = NSAppleEventDescriptor::recordDescriptor();
    record.setDescriptor_forKeyword_(list, AEKeyword("usrf"));
    NSAppleEventDescriptor const event =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            AEEventClass("core"), AEEventID("setd"), NSAppleEventDescriptor::nullDescriptor(), 4, 5);
    event.setParamDescriptor_forKeyword_(record, keyDirectObject);
    return event;
}

std::vector<std::byte> flat(NSAppleEventDescriptor const& descriptor) {
    return flattened(*descriptor.aeDesc()).value();
}

void setWord(std::vector<std::byte>& bytes, std::size_t offset, std::uint32_t word) {
    std::memcpy(bytes.data() + offset, &word, sizeof word);
}

// Where in a flat descriptor the outermost one's form and size lie.
constexpr std::size_t FormOffset = 12;
constexpr std::size_t SizeOffset = 16;

} // namespace

TEST(FlatDescriptor, BringsEveryFormBack) {
    std::vector<std::byte> const bytes = flat(sample());
    Result<AEDesc, Failure> const desc = unflattened(bytes);
    ASSERT_TRUE(desc.hasValue()) << desc.problem().reason;
    NSAppleEventDescriptor const event = NSAppleEventDescriptor::descriptorWithAEDesc(desc.value());
    EXPECT_EQ(event.eventID(), AEEventID("setd"));
    EXPECT_EQ(event.returnID(), 4);
    EXPECT_EQ(event.transactionID(), 5);
    EXPECT_EQ(event.attributeDescriptorForKeyword_(keyAddressAttr).descriptorType(), typeNull);
    EXPECT_TRUE(event.description().isEqualToString_(sample().description()));
    EXPECT_EQ(flat(event), bytes);
}

TEST(FlatDescriptor, FailsWhereverItIsCutOff) {
    std::vector<std::byte> const bytes = flat(sample());
    ASSERT_TRUE(unflattened(bytes).hasValue());
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(unflattened(std::span(bytes).first(size)).hasValue()) << size;
}

TEST(FlatDescriptor, FailsForSizesThatLie) {
    std::vector<std::byte> const bytes = flat(sample());
    for (std::uint32_t const size : {0U, 1U, static_cast<std::uint32_t>(bytes.size()), 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        std::vector<std::byte> changed = bytes;
        setWord(changed, SizeOffset, size);
        EXPECT_FALSE(unflattened(changed).hasValue()) << size;
    }
}

TEST(FlatDescriptor, SaysWhatIsWrongAndWhere) {
    std::vector<std::byte> bytes = flat(sample());
    EXPECT_EQ(unflattened({}).problem().reason, "The data is cut off at offset 0");
    setWord(bytes, FormOffset, 9);
    EXPECT_EQ(unflattened(bytes).problem().reason, "There is no such form of a descriptor at offset 16");
    bytes = flat(sample());
    bytes.push_back({});
    EXPECT_EQ(unflattened(bytes).problem().reason,
              "Something lies behind the descriptor at offset " + std::to_string(bytes.size() - 1));
    setWord(bytes, 4, 2);
    EXPECT_EQ(unflattened(bytes).problem().reason, "The flat descriptor is of an unknown version at offset 8");
    setWord(bytes, 0, 2);
    EXPECT_EQ(unflattened(bytes).problem().reason, "This is no flat descriptor at offset 4");
}

TEST(FlatDescriptor, FailsIfNestedTooDeep) {
    // Lists in one another, written by hand from the outermost on: type, form and the size of what follows.
    std::size_t const depth = 100000;
    std::vector<std::byte> bytes(8 + depth * 12);
    std::vector<std::byte> const head = flat(NSAppleEventDescriptor::nullDescriptor());
    std::copy_n(head.begin(), 8, bytes.begin());
    for (std::size_t level = 0; level < depth; ++level) {
        std::size_t const offset = 8 + level * 12;
        setWord(bytes, offset, typeAEList.value());
        setWord(bytes, offset + 4, 1);
        setWord(bytes, offset + 8, static_cast<std::uint32_t>((depth - level - 1) * 12));
    }
    EXPECT_TRUE(unflattened(bytes).problem().reason.starts_with("The descriptor is nested deeper than 512 containers"));
}

TEST(FlatDescriptor, IsBoundedInSize) {
    std::vector<std::byte> const bytes(kFlatDescriptorMaximumSize);
    NSAppleEventDescriptor const large = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
        typeData, bytes.data(), static_cast<NSUInteger>(bytes.size()));
    EXPECT_EQ(flattened(*large.aeDesc()).problem().reason,
              "The descriptor is larger than 16 MiB or holds more than a million others");
    EXPECT_FALSE(unflattened(std::vector<std::byte>(kFlatDescriptorMaximumSize + 1)).hasValue());
    NSAppleEventDescriptor const most = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
        typeData, bytes.data(), static_cast<NSUInteger>(bytes.size() - 20));
    EXPECT_EQ(flat(most).size(), kFlatDescriptorMaximumSize);
}

} // namespace mac::test
