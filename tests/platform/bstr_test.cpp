// Purpose: automation strings carry their length in front of the text, whatever the text holds.
#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace {

std::uint32_t Prefix(BSTR text) {
    std::uint32_t size;
    std::memcpy(&size, reinterpret_cast<const char*>(text) - sizeof size, sizeof size);
    return size;
}

TEST(Bstr, CountsItsBytesInFrontOfTheText) {
    const BSTR text = SysAllocString(OLESTR("caf\u00E9"));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(Prefix(text), 8u);
    EXPECT_EQ(SysStringLen(text), 4u);
    EXPECT_EQ(SysStringByteLen(text), 8u);
    EXPECT_EQ(text[4], 0);
    SysFreeString(text);
}

TEST(Bstr, HoldsNuls) {
    const BSTR text = SysAllocStringLen(OLESTR("a\0b\0"), 4);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 4u);
    EXPECT_EQ(std::memcmp(text, OLESTR("a\0b\0"), 5 * sizeof(OLECHAR)), 0);
    SysFreeString(text);
}

TEST(Bstr, HoldsBytesOfAnOddNumber) {
    const BSTR text = SysAllocStringByteLen("abc", 3);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringByteLen(text), 3u);
    EXPECT_EQ(SysStringLen(text), 1u);
    // Behind them stands a NUL of two bytes at least, wherever that falls.
    EXPECT_EQ(std::memcmp(text, "abc\0\0", 5), 0);
    SysFreeString(text);
}

TEST(Bstr, TellsEmptyFromNull) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(SysStringByteLen(nullptr), 0u);
    SysFreeString(nullptr);
    const BSTR empty = SysAllocString(OLESTR(""));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(SysStringLen(empty), 0u);
    EXPECT_EQ(empty[0], 0);
    SysFreeString(empty);
}

TEST(Bstr, MakesRoomWithoutText) {
    const BSTR room = SysAllocStringLen(nullptr, 5);
    ASSERT_NE(room, nullptr);
    EXPECT_EQ(SysStringLen(room), 5u);
    EXPECT_EQ(room[5], 0);
    SysFreeString(room);
}

// 2^31 units have 2^32 bytes: a size that wraps around to a small block must not be made.
TEST(Bstr, RefusesWhatItsPrefixCannotCount) {
    for (const UINT units : {0x7FFFFFFDu, 0x7FFFFFFEu, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(SysAllocStringLen(nullptr, units), nullptr) << units;
    }
}

}  // namespace
