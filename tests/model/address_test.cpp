#include <gtest/gtest.h>

#include "model/address_entry.h"
#include "model/mail_address.h"
#include "tests/support/com.h"

namespace quorvane {
namespace {

TEST(AddressText, SplitsIntoNameAndAddress) {
    const struct {
        const OLECHAR* text;
        const OLECHAR* name;
        const OLECHAR* address;
    } cases[] = {
        {OLESTR(""), OLESTR(""), OLESTR("")},
        {OLESTR("jd@x"), OLESTR(""), OLESTR("jd@x")},
        {OLESTR("  jd@x\t"), OLESTR(""), OLESTR("jd@x")},
        {OLESTR("John Doe <jd@x>"), OLESTR("John Doe"), OLESTR("jd@x")},
        {OLESTR("<jd@x>"), OLESTR(""), OLESTR("jd@x")},
        {OLESTR("\"Doe, John\" <jd@x>"), OLESTR("\"Doe, John\""), OLESTR("jd@x")},
        {OLESTR("John [jd@x]"), OLESTR("John"), OLESTR("jd@x")},
        {OLESTR("John [jd@x>"), OLESTR("John"), OLESTR("jd@x")},
        {OLESTR("John < jd@x >"), OLESTR("John"), OLESTR(" jd@x ")},
        {OLESTR("<>"), OLESTR(""), OLESTR("<>")},
        {OLESTR(" <> "), OLESTR(""), OLESTR("<>")},
        {OLESTR("<a>"), OLESTR(""), OLESTR("a")},
        {OLESTR(" John <jd@x "), OLESTR(""), OLESTR("John <jd@x")},
        {OLESTR("a>b<c"), OLESTR(""), OLESTR("a>b<c")},
        {OLESTR(">a<b>"), OLESTR(""), OLESTR(">a<b>")},
        {OLESTR("John <jd@x> trailing words"), OLESTR("John"), OLESTR("jd@x")},
        {OLESTR("\v\f John\r\n<jd@x>"), OLESTR("John"), OLESTR("jd@x")},
        {OLESTR("a <b [c] d> e"), OLESTR("a"), OLESTR("b [c")},
        {OLESTR(" \t\r\n"), OLESTR(""), OLESTR("")},
    };
    for (const auto& c : cases) {
        CAddressEntry entry{OLESTR("stale"), OLESTR("stale")};
        ParseAddressText(c.text, entry);
        EXPECT_EQ(Show(entry.name), Show(c.name)) << Show(c.text);
        EXPECT_EQ(Show(entry.address), Show(c.address)) << Show(c.text);
    }
}

TEST(AddressText, NameTextWinsUntrimmed) {
    const CAddressEntry boss = MakeAddressEntry(OLESTR("John <jd@x>"), OLESTR(" Boss "));
    EXPECT_EQ(boss.name, OLESTR(" Boss "));
    EXPECT_EQ(boss.address, OLESTR("jd@x"));
    EXPECT_EQ(MakeAddressEntry(OLESTR("John <jd@x>"), {}).name, OLESTR("John"));
}

TEST(MailAddress, KeepsTextsUpToTheFirstNul) {
    const auto address = New<CMailAddress, IMailAddress>();
    EXPECT_EQ(GetString(address.Get(), &IMailAddress::get_Name), OLESTR(""));
    EXPECT_EQ(GetString(address.Get(), &IMailAddress::get_Address), OLESTR(""));

    EXPECT_EQ(address->put_Address(Bstr(OLESTR("John <jd@x>"))), S_OK);
    EXPECT_EQ(GetString(address.Get(), &IMailAddress::get_Address), OLESTR("John <jd@x>"));
    EXPECT_EQ(address->put_Name(Bstr(WideView(OLESTR("ab\0cd"), 5))), S_OK);
    EXPECT_EQ(GetString(address.Get(), &IMailAddress::get_Name), OLESTR("ab"));
    EXPECT_EQ(address->put_Name(nullptr), S_OK);
    EXPECT_EQ(GetString(address.Get(), &IMailAddress::get_Name), OLESTR(""));
    EXPECT_EQ(address->get_Name(nullptr), E_INVALIDARG);
}

}  // namespace
}  // namespace quorvane
