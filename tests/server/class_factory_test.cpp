// What COM asks the library for: class factories, objects, and whether it may go.
#include <windows.h>
#include <olectl.h>

#include <gtest/gtest.h>

#include "Quorvane.h"
#include "automation/com_ptr.h"
#include "automation/wide_string.h"

namespace quorvane {
namespace {

class LibraryTest : public testing::Test {
protected:
    LibraryTest() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~LibraryTest() override { CoUninitialize(); }

    static ComPtr<IClassFactory> Factory(REFCLSID clsid) {
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(DllGetClassObject(clsid, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
        return factory;
    }
};

struct Served {
    const char* name;
    CLSID clsid;
    IID dual;
};

const Served kServed[] = {
    {"SmtpMail", CLSID_SmtpMail, IID_ISmtpMail},
    {"MailMessage", CLSID_MailMessage, IID_IMailMessage},
    {"MailAddress", CLSID_MailAddress, IID_IMailAddress},
    {"MailAttachment", CLSID_MailAttachment, IID_IMailAttachment},
};

// A failure that says nothing of itself doesn't get the words of an earlier one.
TEST_F(LibraryTest, LateBoundFailuresHaveTheirOwnErrorInformation) {
    constexpr DISPID kAddHeader = 18;
    ComPtr<IMailMessage> message;
    ASSERT_EQ(Factory(CLSID_MailMessage)
                  ->CreateInstance(nullptr, IID_IMailMessage, message.ReceiveVoid()),
              S_OK);
    BstrHolder text;
    ToBstr(OLESTR("no such file"), text.Receive());
    ASSERT_EQ(message->ImportHTML(text.Get()), E_FAIL);  // and nobody asks for its words
    VARIANT blank[2] = {};
    blank[0].vt = blank[1].vt = VT_BSTR;
    DISPPARAMS arguments{blank, nullptr, 2, 0};
    EXCEPINFO exception{};
    EXPECT_EQ(message->Invoke(kAddHeader, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                              &arguments, nullptr, &exception, nullptr),
              DISP_E_EXCEPTION);
    EXPECT_EQ(exception.scode, E_INVALIDARG);
    EXPECT_EQ(exception.bstrDescription, nullptr);
}

TEST_F(LibraryTest, MakesEveryClassWithItsInterfaces) {
    for (const Served& served : kServed) {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = Factory(served.clsid);
        ASSERT_TRUE(factory);
        ComPtr<IUnknown> identity;
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, identity.ReceiveVoid()), S_OK);
        for (const IID& iid : {served.dual, IID_IDispatch, IID_ISupportErrorInfo}) {
            ComPtr<IUnknown> asked;
            ASSERT_EQ(identity->QueryInterface(iid, asked.ReceiveVoid()), S_OK);
            ComPtr<IUnknown> same;
            ASSERT_EQ(asked->QueryInterface(IID_IUnknown, same.ReceiveVoid()), S_OK);
            EXPECT_EQ(same.Get(), identity.Get());
        }
        ComPtr<ISupportErrorInfo> support;
        ASSERT_EQ(identity->QueryInterface(IID_ISupportErrorInfo, support.ReceiveVoid()), S_OK);
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(served.dual), S_OK);
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
    }
}

TEST_F(LibraryTest, DescribesTheControlToItsContainers) {
    ComPtr<IProvideClassInfo> provider;
    ASSERT_EQ(Factory(CLSID_SmtpMail)
                  ->CreateInstance(nullptr, __uuidof(IProvideClassInfo), provider.ReceiveVoid()),
              S_OK);
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(provider->GetClassInfo(info.Receive()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, CLSID_SmtpMail);
    info->ReleaseTypeAttr(attributes);
    EXPECT_EQ(provider->GetClassInfo(nullptr), E_POINTER);
}

TEST_F(LibraryTest, RefusesWhatItDoesNotServe) {
    void* out = &out;
    EXPECT_EQ(DllGetClassObject(IID_ISmtpMail, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    out = &out;
    EXPECT_EQ(DllGetClassObject(CLSID_SmtpMail, IID_IDispatch, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_SmtpMail, IID_IClassFactory, nullptr), E_POINTER);

    const ComPtr<IClassFactory> factory = Factory(CLSID_MailMessage);
    out = &out;
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IUnknown, &out), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
    out = &out;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IMailAddress, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(LibraryTest, KeepsOneFactoryForEachClass) {
    EXPECT_EQ(Factory(CLSID_SmtpMail).Get(), Factory(CLSID_SmtpMail).Get());
    EXPECT_NE(Factory(CLSID_SmtpMail).Get(), Factory(CLSID_MailMessage).Get());
}

TEST_F(LibraryTest, StaysWhileAnythingOfItIsHeld) {
    ASSERT_EQ(DllCanUnloadNow(), S_OK);
    ComPtr<IClassFactory> factory = Factory(CLSID_MailMessage);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE) << "a factory is held";

    ComPtr<IMailMessage> message;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IMailMessage, message.ReceiveVoid()), S_OK);
    factory.Reset();
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE) << "an object is held";
    ComPtr<IMailAddress> sender;
    ASSERT_EQ(message->get_Sender(sender.Receive()), S_OK);
    message.Reset();
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE) << "an object that another one made is held";
    sender.Reset();
    EXPECT_EQ(DllCanUnloadNow(), S_OK);

    ASSERT_EQ(Factory(CLSID_SmtpMail)->LockServer(TRUE), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE) << "a lock is held";
    ASSERT_EQ(Factory(CLSID_SmtpMail)->LockServer(FALSE), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

}  // namespace
}  // namespace quorvane
