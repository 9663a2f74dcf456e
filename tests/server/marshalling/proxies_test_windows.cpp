// The proxies of the library itself: that COM finds them, and what only they can carry.
#include <gtest/gtest.h>

#include <numeric>

#include "Quorvane.h"
#include "tests/server/marshalling/remote.h"

namespace quorvane::testing {
namespace {

class ProxiesTest : public ::testing::Test {
protected:
    template <class Interface>
    static ComPtr<Interface> As(IUnknown* object) {
        ComPtr<Interface> found;
        EXPECT_EQ(object->QueryInterface(__uuidof(Interface), found.ReceiveVoid()), S_OK);
        return found;
    }

    template <class Interface>
    static ComPtr<Interface> Create(REFCLSID clsid) {
        ComPtr<Interface> object;
        EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                   object.ReceiveVoid()),
                  S_OK);
        return object;
    }

    Apartment apartment_;
    PumpingThread home_;
};

TEST_F(ProxiesTest, AreWhatTheSystemFindsForEachInterface) {
    for (const IID& iid :
         {IID_ISmtpMail, IID_IMailMessage, IID_IMailAddress, IID_IMailAttachment}) {
        CLSID clsid;
        EXPECT_EQ(CoGetPSClsid(iid, &clsid), S_OK);
        EXPECT_EQ(clsid, IID_IMailMessage);
        // A client that asks for the class itself gets it, and keeps the library with it.
        ComPtr<IPSFactoryBuffer> factory;
        EXPECT_EQ(CoGetClassObject(clsid, CLSCTX_INPROC_SERVER, nullptr, IID_IPSFactoryBuffer,
                                   factory.ReceiveVoid()),
                  S_OK);
        EXPECT_TRUE(factory);
    }
}

TEST_F(ProxiesTest, CarryBlocksOfMemory) {
    const Remote remote(home_, CLSID_MailAttachment, IID_IMailAttachment);
    const auto attachment = As<IMailAttachment>(remote.proxy());
    for (const LONG size : {1, 70000}) {
        std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
        std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(250));
        EXPECT_EQ(attachment->LoadFromMemory(bytes.data(), size), S_OK);
        unsigned char* data = nullptr;
        LONG back = -1;
        EXPECT_EQ(attachment->SaveToMemory(&data, &back), S_OK);
        EXPECT_EQ(back, size);
        EXPECT_TRUE(!data || std::equal(bytes.begin(), bytes.end(), data));
        CoTaskMemFree(data);
    }
}

// What the client's apartment made is read through its interface, while the client waits.
TEST_F(ProxiesTest, CallBackForTheClientsObjects) {
    const Remote remote(home_, CLSID_MailMessage, IID_IMailMessage);
    const auto message = As<IMailMessage>(remote.proxy());
    const auto address = Create<IMailAddress>(CLSID_MailAddress);
    const auto attachment = Create<IMailAttachment>(CLSID_MailAttachment);
    const Value text(L"Ann <ann@example.org>");
    unsigned char byte = 7;
    EXPECT_EQ(address->put_Address(text.value.bstrVal), S_OK);
    EXPECT_EQ(attachment->LoadFromMemory(&byte, 1), S_OK);
    EXPECT_EQ(message->put_Sender(address.Get()), S_OK);
    EXPECT_EQ(message->AddRecipient(address.Get()), S_OK);
    EXPECT_EQ(message->AddAttachment(attachment.Get()), S_OK);
    ComPtr<IMailAddress> sender;
    EXPECT_EQ(message->get_Sender(sender.Receive()), S_OK);
    BstrHolder name;
    EXPECT_EQ(sender->get_Name(name.Receive()), S_OK);
    EXPECT_EQ(FromBstr(name.Get()), L"Ann");

    // A message of another apartment is no message of this component.
    const Remote mail(home_, CLSID_SmtpMail, IID_ISmtpMail);
    BstrHolder error;
    LONG code = 0;
    const auto foreign = Create<IMailMessage>(CLSID_MailMessage);
    EXPECT_EQ(
        As<ISmtpMail>(mail.proxy())->Send(foreign.Get(), VARIANT_FALSE, error.Receive(), &code),
        E_FAIL);
}

}  // namespace
}  // namespace quorvane::testing
