// The DNS client: what it reads of answers, and what it doesn't ask.
#include <windows.h>
#include <windns.h>

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <vector>

#include "platform/net/dns_answer.h"

namespace {

using namespace std::string_literals;
using quorvane::dns::ParseAnswer;
using quorvane::dns::Record;

const std::string kHeader = "\x12\x34\x81\x80\0\1\0\2\0\1\0\1"s;  // 2 answers, 1 authority, 1 more
const std::string kQuestion = "\7example\4test\0\0\x0F\0\1"s;
const std::string kAtQuestion = "\xC0\x0C"s;
const std::string kFirst = kAtQuestion + "\0\x0F\0\1\0\0\0\x3C\0\7\0\x14\2mx\xC0\x0C"s;
const std::string kNull = kAtQuestion + "\0\x0F\0\1\0\0\0\x3C\0\3\0\0\0"s;
const std::string kAuthority = kAtQuestion + "\0\2\0\1\0\0\0\x3C\0\2\xC0\x0C"s;
const std::string kAddress = "\2mx\xC0\x0C\0\1\0\1\0\0\0\x3C\0\4\x7F\0\0\1"s;

bool Parse(const std::string& answer, std::vector<Record>& records) {
    // A copy of exactly this size, so that the sanitizers see a step beyond it.
    const std::vector<unsigned char> bytes(answer.begin(), answer.end());
    return ParseAnswer(bytes, records);
}

TEST(DnsAnswer, HasTheRecordsOfAllSectionsInOrder) {
    std::vector<Record> records;
    ASSERT_TRUE(Parse(kHeader + kQuestion + kFirst + kNull + kAuthority + kAddress, records));
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0].name, "example.test");
    EXPECT_EQ(records[0].exchanger, "mx.example.test");
    EXPECT_EQ(records[0].preference, 20);
    EXPECT_EQ(records[1].exchanger, ".");
    EXPECT_EQ(records[2].type, 2);
    EXPECT_EQ(records[3].name, "mx.example.test");
}

TEST(DnsAnswer, IsRefusedWhereverItIsCut) {
    const std::string answer = kHeader + kQuestion + kFirst + kNull + kAuthority + kAddress;
    for (std::size_t size = 0; size < answer.size(); ++size) {
        std::vector<Record> records;
        EXPECT_FALSE(Parse(answer.substr(0, size), records)) << size;
    }
}

TEST(DnsAnswer, IsRefusedWhenDamaged) {
    const std::string one =
        "\x12\x34\x81\x80\0\1\0\1\0\0\0\0"s + kQuestion + kAtQuestion + "\0\x0F\0\1\0\0\0\x3C"s;
    const char place = static_cast<char>(one.size() + 4);  // of the exchanger's name
    const struct {
        const char* what;
        std::string data;  // with its length in front
    } cases[] = {
        {"name that is its own end", "\0\4\0\1\xC0"s + place},
        {"label before itself", "\0\6\0\1\1a\xC0"s + place},
        {"name beyond the answer", "\0\4\0\1\xFF\xFF"s},
        {"label beyond the answer", "\0\4\0\1\x3Fx"s},
        {"unknown kind of label", "\0\4\0\1\x80x"s},
        {"no name", "\0\2\0\1"s},
        {"no preference", "\0\1\0"s},
        {"nothing", "\0\0"s},
        {"length beyond the answer", "\xFF\xFF\0\1\0"s},
    };
    for (const auto& c : cases) {
        std::vector<Record> records;
        EXPECT_FALSE(Parse(one + c.data, records)) << c.what;
    }
    std::vector<Record> records;
    EXPECT_TRUE(Parse(one + "\0\5\0\1\1a\0"s, records));
}

TEST(DnsQuery, AsksForPlainNamesOnly) {
    const std::u16string longLabel(64, u'a');
    for (const char16_t* name : {u"", u"a..test", u"m\u00FCller.test", u"a b.test", u"a\\046b.test",
                                 u"a\r\nb.test", u".test", longLabel.c_str()}) {
        PDNS_RECORD records = reinterpret_cast<PDNS_RECORD>(&name);
        const DNS_STATUS status =
            DnsQuery_W(name, DNS_TYPE_MX, DNS_QUERY_STANDARD, nullptr, &records, nullptr);
        EXPECT_EQ(status, DNS_ERROR_INVALID_NAME_CHAR) << std::string(name, name + 1);
        EXPECT_EQ(records, nullptr);
    }
}

TEST(FormatMessage, HasTheTextsOfDnsFailures) {
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    WCHAR text[64];
    const DWORD length =
        FormatMessageW(flags, nullptr, DNS_INFO_NO_RECORDS,
                       MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, 64, nullptr);
    EXPECT_EQ(std::u16string(text, length), u"No records found for given DNS query.\r\n");
    EXPECT_EQ(text[length], u'\0');
    EXPECT_EQ(FormatMessageW(flags, nullptr, DNS_INFO_NO_RECORDS, 0, text, length, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(FormatMessageW(flags, nullptr, 9999, 0, text, 64, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MR_MID_NOT_FOUND));
}

}  // namespace
