#include <gtest/gtest.h>

#include <tuple>

#include "automation/boundary.h"
#include "model/mail_address.h"
#include "model/mail_attachment.h"
#include "model/mail_message.h"
#include "model/outgoing_message.h"
#include "model/utc_offset.h"
#include "tests/support/com.h"

namespace quorvane {
namespace {

class Outgoing : public ::testing::Test {
protected:
    ComPtr<CMailMessage> message{new CMailMessage};

    ComPtr<IMailAddress> Address(WideView address) {
        auto object = New<CMailAddress, IMailAddress>();
        EXPECT_EQ(object->put_Address(Bstr(address)), S_OK);
        return object;
    }
    COutgoingMessage Prepare() {
        COutgoingMessage record;
        PrepareOutgoingMessage(*message.Get(), record);
        return record;
    }
};

TEST_F(Outgoing, PlainMessageHasOnePart) {
    const COutgoingMessage record = Prepare();
    ASSERT_EQ(record.bodyParts.size(), 1u);
    EXPECT_EQ(record.bodyParts[0].contentType, OLESTR("text/plain"));
    EXPECT_EQ(record.bodyParts[0].charset, OLESTR("iso-8859-1"));
    EXPECT_EQ(record.bodyParts[0].encoding, 0);
    EXPECT_EQ(record.multipartKind, MultipartKind::Undecided);
    EXPECT_EQ(record.priorityCode, 1);
}

TEST_F(Outgoing, AlternativeComesFirst) {
    message->put_AltMessageBody(Bstr(OLESTR("text")));
    message->put_MessageBody(Bstr(OLESTR("<p>")));
    message->put_MessageBodyFormat(MailFormatHtml);
    message->put_MessageBodyFile(Bstr(OLESTR("body.html")));
    message->put_AltMessageBodyEncoding(MailEncodingBase64);
    const COutgoingMessage record = Prepare();
    ASSERT_EQ(record.bodyParts.size(), 2u);
    EXPECT_EQ(record.bodyParts[0].contentType, OLESTR("text/plain"));
    EXPECT_EQ(record.bodyParts[0].text, OLESTR("text"));
    EXPECT_EQ(record.bodyParts[0].file, OLESTR("")) << "the body file belongs to the main part";
    EXPECT_EQ(record.bodyParts[0].encoding, 4);
    EXPECT_EQ(record.bodyParts[1].contentType, OLESTR("text/html"));
    EXPECT_EQ(record.bodyParts[1].text, OLESTR("<p>"));
    EXPECT_EQ(record.bodyParts[1].file, OLESTR("body.html"));
    EXPECT_EQ(record.bodyParts[1].encoding, 0);
}

TEST_F(Outgoing, CharsetChoice) {
    const struct {
        const OLECHAR* subject;
        const OLECHAR* body;
        const OLECHAR* alternative;
        const OLECHAR* bodyCharset;
        const OLECHAR* alternativeCharset;
        const OLECHAR* expectedAlternative;
        const OLECHAR* expectedBody;
    } cases[] = {
        {OLESTR("s"), OLESTR("b"), OLESTR("a"), OLESTR(""), OLESTR(""), OLESTR("iso-8859-1"),
         OLESTR("iso-8859-1")},
        {OLESTR("s"), OLESTR("caf\u00e9 \u00ff"), OLESTR("a"), OLESTR(""), OLESTR(""),
         OLESTR("iso-8859-1"), OLESTR("iso-8859-1")},
        {OLESTR("\u0100"), OLESTR("b"), OLESTR("a"), OLESTR(""), OLESTR(""), OLESTR("unicode"),
         OLESTR("unicode")},
        {OLESTR("s"), OLESTR("\u4e2d"), OLESTR("a"), OLESTR(""), OLESTR(""), OLESTR("iso-8859-1"),
         OLESTR("unicode")},
        {OLESTR("s"), OLESTR("b"), OLESTR("\u4e2d"), OLESTR(""), OLESTR(""), OLESTR("unicode"),
         OLESTR("iso-8859-1")},
        {OLESTR("\u4e2d"), OLESTR("b"), OLESTR("a"), OLESTR("X"), OLESTR(""), OLESTR("X"),
         OLESTR("X")},
        {OLESTR("s"), OLESTR("b"), OLESTR("a"), OLESTR("X"), OLESTR("Y"), OLESTR("Y"), OLESTR("X")},
        {OLESTR("\u4e2d"), OLESTR("b"), OLESTR("a"), OLESTR(""), OLESTR("Y"), OLESTR("Y"),
         OLESTR("unicode")},
    };
    for (const auto& c : cases) {
        message->put_MessageSubject(Bstr(c.subject));
        message->put_MessageBody(Bstr(c.body));
        message->put_AltMessageBody(Bstr(c.alternative));
        message->put_MessageBodyCharset(Bstr(c.bodyCharset));
        message->put_AltMessageBodyCharset(Bstr(c.alternativeCharset));
        const COutgoingMessage record = Prepare();
        ASSERT_EQ(record.bodyParts.size(), 2u);
        EXPECT_EQ(Show(record.bodyParts[0].charset), Show(c.expectedAlternative))
            << Show(c.subject) << Show(c.body);
        EXPECT_EQ(Show(record.bodyParts[1].charset), Show(c.expectedBody))
            << Show(c.subject) << Show(c.body);
    }
}

TEST_F(Outgoing, OutOfRangeValuesAreMapped) {
    const struct {
        LONG encoding, expectedEncoding, priority, expectedPriority;
    } cases[] = {{0, 0, 1, 2}, {2, 2, 3, 1}, {3, 3, 3, 1}, {1, 1, 3, 1},
                 {4, 4, 5, 0}, {5, 0, 2, 1}, {7, 0, 0, 1}, {-1, 0, -5, 1}};
    for (const auto& c : cases) {
        MailEncoding encoding;
        MailPriority priority;
        StoreEnumeration(c.encoding, &encoding);
        StoreEnumeration(c.priority, &priority);
        message->put_AltMessageBody(Bstr(OLESTR("text")));
        message->put_AltMessageBodyEncoding(encoding);
        message->put_MessageBodyEncoding(encoding);
        message->put_MessagePriority(priority);
        const COutgoingMessage record = Prepare();
        EXPECT_EQ(record.bodyParts.front().encoding, c.expectedEncoding) << c.encoding;
        EXPECT_EQ(record.bodyParts.back().encoding, c.expectedEncoding) << c.encoding;
        EXPECT_EQ(record.priorityCode, c.expectedPriority) << c.priority;
    }
}

TEST_F(Outgoing, ReadReceiptComesBeforeTheExtraHeaders) {
    message->AddHeader(Bstr(OLESTR("X-A")), Bstr(OLESTR("1")));
    message->AddHeader(Bstr(OLESTR("Disposition-Notification-To")), Bstr(OLESTR("own")));
    message->put_RequestReadReceipt(1);
    EXPECT_EQ(Prepare().headers.size(), 2u) << "no sender, no receipt";
    message->put_Sender(Address(OLESTR("Jo <jo@x>")).Get());
    const COutgoingMessage record = Prepare();
    const HeaderList& fields = record.headers;
    ASSERT_EQ(fields.size(), 3u);
    EXPECT_EQ(fields[0].name, "Disposition-Notification-To");
    EXPECT_EQ(fields[0].value, "jo@x");
    EXPECT_EQ(fields[1].name, "X-A");
    EXPECT_EQ(fields[2].value, "own");
}

TEST_F(Outgoing, EntriesWithoutAddressAreLeftOut) {
    for (WideView address :
         {WideView(OLESTR("a@x")), WideView(OLESTR("")), WideView(OLESTR("b@x"))}) {
        message->AddRecipient(Address(address).Get());
        message->AddCcRecipient(Address(address).Get());
        message->AddBccRecipient(Address(address).Get());
    }
    const COutgoingMessage record = Prepare();
    for (const auto* list : {&record.to, &record.cc, &record.bcc}) {
        ASSERT_EQ(list->size(), 2u);
        EXPECT_EQ((*list)[1].address, OLESTR("b@x"));
    }
}

TEST_F(Outgoing, RecordDoesNotFollowTheMessage) {
    message->put_MessageSubject(Bstr(OLESTR("before")));
    message->put_Sender(Address(OLESTR("s@x")).Get());
    message->AddRecipient(Address(OLESTR("a@x")).Get());
    const COutgoingMessage record = Prepare();
    message->put_MessageSubject(Bstr(OLESTR("after")));
    message->ClearRecipients();
    EXPECT_EQ(record.subject, OLESTR("before"));
    EXPECT_EQ(record.to.size(), 1u);
}

TEST_F(Outgoing, FirstFailingRuleDecides) {
    EXPECT_EQ(ValidateOutgoingMessage(Prepare()), OLESTR("Sender address can't be empty"));
    message->put_Sender(Address(OLESTR("s@x")).Get());
    message->AddRecipient(Address(OLESTR("")).Get());
    EXPECT_EQ(ValidateOutgoingMessage(Prepare()),
              OLESTR("Message must have at least one recipient"));
    message->AddBccRecipient(Address(OLESTR("b@x")).Get());
    EXPECT_EQ(ValidateOutgoingMessage(Prepare()), OLESTR(""));

    const auto attachment = New<CMailAttachment, IMailAttachment>();
    attachment->put_File(Bstr(OLESTR("C:\\no-such-folder\\none.txt")));
    message->AddAttachment(attachment.Get());
    EXPECT_EQ(ValidateOutgoingMessage(Prepare()),
              OLESTR("Couldn't open attachment file C:\\no-such-folder\\none.txt"));
    message->ClearAttachments();
    unsigned char byte = 'x';
    attachment->LoadFromMemory(&byte, 1);
    message->AddAttachment(attachment.Get());
    EXPECT_EQ(ValidateOutgoingMessage(Prepare()), OLESTR("")) << "data needs no file";

    const auto folder = New<CMailAttachment, IMailAttachment>();
    folder->put_File(Bstr(OLESTR(".")));
    message->AddAttachment(folder.Get());
    EXPECT_EQ(ValidateOutgoingMessage(Prepare()), OLESTR("")) << "existence is all that is tested";
    const auto nothing = New<CMailAttachment, IMailAttachment>();
    message->AddAttachment(nothing.Get());
    EXPECT_EQ(ValidateOutgoingMessage(Prepare()), OLESTR("Couldn't open attachment file "));
}

TEST_F(Outgoing, TakesTheTimeWhenItIsMade) {
    SYSTEMTIME before{};
    SYSTEMTIME after{};
    GetLocalTime(&before);
    const COutgoingMessage record;
    GetLocalTime(&after);
    const auto order = [](const SYSTEMTIME& t) {
        return std::tuple(t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond,
                          t.wMilliseconds);
    };
    EXPECT_LE(order(before), order(record.createdTime));
    EXPECT_LE(order(record.createdTime), order(after));
    EXPECT_EQ(record.utcOffset, LocalUtcOffset());
}

TEST(UtcOffset, AddsTheBiasInForce) {
    const struct {
        LONG bias, standard, daylight;
        DWORD inForce;
        LONG expected;
    } cases[] = {
        {0, 0, 0, TIME_ZONE_ID_UNKNOWN, 0},         {0, 0, -60, TIME_ZONE_ID_DAYLIGHT, 100},
        {-60, 0, -60, TIME_ZONE_ID_STANDARD, 100},  {-60, 0, -60, TIME_ZONE_ID_DAYLIGHT, 200},
        {-60, 0, -60, TIME_ZONE_ID_UNKNOWN, 100},   {300, 0, -60, TIME_ZONE_ID_STANDARD, -500},
        {-330, 0, 0, TIME_ZONE_ID_UNKNOWN, 530},    {210, 0, -60, TIME_ZONE_ID_DAYLIGHT, -230},
        {-345, 0, 0, TIME_ZONE_ID_STANDARD, 545},   {30, 0, 0, TIME_ZONE_ID_UNKNOWN, -30},
        {-600, 5, -30, TIME_ZONE_ID_STANDARD, 955},
    };
    for (const auto& c : cases) {
        TIME_ZONE_INFORMATION zone{};
        zone.Bias = c.bias;
        zone.StandardBias = c.standard;
        zone.DaylightBias = c.daylight;
        EXPECT_EQ(UtcOffset(zone, c.inForce), c.expected) << c.bias;
    }
}

}  // namespace
}  // namespace quorvane
