#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mime/header_composer.h"
#include "mime/header_text.h"
#include "mime/header_writer.h"
#include "mime/unique_stamp.h"
#include "tests/mime/composing.h"

namespace quorvane {
namespace {

using ::testing::ElementsAre;

template <class Function, class... Arguments>
std::string Appended(Function append, const Arguments&... arguments) {
    std::string out;
    append(arguments..., out);
    return out;
}

TEST(HeaderText, PlainQuotedOrEncoded) {
    const WideString umlauts(60, WCHAR(0xFC));
    std::string umlautWord = "=?utf-8?B?";
    for (int i = 0; i < 20; ++i) umlautWord += "w7zDvMO8";
    struct Case {
        std::vector<WideString> bodyCharsets;
        WideString text;
        bool isPhrase;
        std::string result;
    } const cases[] = {
        {{}, OLESTR(""), false, ""},
        {{}, OLESTR(""), true, ""},
        {{}, OLESTR("Hello world"), false, "Hello world"},
        {{}, OLESTR("say \"=?x?=\""), false, "say \"=?x?=\""},
        {{}, OLESTR(" a "), false, " a "},
        {{}, OLESTR("Smith"), true, "Smith"},
        {{}, OLESTR("John Smith"), true, "\"John Smith\""},
        {{}, OLESTR("O'Brien"), true, "\"O'Brien\""},
        {{}, OLESTR("README"), true, "README"},
        {{}, OLESTR("report.pdf"), true, "\"report.pdf\""},
        {{}, OLESTR("a\tb\r\nc"), true, "\"a b  c\""},
        {{}, OLESTR("a\\b\"c"), true, "\"a\\\\b\\\"c\""},
        {{OLESTR("iso-8859-1"), OLESTR("ISO-8859-1")},
         OLESTR("Gr\u00FC\u00DFe"),
         false,
         "=?utf-8?B?R3LDvMOfZQ==?="},
        {{OLESTR("windows-1252")}, OLESTR("caf\u00E9"), false, "=?windows-1252?B?Y2Fm6Q==?="},
        {{OLESTR("koi8-r"), OLESTR("windows-1252")},
         OLESTR("caf\u00E9"),
         false,
         "=?windows-1252?B?Y2Fm6Q==?="},
        {{OLESTR("windows-1252"), OLESTR("iso-8859-1"), OLESTR("")},
         OLESTR("caf\u00E9"),
         false,
         "=?windows-1252?B?Y2Fm6Q==?="},
        {{OLESTR("windows-1252"), OLESTR("Unicode")},
         OLESTR("caf\u00E9"),
         false,
         "=?utf-8?B?Y2Fmw6k=?="},
        {{}, OLESTR("J\u00FCrgen M\u00FCller"), true, "=?utf-8?B?SsO8cmdlbiBNw7xsbGVy?="},
        {{}, OLESTR("\u007F"), false, "=?utf-8?B?fw==?="},
        {{}, OLESTR("\u20AC \U0001F600"), true, "=?utf-8?B?4oKsIPCfmIA=?="},
        {{}, WideString(1, WCHAR(0xD800)), false, "=?utf-8?B?77+9?="},
        {{}, umlauts, false, umlautWord + "?="},  // one word, however long
    };
    for (const Case& c : cases) {
        COutgoingMessage record;
        for (const WideString& charset : c.bodyCharsets) {
            record.bodyParts.push_back(TextBody({}, charset));
        }
        EXPECT_EQ(Appended(AppendHeaderText, record, c.text, c.isPhrase), c.result);
    }
}

TEST(HeaderText, Addresses) {
    const COutgoingMessage record;
    struct Case {
        CAddressEntry entry;
        std::string text;
    } const cases[] = {
        {{OLESTR(""), OLESTR("a@b")}, "<a@b>"},
        {{OLESTR(" \t "), OLESTR("a@b")}, "<a@b>"},
        {{OLESTR(" John "), OLESTR("a@b")}, "John <a@b>"},
        {{OLESTR("John Smith"), OLESTR("a@b")}, "\"John Smith\" <a@b>"},
        {{OLESTR("J\u00FCrgen"), OLESTR("a@b")}, "=?utf-8?B?SsO8cmdlbg==?= <a@b>"},
        {{OLESTR("John"), OLESTR("")}, "John <>"},
        {{OLESTR(""), OLESTR("\u00E9@b")}, "<\xE9@b>"},
    };
    for (const Case& c : cases) EXPECT_EQ(Appended(AppendAddress, record, c.entry), c.text);
    const std::vector<CAddressEntry> three = {
        {{}, OLESTR("a")}, {OLESTR("N"), OLESTR("b")}, {{}, OLESTR("c")}};
    EXPECT_EQ(Appended(AppendAddressList, record, three), "<a>,\r\n\tN <b>,\r\n\t<c>");
}

TEST(HeaderComposer, Dates) {
    struct Case {
        SYSTEMTIME time;
        LONG offset;
        std::string text;
    } const cases[] = {
        {{2026, 11, 0, 6, 9, 5, 3, 999}, 100, "Fri, 6 Nov 2026 9:05:03 +0100"},
        {{2024, 2, 0, 29, 0, 0, 0, 0}, 0, "Thu, 29 Feb 2024 0:00:00 -0000"},
        {{2000, 1, 0, 1, 23, 59, 59, 0}, 530, "Sat, 1 Jan 2000 23:59:59 +0530"},
        {{2100, 3, 0, 1, 10, 10, 10, 0}, -500, "Mon, 1 Mar 2100 10:10:10 -0500"},
        {{1999, 12, 0, 31, 1, 2, 3, 0}, 1345, "Fri, 31 Dec 1999 1:02:03 +1345"},
        {{2026, 8, 0, 9, 12, 0, 0, 0}, -30, "Sun, 9 Aug 2026 12:00:00 -0030"},
    };
    for (const Case& c : cases) EXPECT_EQ(Appended(AppendDate, c.time, c.offset), c.text);
}

TEST(HeaderComposer, GeneratedIdentifier) {
    EXPECT_EQ(Appended(AppendGeneratedId, UniqueStamp{20010, 3600000}, OLESTR("a@b.example")),
              "<000004E2A.0036EE80.a@b.example>");
    COutgoingMessage record = SampleRecord();
    record.messageId.clear();
    const std::string message = Compose(record);
    EXPECT_EQ(FieldValue(Pinned(message), "Message-ID"), "<{ID}.a@b.example>");
    EXPECT_NE(FieldValue(message, "Message-ID"), FieldValue(Compose(record), "Message-ID"));
}

TEST(HeaderComposer, PriorityFields) {
    struct Case {
        LONG code;
        std::string number, word;
    } const cases[] = {{2, "1 (Highest)", "High"},
                       {1, "3 (Normal)", "Normal"},
                       {0, "5 (Lowest)", "Low"},
                       {-7, "3 (Normal)", "Normal"}};
    for (const Case& c : cases) {
        COutgoingMessage record = SampleRecord();
        record.priorityCode = c.code;
        const std::string message = Compose(record);
        EXPECT_EQ(FieldValue(message, "X-Priority"), c.number);
        EXPECT_EQ(FieldValue(message, "X-MSMail-Priority"), c.word);
        EXPECT_EQ(FieldValue(message, "Importance"), c.word);
    }
}

COutgoingMessage RecordWithAllFields() {
    COutgoingMessage record = SampleRecord();
    record.bodyParts.push_back(TextBody(OLESTR("alternative")));
    record.bodyParts.push_back(TextBody(OLESTR("main")));
    record.replyTo.address = OLESTR("r@b.example");
    record.cc.push_back({{}, OLESTR("e@f.example")});
    record.bcc.push_back({{}, OLESTR("hidden@f.example")});
    record.headers.Append("Disposition-Notification-To", "a@b.example");
    record.headers.Append("X-A", "1");
    record.headers.Append("X-B", "2");
    return record;
}

TEST(HeaderComposer, OrderOfFieldsOnceAndAgain) {
    COutgoingMessage record = RecordWithAllFields();
    const std::string first = Compose(record);
    EXPECT_THAT(
        FieldNames(first),
        ElementsAre("From", "Reply-To", "To", "Cc", "Subject", "Date", "Message-ID", "Importance",
                    "X-MSMail-Priority", "X-Priority", "X-Mailer", "X-MimeOLE", "MIME-Version",
                    "Content-Type", "X-B", "X-A", "Disposition-Notification-To"));
    EXPECT_EQ(first.find("hidden"), std::string::npos);
    record.messageId.clear();
    const std::string second = Compose(record);
    EXPECT_THAT(
        FieldNames(second),
        ElementsAre("Subject", "Message-ID", "MIME-Version", "Content-Type", "From", "Reply-To",
                    "To", "Cc", "Date", "Importance", "X-MSMail-Priority", "X-Priority", "X-Mailer",
                    "X-MimeOLE", "X-B", "X-A", "Disposition-Notification-To"));
    for (const std::string name : {"Date", "Subject", "X-A"}) {
        EXPECT_EQ(FieldValue(first, name), FieldValue(second, name));
    }
    EXPECT_NE(FieldValue(first, "Content-Type"), FieldValue(second, "Content-Type"));
    EXPECT_EQ(Pinned(BodyOf(first)), Pinned(BodyOf(second)));
}

TEST(HeaderComposer, FieldsThatNeedAValue) {
    COutgoingMessage record = SampleRecord();
    record.to.clear();
    record.subject.clear();
    record.replyTo.name = OLESTR("Nobody");  // without an address
    record.sender = {};
    record.bodyParts.push_back(TextBody({}));
    const std::string message = Compose(record);
    EXPECT_THAT(FieldNames(message),
                ElementsAre("From", "Date", "Message-ID", "Importance", "X-MSMail-Priority",
                            "X-Priority", "X-Mailer", "X-MimeOLE", "MIME-Version", "Content-Type",
                            "Content-Transfer-Encoding"));
    EXPECT_EQ(FieldValue(message, "From"), "<>");
}

TEST(HeaderComposer, FieldsOfTheClient) {
    struct Case {
        std::string name, expected;  // in place of the client's "mine" or beside it
    } const cases[] = {
        {"x-mailer", "mine"},       {"X-PRIORITY", "mine"},   {"importance", "mine"},
        {"date", "mine"},           {"TO", "mine"},           {"from", "mine"},
        {"subject", "(none)"},      {"message-id", "(none)"}, {"content-type", "(none)"},
        {"mime-version", "(none)"}, {"X-Own", "mine"},
    };
    for (const Case& c : cases) {
        COutgoingMessage record = RecordWithAllFields();
        const std::size_t before = FieldNames(Compose(record)).size();
        record = RecordWithAllFields();
        record.headers.Append(c.name, "mine");
        const std::string message = Compose(record);
        EXPECT_EQ(FieldValue(message, c.name), c.expected) << c.name;
        EXPECT_EQ(FieldNames(message).size(), before + (c.name == "X-Own")) << c.name;
    }
}

TEST(HeaderComposer, FixedFields) {
    COutgoingMessage record = SampleRecord();
    const std::string message = Compose(record);
    EXPECT_EQ(FieldValue(message, "X-MimeOLE"), "Produced By Lindbrek Mime V4.1");
    EXPECT_THAT(FieldValue(message, "X-Mailer"), testing::StartsWith("Quorvane ActiveX 4.1"));
    EXPECT_EQ(FieldValue(message, "MIME-Version"), "1.0");
    EXPECT_EQ(FieldValue(message, "Message-ID"), "<id>");
    EXPECT_EQ(FieldValue(message, "Date"), "Fri, 6 Nov 2026 9:05:03 +0100");
    EXPECT_EQ(FieldValue(message, "To"), "<c@d.example>");
}

TEST(HeaderWriter, AFieldStaysOneField) {
    using std::string_literals::operator""s;
    struct Case {
        std::string name, value, line;
    } const cases[] = {
        {"A", "b", "A: b\r\n"},
        {"A", "", "A: \r\n"},
        {"A", "b,\r\n\tc", "A: b,\r\n\tc\r\n"},
        {"A", "b\r\n c", "A: b\r\n c\r\n"},
        {"A", "b\r\nC: d", "A: b\r\n C: d\r\n"},
        {"A", "b\nC: d\n e", "A: b\r\n C: d\r\n e\r\n"},
        {"A", "b\rC: d\r\te", "A: b\r\n C: d\r\n\te\r\n"},
        {"A", "b\r\n", "A: b\r\n \r\n"},
        {"A", "b\r\n\r\nbody", "A: b\r\n \r\n body\r\n"},
        {"A", "b\n\rc", "A: b\r\n \r\n c\r\n"},
        {"A", "b\n\0c"s, "A: b\r\n ?c\r\n"},
        {"A", "\0"s, "A: ?\r\n"},
        {"A\r\nB", "c", "A??B: c\r\n"},
        {"A: b\nC", "d", "A: b?C: d\r\n"},
        {" A\0\xE9"s, "b", "?A?\xE9: b\r\n"},
        {"X Y:", "b", "X Y:: b\r\n"},
        {".A", ".b", "..A: .b\r\n"},
        {"A", "\xE9", "A: \xE9\r\n"},
    };
    for (const Case& c : cases) {
        std::string out;
        AppendHeaderLine(out, c.name, {c.value});
        EXPECT_EQ(out, c.line) << testing::PrintToString(c.value);
    }
    std::string out;
    AppendHeaderLine(out, "A", {"b\r", "\nC", "\n"});
    EXPECT_EQ(out, "A: b\r\n C\r\n \r\n");
}

}  // namespace
}  // namespace quorvane
