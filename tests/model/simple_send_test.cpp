// The lists and texts of the simple sends.
#include "model/simple_send.h"

#include <gtest/gtest.h>

#include "tests/support/com.h"

namespace quorvane {
namespace {

TEST(SimpleSend, RecipientLists) {
    const struct {
        WideView to;
        const char* expected;  // name(address) of each recipient
    } cases[] = {
        {OLESTR(""), ""},
        {OLESTR(" ; ;;\t\r\n;"), ""},
        {OLESTR("a@x"), "(a@x)"},
        {OLESTR(" a@x ;\tb@x;a@x"), "(a@x)(b@x)(a@x)"},
        {OLESTR(";;a@x;;b@x;"), "(a@x)(b@x)"},
        {OLESTR("Ann <a@x>;<b@x>;Carl [c@x] here"), "Ann(a@x)(b@x)Carl(c@x)"},
        {OLESTR("a@x, b@x;c@x"), "(a@x, b@x)(c@x)"},
        {OLESTR("Miller, Ann <a@x>;\"O'Neil, \u4e2d\" <b@x>"),
         "Miller, Ann(a@x)\"O'Neil, 中\"(b@x)"},
        {OLESTR("\"a; b\" <a@x>"), "(\"a)b\"(a@x)"},  // quotes keep nothing together
        {OLESTR("< a@x >;Ann <a@x"), "( a@x )(Ann <a@x)"},
    };
    for (const auto& c : cases) {
        COutgoingMessage record;
        AddRecipientList(record, c.to);
        std::string all;
        for (const CAddressEntry& to : record.to) {
            all += Show(to.name) + "(" + Show(to.address) + ")";
        }
        EXPECT_EQ(all, c.expected) << Show(c.to);
    }
}

TEST(SimpleSend, AttachmentLists) {
    COutgoingMessage record;
    AddAttachmentList(record, OLESTR(";C:\\my files\\a, b.pdf ;; \"quoted.txt\";\t;\u4e2d.png"));
    ASSERT_EQ(record.attachments.size(), 3u);
    EXPECT_EQ(record.attachments[0].file, OLESTR("C:\\my files\\a, b.pdf"));
    EXPECT_EQ(record.attachments[1].file, OLESTR("\"quoted.txt\""));
    EXPECT_EQ(record.attachments[2].file, OLESTR("\u4e2d.png"));
    for (const CAttachmentPart& part : record.attachments) {
        EXPECT_EQ(part.name + part.contentType + part.charset + part.contentId, OLESTR(""));
        EXPECT_EQ(part.encoding, MailEncodingBase64);
        EXPECT_FALSE(part.isInline);
    }
}

TEST(SimpleSend, BodyAndSubject) {
    const WideString blanks(25, WCHAR(' '));
    const struct {
        WideString body;
        bool isHtml;
    } cases[] = {
        {OLESTR("<html>"), true},
        {OLESTR(" \r\n\t<HtMl lang=en>"), true},
        {OLESTR("<htmlx"), true},
        {blanks + OLESTR("<html>"), true},
        {blanks + OLESTR(" <html>"), false},
        {OLESTR("<htm"), false},
        {OLESTR("<!DOCTYPE html><html>"), false},
        {OLESTR("x<html>"), false},
        {OLESTR(""), false},
    };
    for (const auto& c : cases) EXPECT_EQ(IsHtmlBody(c.body), c.isHtml) << Show(c.body);

    const struct {
        WideView subject;
        WideView body;
        WideView charset;
    } texts[] = {
        {OLESTR("s"), OLESTR("caf\u00e9"), OLESTR("iso-8859-1")},
        {OLESTR("\u20ac"), OLESTR("b"), OLESTR("unicode")},
        {OLESTR("s"), OLESTR("\u20ac"), OLESTR("unicode")},
    };
    for (const auto& t : texts) {
        COutgoingMessage record;
        SetSimpleBody(record, t.subject, t.body, t.charset == OLESTR("unicode"));
        ASSERT_EQ(record.bodyParts.size(), 1u);
        const CBodyPart& part = record.bodyParts[0];
        EXPECT_EQ(record.subject, t.subject);
        EXPECT_EQ(part.text, t.body);
        EXPECT_EQ(part.charset, t.charset);
        EXPECT_EQ(part.contentType,
                  t.charset == OLESTR("unicode") ? OLESTR("text/html") : OLESTR("text/plain"));
        EXPECT_EQ(part.encoding, 0);
    }
}

}  // namespace
}  // namespace quorvane
