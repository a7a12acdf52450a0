#include "platform/system/items/KeptCreationDate.h"
#include "platform/system/items/ItemAttributes.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <cerrno>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

TEST(KeptCreationDate, StaysInEightBytes) {
    TemporaryFolder const folder;
    Result<OpenItem> const item = openItemAtPath(folder.makeFile("file", ""), LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    EXPECT_EQ(codeOf(keptCreationDate(item.value())), ENODATA);
    ASSERT_TRUE(keepCreationDate(item.value(), {0x0102030405060708}).isDone());
    EXPECT_EQ(keptCreationDate(item.value()).valueOr({}).units, 0x0102030405060708U);
    std::vector<std::byte> const expected{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4},
                                          std::byte{5}, std::byte{6}, std::byte{7}, std::byte{8}};
    AttributeName const name(CreateDateAttribute);
    EXPECT_EQ(readAttribute(item.value(), name).valueOr({}), expected);
    ASSERT_TRUE(writeAttribute(item.value(), name, std::array{std::byte{1}}).isDone());
    EXPECT_EQ(codeOf(keptCreationDate(item.value())), ENODATA) << "a date has eight bytes";
}

} // namespace

} // namespace mac::test
