#include <cpuid.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "mime/base64.h"
#include "mime/base64_kernel.h"
#include "mime/quoted_printable.h"
#include "mime/transfer_encoding.h"
#include "tests/mime/reference_encoders.h"

namespace quorvane {
namespace {

std::string Encoded(const std::string& bytes, LONG encoding) {
    std::string out;
    EncodeBody(bytes, encoding, out);
    return out;
}

// By both encoders, where there are two.
void ExpectEncodedByTheRules(const std::string& text, LONG encoding) {
    const std::string expected = reference::EncodeBody(text, encoding);
    ASSERT_EQ(Encoded(text, encoding), expected)
        << "encoding " << encoding << " of " << testing::PrintToString(text);
    if (encoding != EncodingQuotedPrintable) return;
    std::string out;
    EncodeQuotedPrintablePortable(text.substr(0, text.find('\0')), out);
    ASSERT_EQ(out, expected) << "portably, of " << testing::PrintToString(text);
}

// Makes text of what encoders stumble over.
class TextMaker {
public:
    std::string Text(std::size_t size) {
        static const std::vector<std::string> kUnits = {
            "\r\n", "\r", "\n", ".", "\r\n.", "=", " ", "\t", "\xE9", "\x7F", "-", "\x01", "?"};
        std::string text;
        // A text has its own share of awkward units, so that long lines come about too.
        const unsigned awkward = Number(40);
        while (text.size() < size) {
            if (Number(100) < awkward) {
                text += kUnits[Number(static_cast<unsigned>(kUnits.size()))];
            } else {
                text.append(Number(30), static_cast<char>('a' + Number(26)));
            }
        }
        if (Number(20) == 0) text[Number(static_cast<unsigned>(size))] = '\0';
        text.resize(size);
        return text;
    }

    std::string Bytes(std::size_t size) {
        std::string bytes(size, '\0');
        for (char& c : bytes) c = static_cast<char>(Number(256));
        return bytes;
    }

private:
    unsigned Number(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

    std::mt19937 random_{20260806};
};

std::vector<std::size_t> AwkwardSizes() {
    std::vector<std::size_t> sizes = {1, 2, 3, 56, 57, 58, 113, 114, 115, 1023, 1024, 4096, 10000};
    for (std::size_t size = 70; size <= 80; ++size) sizes.push_back(size);
    for (std::size_t size = 146; size <= 156; ++size) sizes.push_back(size);
    return sizes;
}

TEST(Encoders, OnePassEqualsTheStepsOfTheRules) {
    TextMaker maker;
    for (const std::size_t size : AwkwardSizes()) {
        for (int round = 0; round < (size > 1000 ? 40 : 400); ++round) {
            const std::string text = maker.Text(size);
            for (int encoding = 1; encoding <= 4; ++encoding) {
                ASSERT_NO_FATAL_FAILURE(ExpectEncodedByTheRules(text, encoding));
            }
            ASSERT_EQ(ChooseTransferEncoding(text), reference::ChooseEncoding(text))
                << testing::PrintToString(text);
        }
    }
}

// Each kind of unit at each place around the end of a line.
TEST(Encoders, UnitsAtTheEdgesOfALine) {
    for (const std::string unit : {"=", "\xE9", " ", "\t", ".", "-", "\n", "=\t", "\xE9 "}) {
        for (std::size_t before = 70; before <= 78; ++before) {
            for (std::size_t after = 0; after <= 4; ++after) {
                for (const std::string end : {"", "\r\n", "\r", "\r\n.x"}) {
                    const std::string text =
                        std::string(before, 'x') + unit + std::string(after, 'y') + end;
                    for (int encoding = 1; encoding <= 3; ++encoding) {
                        ASSERT_NO_FATAL_FAILURE(ExpectEncodedByTheRules(text, encoding));
                    }
                }
            }
        }
    }
}

TEST(Encoders, EncodingsOfTexts) {
    const std::string x75(75, 'x'), x76(76, 'x');
    std::string words;
    for (int i = 0; i < 20; ++i) words += "abc ";
    const std::string nineteenWords = words.substr(0, 76);
    struct Case {
        LONG encoding;
        std::string text, encoded;
    } const cases[] = {
        {EncodingQuotedPrintable, "a=b", "a=3Db"},
        {EncodingQuotedPrintable, "a \r\nb\t", "a=20\r\nb=09"},
        {EncodingQuotedPrintable, std::string(100, 'x'), x75 + "=\r\n" + std::string(25, 'x')},
        {EncodingQuotedPrintable, x76, x76},
        {EncodingQuotedPrintable, x75 + " ", x75 + "=\r\n=20"},
        {EncodingQuotedPrintable, x75 + ".", x75 + "."},
        {EncodingQuotedPrintable, x75 + ".x", x75 + "=\r\n..x"},
        {EncodingQuotedPrintable, "\r\n\r\r\n", "\r\n\r\n\r\n"},
        {EncodingQuotedPrintable, "a\nb\xE9", "a\nb=E9"},
        {Encoding7Bit, "caf\xE9\x7F", "caf??"},
        {Encoding7Bit, "x\xE9" + x75, "x?\r\n" + x75},  // a masked byte is a place to cut behind
        {Encoding8Bit, "x\xE9" + x75, "x\xE9" + x75.substr(0, 74) + "\r\nx"},
        {Encoding8Bit, words, nineteenWords + "\r\nabc "},
        {Encoding8Bit, "-" + x76, "-" + x75 + "\r\nx"},  // no cut behind the first character
        {Encoding8Bit, ".a\r.\n.b\r\n..", "..a\r\n..\n.b\r\n..."},
        {Encoding8Bit, std::string("ab\0cd", 5), "ab"},
        {EncodingBase64, std::string("ab\0cd", 5), "YWIAY2Q="},
        {EncodingBase64, std::string(57, '\0'), std::string(76, 'A')},
        {EncodingBase64, std::string(58, '\0'), std::string(76, 'A') + "\r\nAA=="},
        {EncodingBase64, "", ""},
        {EncodingDefault, "text", ""},
        {5, "text", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Encoded(c.text, c.encoding), c.encoded) << testing::PrintToString(c.text);
    }
}

TEST(Encoders, ChoiceOfTheDefaultEncoding) {
    const std::string line76 = "\r\n" + std::string(76, 'x') + "\r\n";
    const std::string line77 = "\r\n" + std::string(77, 'x') + "\r\n";
    struct Case {
        std::string bytes;
        TransferEncoding encoding;
    } const cases[] = {
        {"", Encoding7Bit},
        {"Hello", Encoding7Bit},
        {line76, Encoding7Bit},
        {line77, EncodingQuotedPrintable},
        {line76 + "\xE9", Encoding8Bit},
        {line77 + "\xE9", EncodingQuotedPrintable},
        {std::string(76, 'x'), Encoding7Bit},
        {std::string(77, 'x'), EncodingQuotedPrintable},
        {std::string(77, 'x') + "\r\n", Encoding7Bit},  // the first line may be one longer
        {std::string(78, 'x') + "\r\n", EncodingQuotedPrintable},
        {"\r\n" + std::string(200, 'x'), Encoding7Bit},  // the last line isn't measured
        {"\r\r\r", Encoding7Bit},
        {std::string(100, '\xFF'), EncodingBase64},
        {std::string(9, 'x') + "\xFF", Encoding8Bit},  // 90 in 100 are enough
        {std::string(89, 'x') + std::string(10, '\0'), EncodingBase64},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ChooseTransferEncoding(c.bytes), c.encoding) << testing::PrintToString(c.bytes);
    }
}

TEST(Base64, AllLineEncodersAtEverySize) {
    TextMaker maker;
    for (std::size_t size = 0; size <= 400; ++size) {
        const std::string bytes = maker.Bytes(size);
        std::string expected = reference::WrapLines(reference::Base64(bytes), 76);
        if (size > 0) expected += "\r\n";
        for (const Base64LineEncoder encode : Base64LineEncoders()) {
            // Exact sizes on the heap, so that a sanitizer sees one byte too many.
            const std::vector<BYTE> in(bytes.begin(), bytes.end());
            std::vector<char> out(Base64LinesSize(size));
            encode(in.data(), size, out.data());
            ASSERT_EQ(std::string(out.begin(), out.end()), expected) << size;
        }
    }
}

// Asks the processor itself, so that both builds are seen to ask rightly.
TEST(Base64, TakesTheWidestVectorsThatThereAre) {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid_count(7, 0, &a, &b, &c, &d) || !(b & bit_AVX2)) GTEST_SKIP() << "no AVX2";
    EXPECT_EQ(Base64LineEncoders().size(), 3u);
    EXPECT_EQ(FastestBase64LineEncoder(), Base64LineEncoders().front());
    EXPECT_NE(FastestBase64LineEncoder(), &EncodeBase64LinesPortable);
}

TEST(Base64, SizeEstimatesHold) {
    TextMaker maker;
    for (const std::size_t size : AwkwardSizes()) {
        const std::string text = std::string(size, 'x') + "=.\r\n" + maker.Bytes(size / 8);
        EXPECT_EQ(Base64LinesSize(text.size()), Encoded(text, EncodingBase64).size() + 2);
        for (LONG encoding = Encoding7Bit; encoding <= EncodingBase64; ++encoding) {
            EXPECT_GE(EncodedSizeEstimate(text, encoding), Encoded(text, encoding).size());
        }
    }
}

// The text in the buffer, which a zero byte must follow.
std::string EncodedBy(CBase64& codec, const std::string& bytes) {
    codec.Encode(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()));
    const std::string text = reinterpret_cast<const char*>(codec.GetEncoded());
    EXPECT_EQ(text.size(), codec.EncodedLength());
    return text;
}

std::string DecodedBy(CBase64& codec, const std::string& text) {
    codec.Decode(text.c_str());
    const std::string bytes(reinterpret_cast<const char*>(codec.GetDecoded()),
                            codec.DecodedLength());
    EXPECT_EQ(codec.GetDecoded()[codec.DecodedLength()], 0);
    return bytes;
}

TEST(Base64, CodecEncodes) {
    CBase64 codec;
    EXPECT_EQ(EncodedBy(codec, "M"), "TQ==");
    EXPECT_EQ(EncodedBy(codec, "Ma"), "TWE=");
    EXPECT_EQ(EncodedBy(codec, "Man"), "TWFu");
    TextMaker maker;
    for (const std::size_t size : {1, 2, 3, 57, 76, 77, 1024, 4095, 4096, 4097, 9000, 5}) {
        const std::string bytes = maker.Bytes(size);
        EXPECT_EQ(EncodedBy(codec, bytes), reference::Base64(bytes)) << size;
        EXPECT_EQ(DecodedBy(codec, reference::Base64(bytes)).substr(0, size), bytes) << size;
    }
    EXPECT_EQ(EncodedBy(codec, ""), "");
    CBase64 fresh;
    EXPECT_EQ(EncodedBy(fresh, ""), "");
    fresh.Encode(nullptr);
    fresh.Decode(nullptr);
    EXPECT_EQ(fresh.EncodedLength(), 0u);
}

TEST(Base64, CodecDecodes) {
    using std::string_literals::operator""s;
    struct Case {
        std::string text, bytes;
    } const cases[] = {
        {"TWFu", "Man"},
        {"TW\r\nFu", "Man"},
        {"\a T\bW\tF\v\fu ", "Man"},
        {"TWE=", "Ma\0"s},
        {"TQ==", "M\0\0"s},
        {"TW", "M\x60"},  // without padding the characters are counted
        {"TWE", "Ma\0"s},
        {"TWFuT", "ManL"},
        {"TWFu=", "Man\0"s},
        {"\xD4\xD7\xC6\xF5", "Man"},  // the high bit doesn't matter
        {"TW\xBD\xBD", "M\x60\0"s},
        {"=WFu", "\xFD\x61n"},  // padding in front counts as all bits set
        {"TWF*", "Ma~"},        // a foreign character counts as 0xFE
        {"", ""},
    };
    for (const Case& c : cases) {
        CBase64 codec;
        EXPECT_EQ(DecodedBy(codec, c.text), c.bytes) << testing::PrintToString(c.text);
    }
}

// Shows the protected state, as a derived codec sees it.
class OpenBase64 : public CBase64 {
public:
    using CBase64::m_encodedCapacity;
};

TEST(Base64, BuffersGrowInStepsAndNeverShrink) {
    OpenBase64 codec;
    codec.ReserveEncoded(100);
    EXPECT_EQ(codec.m_encodedCapacity, 4096u);
    codec.ReserveEncoded(4097);
    EXPECT_EQ(codec.m_encodedCapacity, 8192u);
    codec.ReserveEncoded(1);
    EXPECT_EQ(codec.m_encodedCapacity, 8192u);
    OpenBase64 other;
    other.ReserveEncoded(4096);
    EXPECT_EQ(other.m_encodedCapacity, 8192u);  // always larger than asked for
    EXPECT_THROW(other.ReserveEncoded(0xFFFFFFFF), std::bad_alloc);
    const BYTE byte = 0;
    EXPECT_THROW(other.Encode(&byte, 0x80000000), std::bad_alloc);
}

}  // namespace
}  // namespace quorvane
