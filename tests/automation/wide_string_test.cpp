#include "automation/wide_string.h"

#include <gtest/gtest.h>

#include "automation/com_ptr.h"

namespace quorvane {
namespace {

WideString Units(std::initializer_list<unsigned> units) {
    WideString text;
    for (unsigned unit : units) text.push_back(static_cast<WCHAR>(unit));
    return text;
}

TEST(WideString, Utf8RepresentsEverything) {
    const struct {
        WideString text;
        std::string bytes;
    } cases[] = {
        {Units({}), ""},
        {Units({'a', 0, 'b'}), std::string("a\0b", 3)},
        {Units({0x7F, 0x80, 0x7FF, 0x800, 0xFFFF}), "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {Units({0xD83D, 0xDE00}), "\xF0\x9F\x98\x80"},
        {Units({0xD83D}), "\xEF\xBF\xBD"},
        {Units({0xDE00, 'x'}), "\xEF\xBF\xBDx"},
        {Units({'x', 0xD83D, 'y'}), "x\xEF\xBF\xBDy"},
    };
    for (const auto& c : cases) EXPECT_EQ(ToUtf8(c.text), c.bytes);
    EXPECT_EQ(FromUtf8("gr\xC3\xBC\xC3\x9F\xF0\x9F\x98\x80"),
              Units({'g', 'r', 0xFC, 0xDF, 0xD83D, 0xDE00}));
    EXPECT_EQ(FromUtf8("a\xFFz"), Units({'a', 0xFFFD, 'z'}));
}

TEST(WideString, AnsiKeepsAsciiAndReplacesWhatItCannotRepresent) {
    EXPECT_EQ(ToAnsi(OLESTR("plain <a@b>")), "plain <a@b>");
    EXPECT_EQ(ToAnsi(Units({'a', 0x4E2D, 'b'})), "a?b");
    // Characters that merely look like one of the code page: A, >, @, blank, minus.
    EXPECT_EQ(ToAnsi(Units({0x100, 0xFF1E, 0xFF20, 0x3000, 0x2212})), "?????");
    EXPECT_EQ(ToAnsi(Units({0xE9})), "\xE9");
    EXPECT_EQ(FromAnsi("\xE9"), Units({0xE9}));
}

TEST(WideString, LowBytesDropTheHighHalf) {
    std::string out = "start:";
    AppendLowBytes(Units({'a', 0xE9, 0x100, 0x4E2D}), out);
    EXPECT_EQ(out, std::string("start:a\xE9\0\x2D", 10));
    EXPECT_EQ(WidenBytes("\x01\xFF"), Units({1, 0xFF}));
}

// Texts are converted in blocks: something special may stand at each place of one, or behind it.
TEST(WideString, ConvertsTextsOfEveryLength) {
    for (std::size_t size = 0; size <= 20; ++size) {
        for (std::size_t place = 0; place <= size; ++place) {
            WideString text = WideString(OLESTR("abcdefghijklmnopqrst")).substr(0, size);
            std::string bytes = std::string("abcdefghijklmnopqrst").substr(0, size);
            if (place < size) {
                text[place] = 0xE9;
                bytes[place] = '\xE9';
            }
            EXPECT_EQ(LowBytes(text), bytes) << size;
            EXPECT_EQ(WidenBytes(bytes), text) << size;
            EXPECT_EQ(ToAnsi(text), bytes) << size;
            EXPECT_EQ(FromAnsi(bytes), text) << size;
            WideString used = OLESTR("a longer text than any of those that take its room");
            AssignAnsi(bytes, used);
            EXPECT_EQ(used, text) << size;
        }
    }
}

TEST(WideString, AutomationStringsKeepTheirLength) {
    BstrHolder text;
    ASSERT_EQ(ToBstr(WideView(OLESTR("a\0b"), 3), text.Receive()), S_OK);
    EXPECT_EQ(SysStringLen(text.Get()), 3u);
    EXPECT_EQ(FromBstr(text.Get()), OLESTR("a"));
    ASSERT_EQ(ToBstr({}, text.Receive()), S_OK);
    EXPECT_NE(text.Get(), nullptr);
    EXPECT_EQ(FromBstr(nullptr), OLESTR(""));
    EXPECT_EQ(ToBstr(OLESTR("x"), nullptr), E_INVALIDARG);
}

TEST(WideString, CaseIsIgnoredForAsciiLettersOnly) {
    EXPECT_TRUE(EqualIgnoreCase(WideView(OLESTR("Unicode")), WideView(OLESTR("uNICODE"))));
    EXPECT_FALSE(EqualIgnoreCase(WideView(OLESTR("a[")), WideView(OLESTR("A{"))));
    EXPECT_FALSE(EqualIgnoreCase(Units({0xE9}), Units({0xC9})));
    EXPECT_FALSE(EqualIgnoreCase(std::string_view("text"), std::string_view("text/")));
    EXPECT_TRUE(StartsWithIgnoreCase(OLESTR("TEXT/html"), OLESTR("text/")));
    EXPECT_FALSE(StartsWithIgnoreCase(OLESTR("tex"), OLESTR("text/")));
}

}  // namespace
}  // namespace quorvane
