#include "mime/message_composer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <winreg.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>
#include <vector>

#include "mime/base64.h"
#include "tests/mime/composing.h"
#include "tests/mime/reference_encoders.h"

namespace quorvane {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// The file's last line end is not part of the message, and line ends are CRLF.
std::string Golden(const std::string& name) {
    std::ifstream file(QUORVANE_TEST_DATA "/mime/golden/" + name + ".eml", std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {}), message;
    if (!text.empty()) text.pop_back();
    for (const char c : text) {
        if (c == '\n') message += '\r';
        message += c;
    }
    return message;
}

// A record with as many bodies, and an attachment for each letter: i inline, a attached, m missing.
COutgoingMessage RecordOf(std::size_t bodies, const std::string& attachments) {
    COutgoingMessage record = SampleRecord();
    if (bodies == 2) record.bodyParts.push_back(TextBody(OLESTR("Hello as text")));
    record.bodyParts.push_back(TextBody(OLESTR("Hello <b>\u20AC</b>"), OLESTR("unicode")));
    record.bodyParts.back().contentType = OLESTR("text/html");
    record.bodyParts.back().encoding = 3;
    WCHAR number = WCHAR('1');
    for (const char kind : attachments) {
        CAttachmentPart part;
        if (kind == 'i') {
            part = DataAttachment(OLESTR("pic") + WideString(1, number), "picture");
            part.contentType = OLESTR("image/png");
            part.contentId = OLESTR("cid") + WideString(1, number);
            part.isInline = true;
        } else {
            part = DataAttachment(OLESTR("list") + WideString(1, number) + OLESTR(".txt"),
                                  kind == 'm' ? "" : "some text");
            part.contentType = OLESTR("text/plain");
        }
        record.attachments.push_back(part);
        ++number;
    }
    return record;
}

TEST(Composer, StructureFollowsBodiesAndAttachments) {
    struct Case {
        std::string golden;
        std::size_t bodies;
        std::string attachments;
        MultipartKind kind;
    } const cases[] = {
        {"single", 1, "", MultipartKind::Undecided},
        {"alternative", 2, "", MultipartKind::Alternative},
        {"related", 1, "ii", MultipartKind::Related},
        {"mixed", 1, "aa", MultipartKind::Mixed},
        {"mixed_related", 1, "aii", MultipartKind::Mixed},
        {"related_alternative", 2, "ii", MultipartKind::Related},
        {"mixed_alternative", 2, "a", MultipartKind::Mixed},
        {"mixed_related_alternative", 2, "aia", MultipartKind::Mixed},
        {"mixed_missing", 1, "m", MultipartKind::Mixed},
        {"mixed_related_missing", 1, "mi", MultipartKind::Mixed},
    };
    for (const Case& c : cases) {
        COutgoingMessage record = RecordOf(c.bodies, c.attachments);
        EXPECT_EQ(Pinned(Compose(record)), Golden(c.golden)) << c.golden;
        EXPECT_EQ(record.multipartKind, c.kind) << c.golden;
    }
}

TEST(Composer, OneMessageWithoutAnyPart) {
    COutgoingMessage record = SampleRecord();
    EXPECT_THAT(Compose(record), testing::EndsWith("MIME-Version: 1.0\r\n"));
    record.attachments.push_back(DataAttachment(OLESTR("a"), "b"));
    EXPECT_THAT(Compose(record), HasSubstr("\r\nContent-Type: application/octet-stream;\r\n\tname=a"
                                           "\r\nContent-Transfer-Encoding: base64\r\n"));
}

TEST(Composer, KindIsDecidedOnce) {
    COutgoingMessage record = RecordOf(2, "");
    Compose(record);
    record.attachments = RecordOf(1, "a").attachments;
    EXPECT_THAT(Compose(record), HasSubstr("Content-Type: multipart/alternative;"));
    EXPECT_EQ(record.multipartKind, MultipartKind::Alternative);
}

TEST(Composer, RoomForTheTerminator) {
    for (const std::string attachments : {"", "a", "aia"}) {
        COutgoingMessage record = RecordOf(1, attachments);
        std::string out;
        ComposeMessage(record, out);
        EXPECT_GE(out.capacity(), out.size() + 5);
    }
}

// The part header lines of the only attachment, from its content type on.
std::string AttachmentOf(COutgoingMessage& record) {
    const std::string message = Compose(record);
    const std::size_t start = message.rfind("Content-Type: ");
    const std::size_t end = message.rfind("\r\n--");
    return message.substr(start, end - start);
}

TEST(Composer, AttachmentHeaders) {
    struct Case {
        WideString name, type, charset, contentId;
        LONG encoding;
        bool isInline;
        std::string data, expected;
    } const cases[] = {
        {OLESTR("a.b"), OLESTR("text/plain"), OLESTR(""), OLESTR(""), 1, false, "x\n",
         "Content-Type: text/plain;\r\n\tcharset=\"\";\r\n\tname=\"a.b\"\r\n"
         "Content-Transfer-Encoding: 7bit\r\n"
         "Content-Disposition: attachment;\r\n\tfilename=\"a.b\"\r\n\r\nx\n"},
        {OLESTR("README"), OLESTR("TEXT/x"), OLESTR("unicode"), OLESTR("id@x"), 0, true, "\xE9",
         "Content-Type: TEXT/x;\r\n\tcharset=\"unicode\";\r\n\tname=README\r\n"
         "Content-Transfer-Encoding: base64\r\n"
         "Content-Disposition: inline;\r\n\tfilename=README\r\n"
         "Content-ID: <id@x>\r\n\r\n6Q=="},
        {OLESTR("caf\u00E9.x"), OLESTR("a/b"), OLESTR("x"), OLESTR(""), 3, false, ".=",
         "Content-Type: a/b;\r\n\tname==?utf-8?B?Y2Fmw6kueA==?=\r\n"
         "Content-Transfer-Encoding: quoted-printable\r\n"
         "Content-Disposition: attachment;\r\n\tfilename==?utf-8?B?Y2Fmw6kueA==?=\r\n\r\n..=3D"},
        {OLESTR("x"), OLESTR("a/b"), OLESTR(""), OLESTR(""), 9, false, "x",
         "Content-Type: a/b;\r\n\tname=x\r\n"
         "Content-Transfer-Encoding: \r\n"
         "Content-Disposition: attachment;\r\n\tfilename=x\r\n\r\n"},
    };
    for (const Case& c : cases) {
        COutgoingMessage record = SampleRecord();
        record.bodyParts.push_back(TextBody({}));
        CAttachmentPart part = DataAttachment(c.name, c.data);
        part.contentType = c.type;
        part.charset = c.charset;
        part.contentId = c.contentId;
        part.encoding = c.encoding;
        part.isInline = c.isInline;
        record.attachments.push_back(part);
        EXPECT_EQ(AttachmentOf(record), c.expected);
    }
}

// A type of file extension that goes with the object.
class RegisteredExtension {
public:
    RegisteredExtension(const OLECHAR* extension, const WideString& type) : extension_(extension) {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, extension, 0, nullptr, 0, KEY_WRITE, nullptr,
                                  &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegSetValueExW(key, OLESTR("Content Type"), 0, REG_SZ,
                                 reinterpret_cast<const BYTE*>(type.c_str()),
                                 static_cast<DWORD>((type.size() + 1) * sizeof(WCHAR))),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }
    ~RegisteredExtension() { RegDeleteTreeW(HKEY_CLASSES_ROOT, extension_); }

private:
    const OLECHAR* extension_;
};

TEST(Composer, ContentTypesOfAttachments) {
    const RegisteredExtension one(OLESTR(".qvtest1"), OLESTR("application/x-one"));
    const RegisteredExtension two(OLESTR(".qvtest1.qvtest2"), OLESTR("application/x-two"));
    const RegisteredExtension none(OLESTR(".qvtest3"), OLESTR(""));
    const RegisteredExtension longest(OLESTR(".qvtest4"), WideString(259, WCHAR('x')));
    const RegisteredExtension tooLong(OLESTR(".qvtest5"), WideString(260, WCHAR('x')));
    struct Case {
        WideString name, explicitType;
        std::string type;
    } const cases[] = {
        {OLESTR("a.qvtest1"), OLESTR(""), "application/x-one"},
        {OLESTR("a.QvTest1"), OLESTR(""), "application/x-one"},
        {OLESTR("a.qvtest1.qvtest2"), OLESTR(""), "application/x-two"},
        {OLESTR("a.x.qvtest1"), OLESTR(""), "application/octet-stream"},
        {OLESTR("a.qvtest1"), OLESTR("mine/type"), "mine/type"},
        {OLESTR("qvtest1"), OLESTR(""), "application/octet-stream"},
        {OLESTR("a."), OLESTR(""), "application/octet-stream"},
        {OLESTR("a.qvtest3"), OLESTR(""), ""},
        {OLESTR("a.qvtest4"), OLESTR(""), std::string(259, 'x')},
        {OLESTR("a.qvtest5"), OLESTR(""), "application/octet-stream"},
    };
    for (const Case& c : cases) {
        COutgoingMessage record = SampleRecord();
        record.bodyParts.push_back(TextBody({}));
        record.attachments.push_back(DataAttachment(c.name, "x"));
        record.attachments.back().contentType = c.explicitType;
        EXPECT_THAT(AttachmentOf(record),
                    testing::StartsWith("Content-Type: " + c.type + ";\r\n\tname="))
            << c.type;
    }
}

// Long texts are converted and encoded piece by piece.
TEST(Composer, LongBodies) {
    WideString text;
    for (int i = 0; text.size() < 30000; ++i) {
        text += OLESTR("gr\u00FC\u00DFe \u20AC=\U0001F600.");
        if (i % 7 == 0) text += OLESTR("\r\n.");
        if (i % 50 == 0) text += OLESTR("\r");
        if (i % 31 == 0) text += WideString(static_cast<std::size_t>(i), WCHAR('x'));
    }
    const WideString oneLine(20000, WCHAR(0xE9));
    const WideString withZero = text.substr(0, 9000) + WCHAR(0) + text;
    for (const WideString& body : {text, oneLine, withZero, text + oneLine + text}) {
        for (const WideString charset : {OLESTR("unicode"), OLESTR("iso-8859-1")}) {
            for (LONG encoding = 1; encoding <= 4; ++encoding) {
                COutgoingMessage record = SampleRecord();
                record.bodyParts.push_back(TextBody(body, charset));
                record.bodyParts[0].encoding = encoding;
                const std::string bytes =
                    charset == OLESTR("unicode") ? ToUtf8(body) : LowBytes(body);
                EXPECT_TRUE(BodyOf(Compose(record)) == reference::EncodeBody(bytes, encoding))
                    << "encoding " << encoding << ", " << body.size() << " units";
            }
        }
    }
}

// Line ends at the edge of a piece, and units that only become line ends when they are reduced.
TEST(Composer, LineEndsBetweenPieces) {
    const WideString ends[] = {OLESTR("\r"), OLESTR("\r\n"), OLESTR("\r\u010A"), OLESTR("\n"),
                               OLESTR("\u4E0D\u010A")};
    for (const WideString& end : ends) {
        for (std::size_t before = 4094; before < 4099; ++before) {
            const WideString body = WideString(before, WCHAR('x')) + end + OLESTR(".\r\n..") +
                                    WideString(5000, WCHAR('y'));
            for (LONG encoding = 1; encoding <= 3; ++encoding) {
                COutgoingMessage record = SampleRecord();
                record.bodyParts.push_back(TextBody(body, OLESTR("iso-8859-1")));
                record.bodyParts[0].encoding = encoding;
                EXPECT_TRUE(BodyOf(Compose(record)) ==
                            reference::EncodeBody(LowBytes(body), encoding))
                    << "encoding " << encoding << ", " << before << " units before "
                    << testing::PrintToString(end);
            }
        }
    }
}

std::string BodyWithFile(const WideString& path, LONG encoding = 0) {
    COutgoingMessage record = SampleRecord();
    record.bodyParts.push_back(TextBody(OLESTR("not sent"), OLESTR("unicode")));
    record.bodyParts[0].file = path;
    record.bodyParts[0].encoding = encoding;
    const std::string message = Compose(record);
    return message.substr(message.find("Content-Type: "));
}

TEST(Composer, BodyFiles) {
    const TempFolder folder;
    const std::string type = "Content-Type: text/plain;\r\n\tcharset=\"unicode\"\r\n";
    EXPECT_EQ(BodyWithFile(folder.Write("text", "caf\xC3\xA9 is closed on Mondays")),
              type + "Content-Transfer-Encoding: 8bit\r\n\r\ncaf\xC3\xA9 is closed on Mondays");
    EXPECT_EQ(BodyWithFile(folder.Write("empty", "")),
              type + "Content-Transfer-Encoding: 7bit\r\n\r\n");
    EXPECT_EQ(BodyWithFile(folder.Path("missing"), 3), type + "\r\n\r\n");
    EXPECT_EQ(BodyWithFile(folder.Path("")), type + "\r\n\r\n");
}

std::string FileAttachment(const WideString& path, LONG encoding) {
    COutgoingMessage record = SampleRecord();
    record.bodyParts.push_back(TextBody(OLESTR("Hello")));
    CAttachmentPart part;
    part.file = path;
    part.encoding = encoding;
    part.contentType = OLESTR("a/b");
    record.attachments.push_back(part);
    const std::string message = Pinned(Compose(record));
    const std::size_t body = message.find("Hello") + 5;
    return message.substr(body, message.rfind("\r\n--{B0}--\r\n") - body);
}

TEST(Composer, AttachmentFiles) {
    const TempFolder folder;
    // The sizes of the pieces in which files are read, and their neighbours.
    for (const std::size_t size : {1u, 57u, 76u, 58368u - 1, 58368u, 58368u + 1, 3u * 58368u}) {
        std::string content;
        for (std::size_t i = 0; i < size; ++i) content += static_cast<char>(i * 7 + i / 251);
        const WideString path = folder.Write("some file.bin", content);
        std::string lines;
        AppendBase64Lines(BytesOf(content), lines);
        lines.resize(lines.size() - 2);
        EXPECT_EQ(FileAttachment(path, 4),
                  "\r\n--{B0}\r\nContent-Type: a/b;\r\n\tname=\"some file.bin\"\r\n"
                  "Content-Transfer-Encoding: base64\r\nContent-Disposition: attachment;\r\n"
                  "\tfilename=\"some file.bin\"\r\n\r\n" +
                      lines)
            << size;
    }
    const WideString text = folder.Write("text", ".one\r\ntwo");
    EXPECT_THAT(FileAttachment(text, 0),
                testing::EndsWith(": attachment;\r\n\tfilename=text\r\n\r\n"
                                  "..one\r\ntwo"));
    for (const LONG encoding : {0, 1, 3, 4}) {
        EXPECT_EQ(FileAttachment(folder.Path("missing"), encoding), "");
        EXPECT_EQ(FileAttachment(folder.Write("empty", ""), encoding), "");
        EXPECT_EQ(FileAttachment(folder.Path("."), encoding), "");
    }
}

TEST(Composer, FilesInUseElsewhere) {
    const TempFolder folder;
    const WideString path = folder.Write("file", "content");
    const auto open = [&](DWORD share) {
        const HANDLE handle =
            CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
        return handle;
    };
    HANDLE other = open(FILE_SHARE_READ);
    EXPECT_THAT(BodyWithFile(path), Not(HasSubstr("content")));  // wants the file for itself
    EXPECT_THAT(FileAttachment(path, 1), HasSubstr("content"));  // shares it with readers
    CloseHandle(other);
    other = open(0);
    EXPECT_EQ(FileAttachment(path, 4), "");
    CloseHandle(other);
    EXPECT_THAT(BodyWithFile(path), HasSubstr("content"));
}

// Nobody in this process shuts out anybody else, and others only for as long as they need.
TEST(Composer, FilesInUseForAMoment) {
    constexpr int kThreads = 4;
    constexpr int kMessages = 100;
    const TempFolder folder;
    const WideString path = folder.Write("file", "content");
    std::atomic<int> whole = 0;
    const auto compose = [&](int thread) {
        for (int message = 0; message < kMessages; ++message) {
            const std::string text = thread == 0 ? FileAttachment(path, 1) : BodyWithFile(path);
            if (text.find("content") != std::string::npos) ++whole;
        }
    };
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < kThreads; ++thread) threads.emplace_back(compose, thread);
    }
    EXPECT_EQ(whole, kThreads * kMessages);
    const HANDLE other =
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const std::jthread closer([other] { CloseHandle(other); });
    EXPECT_THAT(BodyWithFile(path), HasSubstr("content"));
}

TEST(Composer, DataIsSentInPlaceOfTheFile) {
    COutgoingMessage record = SampleRecord();
    record.bodyParts.push_back(TextBody({}));
    record.attachments.push_back(DataAttachment({}, "Man"));
    record.attachments[0].file = OLESTR("C:\\no such\\f.qv");
    const std::string part = AttachmentOf(record);
    EXPECT_THAT(part, HasSubstr("\tname=\"f.qv\"\r\n"));
    EXPECT_THAT(part, testing::EndsWith("\r\n\r\nTWFu"));
}

// Lines by any reading: CR, LF and CRLF end them.
std::vector<std::string> PhysicalLines(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\r' || c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    return lines;
}

std::size_t CountOf(std::string_view what, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string_view::npos; ++at) ++count;
    return count;
}

TEST(Composer, NoTextStartsALineOfItsOwn) {
    using Field = std::function<WideString&(COutgoingMessage&)>;
    const Field fields[] = {
        [](auto& m) -> WideString& { return m.subject; },
        [](auto& m) -> WideString& { return m.messageId; },
        [](auto& m) -> WideString& { return m.sender.name; },
        [](auto& m) -> WideString& { return m.sender.address; },
        [](auto& m) -> WideString& { return m.replyTo.address; },
        [](auto& m) -> WideString& { return m.to[0].name; },
        [](auto& m) -> WideString& { return m.to[0].address; },
        [](auto& m) -> WideString& { return m.bodyParts[0].contentType; },
        [](auto& m) -> WideString& { return m.bodyParts[0].charset; },
        [](auto& m) -> WideString& { return m.bodyParts[0].contentId; },
        [](auto& m) -> WideString& { return m.attachments[0].contentType; },
        [](auto& m) -> WideString& { return m.attachments[0].charset; },
        [](auto& m) -> WideString& { return m.attachments[0].contentId; },
        [](auto& m) -> WideString& { return m.attachments[0].name; },
    };
    const auto sample = [] {
        COutgoingMessage record = RecordOf(1, "a");
        record.replyTo.address = OLESTR("r@b.example");
        record.bodyParts[0].contentId = OLESTR("body");
        record.attachments[0].contentId = OLESTR("file");
        record.subject = OLESTR("caf\u00E9");  // puts the body's charset into the header
        return record;
    };
    COutgoingMessage harmless = sample();
    const std::size_t blankLines = CountOf("\r\n\r\n", Compose(harmless));
    const auto check = [&](COutgoingMessage& record) {
        const std::string message = Compose(record);
        for (const std::string& line : PhysicalLines(message)) {
            EXPECT_THAT(line, Not(testing::StartsWith("X-Evil")));
            EXPECT_NE(line, ".");
        }
        EXPECT_EQ(message.find('\0'), std::string::npos);
        EXPECT_EQ(CountOf("\r\n\r\n", message), blankLines);  // no header ends early
    };
    for (const WideString lineBreak :
         {OLESTR("\r\n"), OLESTR("\r"), OLESTR("\n"), OLESTR("\n\r"), OLESTR("\r\n\r\n")}) {
        const WideString evil = lineBreak + OLESTR("X-Evil: 1") + lineBreak + OLESTR(".") +
                                lineBreak + WideString(1, WCHAR(0)) + OLESTR("X-Evil: 2") +
                                lineBreak;
        for (const Field& field : fields) {
            for (const bool atStart : {true, false}) {
                COutgoingMessage record = sample();
                WideString& text = field(record);
                text = atStart ? evil + text : text + evil;
                check(record);
            }
        }
        for (const bool inName : {true, false}) {
            COutgoingMessage record = sample();
            std::string name = "X-A", value = "v";
            AppendLowBytes(evil, inName ? name : value);
            record.headers.Append(name, value);
            check(record);
        }
    }
}

}  // namespace
}  // namespace quorvane
