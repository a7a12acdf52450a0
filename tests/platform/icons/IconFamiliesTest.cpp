#include "platform/icons/IconFamilies.h"
#include "tests/platform/icons/IconBytes.h"
#include <cstring>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

IconRef iconOfFamily(std::string const& family) {
    IconRef icon{};
    EXPECT_EQ(GetIconRefFromIconFamilyPtr(family.data(), family.size(), &icon), noErr);
    return icon;
}

MemoryHandle blockOf(std::string_view bytes) {
    MemoryHandle const block = NewHandle(static_cast<std::int32_t>(bytes.size()));
    std::memcpy(*block, bytes.data(), bytes.size());
    return block;
}

std::string takeBlock(MemoryHandle block) {
    std::string bytes(*block, static_cast<std::size_t>(GetHandleSize(block)));
    DisposeHandle(block);
    return bytes;
}

std::string const Small = iconPiece("is32", "small");
std::string const Large = iconPiece("il32", "large");
std::string const Thumbnail = iconPiece("it32", "thumbnail");

OSErr appendType(OSType type, MemoryHandle* icon, void* context) {
    auto& text = *static_cast<std::string*>(context);
    text += bigEndianText(type.value(), 4) + std::to_string(GetHandleSize(*icon)) + " ";
    return text.size() > 20 ? memFullErr : noErr;
}

TEST(IconFamilies, HoldTheSelectedPieces) {
    IconRef const icon = iconOfFamily(iconFamily(Small + Large + Thumbnail));
    IconFamilyHandle family{};
    ASSERT_EQ(IconRefToIconFamily(icon, kSelectorAllAvailableData, &family), noErr);
    EXPECT_EQ(takeBlock(family), iconFamily(Small + Large + Thumbnail));
    ASSERT_EQ(IconRefToIconFamily(icon, kSelectorLarge32Bit, &family), noErr);
    EXPECT_EQ(takeBlock(family), iconFamily(Large));
    ASSERT_EQ(IconRefToIconFamily(icon, kSelectorHuge8BitMask, &family), noErr);
    EXPECT_EQ(takeBlock(family), iconFamily(""));
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
}

TEST(IconFamilies, BecomeSuitesAndComeBack) {
    MemoryHandle const block = blockOf(iconFamily(Small + Large + iconPiece("ICN#", "")));
    IconSuiteRef suite{};
    ASSERT_EQ(IconFamilyToIconSuite(block, kSelectorAllAvailableData, &suite), noErr);
    std::string visited;
    EXPECT_EQ(ForEachIconDo(suite, kSelectorAllAvailableData, &appendType, &visited), noErr);
    EXPECT_EQ(visited, "is325 il325 ICN#0 ");
    IconFamilyHandle family{};
    ASSERT_EQ(IconSuiteToIconFamily(suite, kSelectorAllAvailableData, &family), noErr);
    EXPECT_EQ(takeBlock(family), iconFamily(Small + Large + iconPiece("ICN#", "")));
    ASSERT_EQ(IconSuiteToIconFamily(suite, kSelectorSmall32Bit, &family), noErr);
    EXPECT_EQ(takeBlock(family), iconFamily(Small));
    EXPECT_EQ(DisposeIconSuite(suite, YES), noErr);
    DisposeHandle(block);
}

TEST(IconFamilies, AreVisitedUntilTheActionFails) {
    MemoryHandle const block = blockOf(iconFamily(Small + Large + Thumbnail + iconPiece("s8mk", "")));
    IconSuiteRef suite{};
    ASSERT_EQ(IconFamilyToIconSuite(block, kSelectorAllAvailableData, &suite), noErr);
    std::string visited;
    EXPECT_EQ(ForEachIconDo(suite, kSelectorAllAvailableData, &appendType, &visited), memFullErr);
    EXPECT_EQ(visited, "is325 il325 it329 s8mk0 ");
    visited.clear();
    EXPECT_EQ(ForEachIconDo(suite, kSelectorSmall8BitMask, &appendType, &visited), noErr);
    EXPECT_EQ(visited, "s8mk0 ");
    EXPECT_EQ(DisposeIconSuite(suite, YES), noErr);
    DisposeHandle(block);
}

struct GrowingSuite {
    IconSuiteRef suite{};
    MemoryHandle block{};
    MemoryHandle other{};
    std::string visited{};
};

// Adds more pieces than any suite keeps room for, and replaces the block of the first one.
OSErr addPieces(OSType type, MemoryHandle* icon, void* context) {
    auto& growing = *static_cast<GrowingSuite*>(context);
    bool const isFirst = growing.visited.empty();
    growing.visited += bigEndianText(type.value(), 4) + (*icon == growing.block ? "+" : "-");
    if (!isFirst) return noErr;
    *icon = growing.other;
    for (std::uint32_t added = OSType("aaaa").value(); added < OSType("aaaa").value() + 20; ++added) {
        OSErr const status = AddIconToSuite(growing.block, growing.suite, OSType(added));
        if (status != noErr) return status;
    }
    return AddIconToSuite(growing.other, growing.suite, OSType("il32"));
}

TEST(IconFamilies, MayGrowWhileTheyAreVisited) {
    GrowingSuite growing{.block = blockOf("block"), .other = blockOf("other")};
    ASSERT_EQ(NewIconSuite(&growing.suite), noErr);
    ASSERT_EQ(AddIconToSuite(growing.block, growing.suite, OSType("is32")), noErr);
    ASSERT_EQ(AddIconToSuite(growing.block, growing.suite, OSType("il32")), noErr);
    ASSERT_EQ(ForEachIconDo(growing.suite, kSelectorAllAvailableData, &addPieces, &growing), noErr);
    EXPECT_EQ(growing.visited.substr(0, 15), "is32+il32-aaaa+");
    EXPECT_EQ(growing.visited.size(), 22U * 5);
    MemoryHandle found{};
    ASSERT_EQ(GetIconFromSuite(&found, growing.suite, OSType("is32")), noErr);
    EXPECT_EQ(found, growing.other);
    ASSERT_EQ(GetIconFromSuite(&found, growing.suite, OSType("il32")), noErr);
    EXPECT_EQ(found, growing.other);
    EXPECT_EQ(DisposeIconSuite(growing.suite, NO), noErr);
    EXPECT_EQ(takeBlock(growing.block), "block");
    EXPECT_EQ(takeBlock(growing.other), "other");
}

TEST(IconFamilies, AreMadeFromBlocks) {
    IconSuiteRef suite{};
    ASSERT_EQ(NewIconSuite(&suite), noErr);
    MemoryHandle const first = blockOf("first");
    MemoryHandle const second = blockOf("second");
    EXPECT_EQ(AddIconToSuite(first, suite, OSType("is32")), noErr);
    EXPECT_EQ(AddIconToSuite(second, suite, OSType("is32")), noErr);
    MemoryHandle found{};
    EXPECT_EQ(GetIconFromSuite(&found, suite, OSType("is32")), noErr);
    EXPECT_EQ(found, second);
    EXPECT_EQ(GetIconFromSuite(&found, suite, OSType("il32")), noErr);
    EXPECT_EQ(found, nullptr);
    // The blocks stay the caller's.
    EXPECT_EQ(DisposeIconSuite(suite, NO), noErr);
    EXPECT_EQ(takeBlock(first), "first");
    EXPECT_EQ(takeBlock(second), "second");
}

TEST(IconFamilies, AreRefusedForMissingItems) {
    IconFamilyHandle family{};
    IconSuiteRef suite{};
    EXPECT_EQ(IconRefToIconFamily({}, kSelectorAllAvailableData, &family), invalidIconRefErr);
    IconRef icon{};
    ASSERT_EQ(GetIconRef(kOnSystemDisk, kSystemIconsCreator, OSType("docu"), &icon), noErr);
    EXPECT_EQ(IconRefToIconFamily(icon, kSelectorAllAvailableData, &family), noIconDataAvailableErr);
    EXPECT_EQ(IconRefToIconFamily(icon, kSelectorAllAvailableData, nullptr), paramErr);
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
    EXPECT_EQ(IconFamilyToIconSuite(nullptr, kSelectorAllAvailableData, &suite), paramErr);
    MemoryHandle const block = blockOf("nonsense");
    EXPECT_EQ(IconFamilyToIconSuite(block, kSelectorAllAvailableData, nullptr), paramErr);
    EXPECT_EQ(IconFamilyToIconSuite(block, kSelectorAllAvailableData, &suite), invalidIconFamilyErr);
    DisposeHandle(block);
    EXPECT_EQ(IconSuiteToIconFamily(nullptr, kSelectorAllAvailableData, &family), paramErr);
    EXPECT_EQ(NewIconSuite(nullptr), paramErr);
    EXPECT_EQ(AddIconToSuite(nullptr, nullptr, OSType("is32")), paramErr);
    EXPECT_EQ(GetIconFromSuite(nullptr, nullptr, OSType("is32")), paramErr);
    EXPECT_EQ(DisposeIconSuite(nullptr, YES), paramErr);
    EXPECT_EQ(ForEachIconDo(nullptr, kSelectorAllAvailableData, &appendType, nullptr), paramErr);
    EXPECT_EQ(GetIconRefFromIconFamilyPtr(nullptr, 0, &icon), paramErr);
    EXPECT_EQ(GetIconRefFromIconFamilyPtr("text", 4, &icon), invalidIconFamilyErr);
}

} // namespace
} // namespace mac::test
