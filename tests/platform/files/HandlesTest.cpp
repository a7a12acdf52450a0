#include "platform/files/Handles.h"
#include <cstring>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(Handles, HaveTheSizeThatWasAskedFor) {
    for (std::int32_t const size : {0, 1, 3, 7, 1'023, 65'537}) {
        MemoryHandle const handle = NewHandle(size);
        ASSERT_TRUE(handle);
        EXPECT_TRUE(*handle);
        EXPECT_EQ(MemError(), noErr);
        EXPECT_EQ(GetHandleSize(handle), size);
        std::memset(*handle, 0x5A, static_cast<std::size_t>(size));
        DisposeHandle(handle);
        EXPECT_EQ(MemError(), noErr);
    }
}

TEST(Handles, AreNotMadeWithoutMemory) {
    EXPECT_FALSE(NewHandle(-1));
    EXPECT_EQ(MemError(), memFullErr);
    MemoryHandle const next = NewHandle(1);
    EXPECT_EQ(MemError(), noErr);
    DisposeHandle(next);
}

TEST(Handles, OfNullAreAnError) {
    EXPECT_EQ(GetHandleSize(nullptr), 0);
    EXPECT_EQ(MemError(), nilHandleErr);
    DisposeHandle(nullptr);
    EXPECT_EQ(MemError(), nilHandleErr);
    SetHandleSize(nullptr, 1);
    EXPECT_EQ(MemError(), nilHandleErr);
}

TEST(Handles, CanBeDisposedOfTwice) {
    MemoryHandle const handle = NewHandle(5);
    DisposeHandle(handle);
    EXPECT_EQ(MemError(), noErr);
    MemoryHandle const another = NewHandle(6);
    EXPECT_NE(another, handle);
    DisposeHandle(handle);
    EXPECT_EQ(MemError(), memWZErr);
    EXPECT_EQ(GetHandleSize(handle), 0);
    EXPECT_EQ(MemError(), memWZErr);
    EXPECT_EQ(GetHandleSize(another), 6);
    char* stranger = nullptr;
    DisposeHandle(&stranger);
    EXPECT_EQ(MemError(), memWZErr);
    DisposeHandle(another);
}

TEST(Handles, KeepTheirBytesWhenTheSizeIsSet) {
    MemoryHandle const handle = NewHandle(3);
    std::memcpy(*handle, "abc", 3);
    SetHandleSize(handle, 100'001);
    EXPECT_EQ(MemError(), noErr);
    EXPECT_EQ(GetHandleSize(handle), 100'001);
    EXPECT_EQ(std::memcmp(*handle, "abc", 3), 0);
    SetHandleSize(handle, -1);
    EXPECT_EQ(MemError(), memFullErr);
    SetHandleSize(handle, 2);
    EXPECT_EQ(GetHandleSize(handle), 2);
    EXPECT_EQ(std::memcmp(*handle, "ab", 2), 0);
    DisposeHandle(handle);
}

} // namespace
} // namespace mac::test
