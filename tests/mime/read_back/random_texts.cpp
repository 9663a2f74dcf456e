#include "tests/mime/read_back/random_texts.h"

#include <string_view>

namespace quorvane::testing {
namespace {

void AppendAscii(Chance& chance, WideString& text) {
    text += static_cast<WCHAR>(chance.From(0x20, 0x7E));
}

void AppendControl(Chance& chance, WideString& text) {
    static constexpr std::array<WCHAR, 8> kControls{1, 7, 8, 0x0B, 0x0C, 0x1A, 0x1B, 0x7F};
    text += chance.OneOf(kControls);
}

void AppendAny(Chance& chance, WideString& text) {
    switch (chance.Below(8)) {
        case 0:  // a pair
            text += static_cast<WCHAR>(chance.From(0xD800, 0xDBFF));
            text += static_cast<WCHAR>(chance.From(0xDC00, 0xDFFF));
            break;
        case 1:  // combining marks
            text += WCHAR('e');
            text += static_cast<WCHAR>(chance.From(0x0300, 0x036F));
            break;
        case 2: {
            static constexpr std::array<WCHAR, 12> kOdd{0x010A, 0x010D, 0x0D0A, 0x2028,
                                                        0x2029, 0x0085, 0xFEFF, 0xFFFF,
                                                        0x202E, 0x00AD, 0xFF1C, 0x200B};
            text += chance.OneOf(kOdd);
            break;
        }
        case 3:
            if (chance.OneIn(8)) text += static_cast<WCHAR>(chance.From(0xD800, 0xDFFF));
            break;
        default:
            text += static_cast<WCHAR>(chance.From(0xA0, 0xD7FF));
    }
}

void AppendLetter(Chance& chance, Letters letters, WideString& text) {
    if (letters == Letters::Ascii || chance.Below(3) == 0) return AppendAscii(chance, text);
    if (letters == Letters::Latin1) {
        text += static_cast<WCHAR>(chance.From(0xA0, 0xFF));
    } else {
        AppendAny(chance, text);
    }
}

WideString Word(Chance& chance, Letters letters, std::size_t size) {
    WideString word;
    while (word.size() < size) AppendLetter(chance, letters, word);
    return word;
}

WideString Words(Chance& chance, std::size_t size) {
    WideString text;
    while (text.size() < size) {
        const std::size_t end = text.size() + chance.From(1, 12);
        while (text.size() < end) text += static_cast<WCHAR>(chance.From('a', 'z'));
        text += chance.OneIn(10) ? OLESTR(", ") : OLESTR(" ");
    }
    return text;
}

WideString BodyLine(Chance& chance, Letters letters) {
    static constexpr std::array<WideView, 14> kOddLines{
        OLESTR("."),         OLESTR(".."),  OLESTR(".dot"),       OLESTR("From here"),
        OLESTR("--"),        OLESTR("="),   OLESTR("a=3Db="),     OLESTR("--MessagePart_0"),
        OLESTR(" "),         OLESTR("\t"),  OLESTR("Subject: x"), OLESTR("QUIT"),
        OLESTR("blanks   "), OLESTR("x\t"),
    };
    switch (chance.Below(10)) {
        case 0:
            return {};
        case 1:
        case 2:
            return WideString(chance.OneOf(kOddLines));
        case 3:  // around the limit of a line
            return Word(chance, Letters::Ascii, chance.From(70, 80));
        case 4:
            return WideString(chance.From(60, 400), static_cast<WCHAR>(chance.From('A', 'Z')));
        case 5:
            return Words(chance, chance.From(100, 1500));
        case 6:
            return Word(chance, letters, chance.From(1, 300));
        default:
            return Words(chance, chance.From(5, 70));
    }
}

void AppendLineEnd(Chance& chance, bool odd, WideString& text) {
    static constexpr std::array<WideView, 6> kOddEnds{OLESTR("\n"),   OLESTR("\r"),
                                                      OLESTR("\n\r"), OLESTR("\r\r\n"),
                                                      OLESTR("\n."),  OLESTR("\r\n.\r\n")};
    text += odd && chance.OneIn(4) ? chance.OneOf(kOddEnds) : WideView(OLESTR("\r\n"));
}

}  // namespace

WideString BodyText(Chance& chance, Letters letters) {
    WideString text;
    const bool oddEnds = chance.OneIn(5);
    const bool controls = chance.OneIn(12);
    const std::size_t lines = chance.OneIn(10) ? chance.From(0, 80) : chance.From(0, 9);
    for (std::size_t i = 0; i < lines; ++i) {
        text += BodyLine(chance, letters);
        if (controls) AppendControl(chance, text);
        if (i + 1 < lines || !chance.OneIn(3)) AppendLineEnd(chance, oddEnds, text);
    }
    if (chance.OneIn(40)) text.insert(chance.Below(text.size() + 1), 1, WCHAR(0));
    return text;
}

WideString HeaderText(Chance& chance) {
    static constexpr std::array<WideView, 10> kTexts{
        OLESTR("Smith"),        OLESTR("John Smith"),   OLESTR("O'Brien, \"Bob\" \\ <b@x>"),
        OLESTR("(comment"),     OLESTR("a;b=c:d,e@f"),  OLESTR("J\u00FCrgen M\u00FCller"),
        OLESTR("  both ends "), OLESTR("\u65E5\u672C"), OLESTR("\xD83D\xDE00 e\u0301"),
        OLESTR("50% \"off\"")};
    switch (chance.Below(12)) {
        case 0:
            return {};
        case 1:
            return Word(chance, Letters::Ascii, chance.From(1, 60));
        case 2:
            return Word(chance, Letters::Latin1, chance.From(1, 60));
        case 3:
            return Word(chance, Letters::All, chance.From(1, 60));
        case 4:
            return Words(chance, chance.From(60, 1500));
        case 5:
            return Word(chance, Letters::All, chance.From(60, 700));
        case 6: {
            WideString text = Words(chance, 10);
            AppendLineEnd(chance, true, text);
            return text += OLESTR("Bcc: x@example.com");
        }
        case 7: {
            WideString text = Word(chance, Letters::Ascii, 5);
            AppendControl(chance, text);
            if (chance.OneIn(4)) text += WCHAR(0);
            return text += Word(chance, Letters::Ascii, 5);
        }
        case 8:
            return WideString(OLESTR("=?utf-8?B?4oKs?= ")).append(chance.OneOf(kTexts));
        default:
            return WideString(chance.OneOf(kTexts));
    }
}

std::string FileBytes(Chance& chance) {
    if (chance.OneIn(3)) return LowBytes(BodyText(chance, Letters::Latin1));
    const std::size_t size = chance.OneIn(12)  ? chance.From(5000, 60000)
                             : chance.OneIn(3) ? 57 * chance.From(1, 4)
                                               : chance.From(0, 300);
    std::string bytes;
    bytes.reserve(size);
    while (bytes.size() < size) bytes += static_cast<char>(chance.Below(256));
    return bytes;
}

std::string FieldValue(Chance& chance) {
    static constexpr std::array<std::string_view, 11> kValues{
        "",           "plain",
        "a\r\n\tb",   "a\r\nSubject: c",
        "a\nb",       "a\rb",
        "a\r\n\r\nb", "<mailto:a@example.com>",
        ".\r\n.\r\n", "\"quoted, text\"",
        "caf\xE9"};
    if (chance.OneIn(6)) return LowBytes(Words(chance, chance.From(70, 2500)));
    if (chance.OneIn(30)) return std::string("zero\0inside", 11);
    return std::string(chance.OneOf(kValues));
}

}  // namespace quorvane::testing
