// Purpose: text keeps its characters between UTF-16, UTF-8 and Windows-1252, and what can't be kept
// is replaced in the same way everywhere.
#include <windows.h>
#include <wtypes.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Wide = std::basic_string<WCHAR>;

std::string Narrow(UINT codePage, const Wide& text, DWORD flags = 0) {
    const int size = static_cast<int>(text.size());
    const int room =
        WideCharToMultiByte(codePage, flags, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(room), '#');
    EXPECT_EQ(
        WideCharToMultiByte(codePage, flags, text.data(), size, out.data(), room, nullptr, nullptr),
        room);
    return out;
}

Wide Widen(UINT codePage, const std::string& bytes) {
    const int size = static_cast<int>(bytes.size());
    const int room = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
    Wide out(static_cast<std::size_t>(room), WCHAR('#'));
    EXPECT_EQ(MultiByteToWideChar(codePage, 0, bytes.data(), size, out.data(), room), room);
    return out;
}

// Each text alone, and in the middle of ASCII of lengths around those that are handled in blocks.
template <class Text>
std::vector<std::pair<Text, Text>> Surrounded() {
    std::vector<std::pair<Text, Text>> around = {{{}, {}}};
    for (const std::size_t length : {1u, 15u, 31u, 32u, 33u, 64u, 100u}) {
        const Text run(length, 'x');
        around.push_back({run, {}});
        around.push_back({{}, run});
        around.push_back({run, run});
    }
    return around;
}

TEST(CodePage, EncodesAndDecodesUtf8) {
    const struct {
        Wide wide;
        std::string bytes;
    } cases[] = {
        {OLESTR("plain"), "plain"},
        {Wide(OLESTR("a\0b"), 3), std::string("a\0b", 3)},
        {OLESTR("\u007F\u0080\u07FF\u0800"), "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"},
        {OLESTR("\uD7FF\uE000\uFFFD\uFFFF"), "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xEF\xBF\xBF"},
        {OLESTR("\U00010000\U0010FFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
    };
    for (const auto& each : cases) {
        for (const auto& [before, after] : Surrounded<std::string>()) {
            const Wide wide =
                Wide(before.begin(), before.end()) + each.wide + Wide(after.begin(), after.end());
            const std::string bytes = before + each.bytes + after;
            EXPECT_EQ(Narrow(CP_UTF8, wide), bytes);
            EXPECT_EQ(Widen(CP_UTF8, bytes), wide);
        }
    }
}

TEST(CodePage, ReplacesUnpairedSurrogates) {
    const WCHAR high = 0xD83D;
    const WCHAR low = 0xDE00;
    const std::string replacement = "\xEF\xBF\xBD";
    const struct {
        Wide wide;
        std::string bytes;
    } cases[] = {
        {{high}, replacement},
        {{low}, replacement},
        {{low, high}, replacement + replacement},
        {{high, high, low}, replacement + "\xF0\x9F\x98\x80"},
        {{high, 'a', low}, replacement + "a" + replacement},
    };
    for (const auto& each : cases) {
        for (const auto& [before, after] : Surrounded<std::string>()) {
            const Wide wide =
                Wide(before.begin(), before.end()) + each.wide + Wide(after.begin(), after.end());
            EXPECT_EQ(Narrow(CP_UTF8, wide), before + each.bytes + after);
        }
        EXPECT_EQ(
            WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, each.wide.data(),
                                static_cast<int>(each.wide.size()), nullptr, 0, nullptr, nullptr),
            0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
    }
}

// A malformed sequence ends before a byte that continues nothing, and behind one that makes the
// character too long, too large or a surrogate.
TEST(CodePage, ReplacesMalformedUtf8) {
    const struct {
        std::string bytes;
        Wide wide;
    } cases[] = {
        {"\x80", OLESTR("\uFFFD")},
        {"\xBF"
         "a",
         OLESTR("\uFFFDa")},
        {"\xC3", OLESTR("\uFFFD")},
        {"\xC3"
         "a",
         OLESTR("\uFFFDa")},
        {"\xC0\xAF", OLESTR("\uFFFD\uFFFD")},
        {"\xE2\x82", OLESTR("\uFFFD")},
        {"\xE2\x82"
         "a",
         OLESTR("\uFFFDa")},
        {"\xE0\x80\xAF", OLESTR("\uFFFD\uFFFD")},
        {"\xED\xA0\x80", OLESTR("\uFFFD\uFFFD")},
        {"\xF0\x9F\x98", OLESTR("\uFFFD")},
        {"\xF0\x80\x80\x80", OLESTR("\uFFFD\uFFFD\uFFFD")},
        {"\xF4\x90\x80\x80", OLESTR("\uFFFD\uFFFD\uFFFD")},
        {"\xFE\xFF", OLESTR("\uFFFD\uFFFD")},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(Widen(CP_UTF8, each.bytes), each.wide) << testing::PrintToString(each.bytes);
        EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, each.bytes.data(),
                                      static_cast<int>(each.bytes.size()), nullptr, 0),
                  0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
    }
}

TEST(CodePage, ConvertsWindows1252) {
    const struct {
        Wide wide;
        std::string bytes;
    } cases[] = {
        {OLESTR("caf\u00E9"), "caf\xE9"},
        {OLESTR("\u20AC\u201E\u0160\u2122\u0178"), "\x80\x84\x8A\x99\x9F"},
        {OLESTR("\u00A0\u00FF"), "\xA0\xFF"},
        {Wide{0x81, 0x8D, 0x8F, 0x90, 0x9D}, "\x81\x8D\x8F\x90\x9D"},
    };
    for (const UINT codePage : {UINT{CP_ACP}, UINT{CP_THREAD_ACP}}) {
        for (const auto& each : cases) {
            EXPECT_EQ(Narrow(codePage, each.wide), each.bytes);
            EXPECT_EQ(Widen(codePage, each.bytes), each.wide);
        }
    }
}

TEST(CodePage, PutsTheDefaultCharacterForWhatIsMissing) {
    for (const auto& [before, after] : Surrounded<std::string>()) {
        const Wide wide = Wide(before.begin(), before.end()) + OLESTR("\u4E2D\u0416") +
                          Wide(after.begin(), after.end());
        EXPECT_EQ(Narrow(CP_ACP, wide), before + "??" + after);
    }
    char bytes[4] = {};
    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, OLESTR("a\u4E2D"), 2, bytes, 4, "_", &used), 2);
    EXPECT_STREQ(bytes, "a_");
    EXPECT_TRUE(used);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, OLESTR("a\u00E9"), 2, bytes, 4, "_", &used), 2);
    EXPECT_FALSE(used);
}

TEST(CodePage, TakesTheTerminatorWhenThereIsNoSize) {
    char bytes[8] = "#######";
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, OLESTR("ab"), -1, bytes, 8, nullptr, nullptr), 3);
    EXPECT_EQ(std::string(bytes, 4), std::string("ab\0#", 4));
    WCHAR wide[8] = {};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "ab", -1, wide, 8), 3);
    EXPECT_EQ(Wide(wide), OLESTR("ab"));
}

TEST(CodePage, RefusesWhatDoesNotFitOrMakeSense) {
    char bytes[3] = "##";
    WCHAR wide[2] = {};
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, OLESTR("abcd"), 4, bytes, 3, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 3, wide, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, OLESTR("a"), 0, bytes, 3, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "a", 0, wide, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(MultiByteToWideChar(54321, 0, "a", 1, wide, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

}  // namespace
