// Purpose: a call by name or number reaches the right function of an object with the right values,
// whatever the caller's types, and its outcome comes back as IDispatch callers expect it.
#include "tests/platform/late_binding.h"

#include <gtest/gtest.h>

namespace late_binding {
namespace {

TEST_F(LateBindingTest, FindsMembersAndParametersByName) {
    OLECHAR member[] = OLESTR("LOADfrommemory");
    OLECHAR size[] = OLESTR("Size");
    OLECHAR wrong[] = OLESTR("weight");
    LPOLESTR names[] = {member, size, wrong};
    DISPID ids[3] = {};
    EXPECT_EQ(info_->GetIDsOfNames(names, 2, ids), S_OK);
    EXPECT_EQ(ids[0], 8);
    EXPECT_EQ(ids[1], 1);
    EXPECT_EQ(info_->GetIDsOfNames(names, 3, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], 8);
    EXPECT_EQ(ids[2], DISPID_UNKNOWN);
    names[0] = wrong;
    EXPECT_EQ(info_->GetIDsOfNames(names, 1, ids), DISP_E_UNKNOWNNAME);
}

TEST_F(LateBindingTest, PutsAndGetsProperties) {
    EXPECT_EQ(Put(OLESTR("Name"), OLESTR("a.txt")), S_OK);
    EXPECT_EQ(attachment_.name, OLESTR("a.txt"));
    ASSERT_EQ(Get(OLESTR("Name")), S_OK);
    ASSERT_EQ(result_.vt, VT_BSTR);
    EXPECT_EQ(Text(result_.bstrVal), OLESTR("a.txt"));

    EXPECT_EQ(Put(OLESTR("Encoding"), LONG{MailEncodingBase64}), S_OK);
    EXPECT_EQ(attachment_.encoding, MailEncodingBase64);
    ASSERT_EQ(Get(OLESTR("Encoding")), S_OK);
    EXPECT_EQ(result_.vt, VT_I4);
    EXPECT_EQ(result_.lVal, MailEncodingBase64);

    attachment_.isInline = VARIANT_TRUE;
    ASSERT_EQ(Get(OLESTR("Inline")), S_OK);
    EXPECT_EQ(result_.vt, VT_BOOL);
    EXPECT_EQ(result_.boolVal, VARIANT_TRUE);

    ASSERT_EQ(Get(OLESTR("ContentType")), S_OK);
    EXPECT_EQ(result_.vt, VT_BSTR);
    EXPECT_EQ(SysStringLen(result_.bstrVal), 0u);
}

TEST_F(LateBindingTest, ConvertsArguments) {
    EXPECT_EQ(Put(OLESTR("Encoding"), OLESTR("3")), S_OK);
    EXPECT_EQ(attachment_.encoding, MailEncodingQuotedPrintable);
    VARIANT real = Arguments::Typed(VT_R8);
    real.dblVal = 2.0;
    EXPECT_EQ(Put(OLESTR("Encoding"), real), S_OK);
    EXPECT_EQ(attachment_.encoding, MailEncoding8Bit);
    EXPECT_EQ(Put(OLESTR("Inline"), LONG{1}), S_OK);
    EXPECT_EQ(attachment_.isInline, VARIANT_TRUE);
    EXPECT_EQ(Put(OLESTR("Name"), LONG{-12}), S_OK);
    EXPECT_EQ(attachment_.name, OLESTR("-12"));

    // By reference, as script languages pass variables.
    VARIANT inner = Arguments::Typed(VT_BSTR);
    inner.bstrVal = SysAllocString(OLESTR("inner"));
    VARIANT reference = Arguments::Typed(VT_BYREF | VT_VARIANT);
    reference.pvarVal = &inner;
    EXPECT_EQ(Put(OLESTR("Name"), reference), S_OK);
    EXPECT_EQ(attachment_.name, OLESTR("inner"));
    EXPECT_EQ(Text(inner.bstrVal), OLESTR("inner"));
    VariantClear(&inner);
}

TEST_F(LateBindingTest, RefusesArgumentsThatCannotBeConverted) {
    EXPECT_EQ(Put(OLESTR("Encoding"), OLESTR("none")), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Put(OLESTR("Encoding"), OLESTR("99999999999")), DISP_E_OVERFLOW);
    unsigned char byte = 1;
    VARIANT data = Arguments::Typed(VT_BYREF | VT_UI1);
    data.pbVal = &byte;
    Arguments arguments;
    arguments.Add(data).Add(OLESTR("long"));
    EXPECT_EQ(Invoke(OLESTR("LoadFromMemory"), DISPATCH_METHOD, arguments), DISP_E_TYPEMISMATCH);
    EXPECT_TRUE(attachment_.loaded.empty());
}

TEST_F(LateBindingTest, PassesArgumentsInTheirOrder) {
    unsigned char bytes[] = {1, 2, 3};
    VARIANT data = Arguments::Typed(VT_BYREF | VT_UI1);
    data.pbVal = bytes;
    Arguments arguments;
    arguments.Add(data).Add(LONG{3});
    EXPECT_EQ(Invoke(OLESTR("LoadFromMemory"), DISPATCH_METHOD, arguments), S_OK);
    EXPECT_EQ(attachment_.loaded, std::vector<unsigned char>({1, 2, 3}));
    EXPECT_EQ(result_.vt, VT_EMPTY);
}

TEST_F(LateBindingTest, PassesNamedArguments) {
    unsigned char bytes[] = {4, 5};
    VARIANT data = Arguments::Typed(VT_BYREF | VT_UI1);
    data.pbVal = bytes;
    // size:=2 named, data by its place.
    Arguments arguments;
    arguments.Add(data).Add(LONG{2}).Name(1);
    EXPECT_EQ(Invoke(OLESTR("LoadFromMemory"), DISPATCH_METHOD, arguments), S_OK);
    EXPECT_EQ(attachment_.loaded, std::vector<unsigned char>({4, 5}));
}

TEST_F(LateBindingTest, RefusesCallsThatDoNotFit) {
    Arguments none;
    EXPECT_EQ(Invoke(OLESTR("LoadFromMemory"), DISPATCH_METHOD, none), DISP_E_BADPARAMCOUNT);
    Arguments unnamed;
    unnamed.Add(OLESTR("x"));
    EXPECT_EQ(Invoke(OLESTR("Name"), DISPATCH_PROPERTYPUT, unnamed), DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(Invoke(OLESTR("Name"), DISPATCH_METHOD, none), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(info_->Invoke(static_cast<IMailAttachment*>(&attachment_), 4711, DISPATCH_METHOD,
                            none.get(), nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(attachment_.name, OLESTR(""));
}

// Visual Basic can't tell a call without arguments from reading a property.
TEST_F(LateBindingTest, AcceptsAGetThatMightBeACall) {
    attachment_.name = OLESTR("n");
    Arguments none;
    ASSERT_EQ(Invoke(OLESTR("Name"), DISPATCH_METHOD | DISPATCH_PROPERTYGET, none), S_OK);
    EXPECT_EQ(Text(result_.bstrVal), OLESTR("n"));
}

TEST_F(LateBindingTest, TurnsAFailureIntoAnException) {
    ASSERT_EQ(Get(OLESTR("File")), DISP_E_EXCEPTION);
    EXPECT_EQ(exception_.scode, E_ACCESSDENIED);
    ASSERT_NE(exception_.bstrDescription, nullptr);
    EXPECT_EQ(Text(exception_.bstrDescription), OLESTR("No such file."));
    EXPECT_EQ(Text(exception_.bstrSource), OLESTR("Test.Attachment"));
    IErrorInfo* left = nullptr;
    EXPECT_EQ(GetErrorInfo(0, &left), S_FALSE);
}

TEST_F(LateBindingTest, FailsWithoutWordsWhenThereAreNone) {
    EXPECT_EQ(Put(OLESTR("ContentType"), OLESTR("x")), DISP_E_EXCEPTION);
    EXPECT_EQ(exception_.scode, E_INVALIDARG);
    EXPECT_EQ(exception_.bstrDescription, nullptr);
}

TEST_F(LateBindingTest, SucceedsWithOtherStatusesOfSuccess) {
    attachment_.status = S_FALSE;
    attachment_.name = OLESTR("n");
    EXPECT_EQ(Get(OLESTR("Name")), S_OK);
    EXPECT_EQ(result_.vt, VT_BSTR);
}

TEST_F(LateBindingTest, NeedsNoPlaceForTheResult) {
    Arguments none;
    attachment_.name = OLESTR("n");
    EXPECT_EQ(info_->Invoke(static_cast<IMailAttachment*>(&attachment_), Id(OLESTR("Name")),
                            DISPATCH_PROPERTYGET, none.get(), nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(info_->Invoke(static_cast<IMailAttachment*>(&attachment_), Id(OLESTR("File")),
                            DISPATCH_PROPERTYGET, none.get(), nullptr, nullptr, nullptr),
              DISP_E_EXCEPTION);
    SetErrorInfo(0, nullptr);
}

}  // namespace
}  // namespace late_binding
