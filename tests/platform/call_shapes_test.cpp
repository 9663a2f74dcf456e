// Purpose: calls by type information pass every shape of argument that the component's interfaces
// have: objects, variants by value, texts and variants that the function writes.
#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

#include <Quorvane.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/counted_object.h"
#include "tests/platform/type_library.h"

namespace {

using Text = std::basic_string<OLECHAR>;

// A function of the table that is called, with the arguments that the processor has for it. The
// tables of other interfaces than the ones implemented here never come into it.
struct SenderTable;

struct Sender {
    const SenderTable* table;
    VARIANT handler;
    IMailMessage* message;
    VARIANT_BOOL useServer;
};

HRESULT STDMETHODCALLTYPE QuerySender(Sender*, REFIID, void** object) {
    *object = nullptr;
    return E_NOINTERFACE;
}
ULONG STDMETHODCALLTYPE CountSender(Sender*) {
    return 1;
}
HRESULT STDMETHODCALLTYPE SendWithText(Sender* self, IMailMessage* message, VARIANT_BOOL useServer,
                                       BSTR* errorMessage, LONG* errorCode) {
    self->message = message;
    self->useServer = useServer;
    *errorMessage = SysAllocString(OLESTR("refused"));
    *errorCode = 550;
    return S_FALSE;
}
HRESULT STDMETHODCALLTYPE SendWithVariant(Sender* self, IMailMessage* message,
                                          VARIANT_BOOL useServer, VARIANT* errorMessage,
                                          LONG* errorCode) {
    self->message = message;
    self->useServer = useServer;
    errorMessage->vt = VT_BSTR;
    errorMessage->bstrVal = SysAllocString(OLESTR("refused"));
    *errorCode = 550;
    return S_FALSE;
}
HRESULT STDMETHODCALLTYPE PutHandler(Sender* self, VARIANT handler) {
    return VariantCopy(&self->handler, &handler);
}

using AnyFunction = void (*)();
constexpr std::size_t kSlots = 46;
struct SenderTable {
    AnyFunction functions[kSlots] = {};
};

template <class Function>
AnyFunction Any(Function function) {
    return reinterpret_cast<AnyFunction>(function);
}

class CallShapesTest : public testing::Test {
protected:
    void SetUp() override {
        table_.functions[0] = Any(&QuerySender);
        table_.functions[1] = table_.functions[2] = Any(&CountSender);
        table_.functions[16] = Any(&SendWithText);
        table_.functions[26] = Any(&SendWithVariant);
        table_.functions[27] = Any(&PutHandler);
        sender_.table = &table_;
        VariantInit(&sender_.handler);
        VariantInit(&result_);
        library_ = LoadComponentTypeLibrary();
        ASSERT_NE(library_, nullptr);
        ASSERT_EQ(library_->GetTypeInfoOfGuid(__uuidof(ISmtpMail), &info_), S_OK);
    }
    void TearDown() override {
        VariantClear(&sender_.handler);
        VariantClear(&result_);
        if (info_) info_->Release();
        if (library_) library_->Release();
    }

    HRESULT Invoke(DISPID member, WORD flags, VARIANT* arguments, UINT count) {
        DISPID put = DISPID_PROPERTYPUT;
        const bool isPut = flags == DISPATCH_PROPERTYPUT;
        DISPPARAMS params = {arguments, isPut ? &put : nullptr, count, isPut ? 1u : 0u};
        badArgument_ = 99;
        return info_->Invoke(&sender_, member, flags, &params, &result_, nullptr, &badArgument_);
    }

    SenderTable table_;
    Sender sender_{};
    ITypeLib* library_ = nullptr;
    ITypeInfo* info_ = nullptr;
    VARIANT result_;
    UINT badArgument_ = 0;
};

// An object with the message's interface.
class Message : public CountedObject {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (iid != __uuidof(IMailMessage)) return CountedObject::QueryInterface(iid, object);
        *object = this;
        AddRef();
        return S_OK;
    }
};

VARIANT Object(VARTYPE type, IDispatch* object) {
    VARIANT value;
    VariantInit(&value);
    value.vt = type;
    value.pdispVal = object;
    return value;
}

VARIANT Truth(bool value) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_BOOL;
    variant.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
}

TEST_F(CallShapesTest, WritesTextsWhereTheCallerPoints) {
    Message message;
    BSTR errorMessage = nullptr;
    VARIANT place;
    VariantInit(&place);
    place.vt = VT_BYREF | VT_BSTR;
    place.pbstrVal = &errorMessage;
    VARIANT arguments[] = {place, Truth(true), Object(VT_DISPATCH, &message)};
    ASSERT_EQ(Invoke(6, DISPATCH_METHOD, arguments, 3), S_OK);
    EXPECT_EQ(sender_.message, reinterpret_cast<IMailMessage*>(&message));
    EXPECT_EQ(sender_.useServer, VARIANT_TRUE);
    EXPECT_EQ(Text(errorMessage), OLESTR("refused"));
    EXPECT_EQ(result_.vt, VT_I4);
    EXPECT_EQ(result_.lVal, 550);
    EXPECT_EQ(message.references(), 0);
    SysFreeString(errorMessage);
}

TEST_F(CallShapesTest, WritesVariantsWhereTheCallerPoints) {
    Message message;
    VARIANT errorMessage;
    VariantInit(&errorMessage);
    VARIANT place;
    VariantInit(&place);
    place.vt = VT_BYREF | VT_VARIANT;
    place.pvarVal = &errorMessage;
    VARIANT arguments[] = {place, Truth(false), Object(VT_DISPATCH, &message)};
    ASSERT_EQ(Invoke(16, DISPATCH_METHOD, arguments, 3), S_OK);
    EXPECT_EQ(sender_.useServer, VARIANT_FALSE);
    ASSERT_EQ(errorMessage.vt, VT_BSTR);
    EXPECT_EQ(Text(errorMessage.bstrVal), OLESTR("refused"));
    EXPECT_EQ(result_.lVal, 550);
    VariantClear(&errorMessage);
}

// A caller that gives a value where the function writes doesn't get what it wrote.
TEST_F(CallShapesTest, DropsWhatNobodyHasAPlaceFor) {
    Message message;
    VARIANT empty;
    VariantInit(&empty);
    VARIANT arguments[] = {empty, Truth(true), Object(VT_DISPATCH, &message)};
    EXPECT_EQ(Invoke(16, DISPATCH_METHOD, arguments, 3), S_OK);
    EXPECT_EQ(arguments[0].vt, VT_EMPTY);
    EXPECT_EQ(result_.lVal, 550);
}

TEST_F(CallShapesTest, AsksObjectsForTheInterfaceThatIsWanted) {
    Message message;
    BSTR errorMessage = nullptr;
    VARIANT place;
    VariantInit(&place);
    place.vt = VT_BYREF | VT_BSTR;
    place.pbstrVal = &errorMessage;
    CountedObject other;
    VARIANT wrong[] = {place, Truth(true), Object(VT_DISPATCH, &other)};
    EXPECT_TRUE(FAILED(Invoke(6, DISPATCH_METHOD, wrong, 3)));
    EXPECT_EQ(sender_.message, nullptr);
    EXPECT_EQ(other.references(), 0);
    // Nothing is an object too.
    VARIANT nothing[] = {place, Truth(true), Object(VT_DISPATCH, nullptr)};
    sender_.message = reinterpret_cast<IMailMessage*>(&message);
    ASSERT_EQ(Invoke(6, DISPATCH_METHOD, nothing, 3), S_OK);
    EXPECT_EQ(sender_.message, nullptr);
    SysFreeString(errorMessage);
}

TEST_F(CallShapesTest, PassesVariantsByValue) {
    CountedObject handler;
    VARIANT arguments[] = {Object(VT_DISPATCH, &handler)};
    ASSERT_EQ(Invoke(17, DISPATCH_PROPERTYPUT, arguments, 1), S_OK);
    EXPECT_EQ(sender_.handler.vt, VT_DISPATCH);
    EXPECT_EQ(sender_.handler.pdispVal, &handler);
    EXPECT_EQ(handler.references(), 1);
    VariantInit(&arguments[0]);
    ASSERT_EQ(Invoke(17, DISPATCH_PROPERTYPUT, arguments, 1), S_OK);
    EXPECT_EQ(sender_.handler.vt, VT_EMPTY);
    EXPECT_EQ(handler.references(), 0);
}

}  // namespace
