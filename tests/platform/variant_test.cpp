// Purpose: variants own their text and their objects, copies and conversions don't lose or double
// anything, and conversions have the results and errors that callers go by.
#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/platform/counted_object.h"

namespace {

using Text = std::basic_string<OLECHAR>;

// A variant that is cleared at the end.
class Value {
public:
    Value() { VariantInit(&variant_); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(&variant_); }

    VARIANT* operator->() { return &variant_; }
    VARIANT* get() { return &variant_; }

    void SetText(const Text& text) {
        variant_.vt = VT_BSTR;
        variant_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    void SetObject(CountedObject& object, VARTYPE type) {
        variant_.vt = type;
        variant_.pdispVal = &object;
        object.AddRef();
    }
    Text text() const { return {variant_.bstrVal, SysStringLen(variant_.bstrVal)}; }

private:
    VARIANT variant_;
};

TEST(Variant, ClearingReleasesWhatItOwns) {
    CountedObject object;
    for (const VARTYPE type : {VT_DISPATCH, VT_UNKNOWN}) {
        Value value;
        value.SetObject(object, type);
        EXPECT_EQ(object.references(), 1);
        EXPECT_EQ(VariantClear(value.get()), S_OK);
        EXPECT_EQ(object.references(), 0);
        EXPECT_EQ(value->vt, VT_EMPTY);
    }
}

TEST(Variant, ClearingLeavesReferencesAlone) {
    CountedObject object;
    object.AddRef();
    IDispatch* pointer = &object;
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BYREF | VT_DISPATCH;
    value.ppdispVal = &pointer;
    EXPECT_EQ(VariantClear(&value), S_OK);
    EXPECT_EQ(object.references(), 1);
    EXPECT_EQ(pointer, &object);
    EXPECT_EQ(value.vt, VT_EMPTY);
}

TEST(Variant, ClearingRefusesATypeThatThereIsNot) {
    VARIANT value;
    VariantInit(&value);
    value.vt = 77;
    EXPECT_EQ(VariantClear(&value), DISP_E_BADVARTYPE);
}

TEST(Variant, CopyOwnsItsOwn) {
    Value source;
    source.SetText(Text(OLESTR("a\0b"), 3));
    Value copy;
    copy.SetText(OLESTR("old"));
    ASSERT_EQ(VariantCopy(copy.get(), source.get()), S_OK);
    EXPECT_NE(copy->bstrVal, source->bstrVal);
    EXPECT_EQ(copy.text(), source.text());

    CountedObject object;
    Value holder;
    holder.SetObject(object, VT_DISPATCH);
    ASSERT_EQ(VariantCopy(copy.get(), holder.get()), S_OK);
    EXPECT_EQ(object.references(), 2);
    ASSERT_EQ(VariantCopy(copy.get(), copy.get()), S_OK);
    EXPECT_EQ(object.references(), 2);
    ASSERT_EQ(VariantCopy(copy.get(), source.get()), S_OK);
    EXPECT_EQ(object.references(), 1);
}

TEST(Variant, CopyOfANullTextIsEmptyAndOfANullObjectNull) {
    Value source;
    source->vt = VT_BSTR;
    source->bstrVal = nullptr;
    Value copy;
    ASSERT_EQ(VariantCopy(copy.get(), source.get()), S_OK);
    EXPECT_EQ(copy->vt, VT_BSTR);
    ASSERT_NE(copy->bstrVal, nullptr);
    EXPECT_EQ(copy.text(), OLESTR(""));
    source->vt = VT_DISPATCH;
    source->pdispVal = nullptr;
    ASSERT_EQ(VariantCopy(copy.get(), source.get()), S_OK);
    EXPECT_EQ(copy->pdispVal, nullptr);
}

TEST(Variant, CopyIndFollowsReferences) {
    Value text;
    text.SetText(OLESTR("text"));
    Value number;
    number->vt = VT_I4;
    number->lVal = 7;
    LONG place = 42;
    Value inner;
    inner->vt = VT_BYREF | VT_I4;
    inner->plVal = &place;

    Value reference;
    reference->vt = VT_BYREF | VT_VARIANT;
    reference->pvarVal = text.get();
    Value copy;
    ASSERT_EQ(VariantCopyInd(copy.get(), reference.get()), S_OK);
    EXPECT_EQ(copy->vt, VT_BSTR);
    EXPECT_NE(copy->bstrVal, text->bstrVal);

    reference->pvarVal = inner.get();
    ASSERT_EQ(VariantCopyInd(copy.get(), reference.get()), S_OK);
    EXPECT_EQ(copy->vt, VT_I4);
    EXPECT_EQ(copy->lVal, 42);

    // In place: the reference becomes the value.
    ASSERT_EQ(VariantCopyInd(reference.get(), reference.get()), S_OK);
    EXPECT_EQ(reference->vt, VT_I4);
    EXPECT_EQ(reference->lVal, 42);
}

TEST(Variant, CopyIndRefusesAReferenceToAReferenceToAVariant) {
    Value number;
    VARIANT inner;
    VariantInit(&inner);
    inner.vt = VT_BYREF | VT_VARIANT;
    inner.pvarVal = number.get();
    VARIANT outer;
    VariantInit(&outer);
    outer.vt = VT_BYREF | VT_VARIANT;
    outer.pvarVal = &inner;
    Value copy;
    EXPECT_EQ(VariantCopyInd(copy.get(), &outer), E_INVALIDARG);
}

// A number or text as a table has it.
struct Sample {
    VARTYPE type;
    double number;
    const OLECHAR* text;
};

Sample Of(VARTYPE type, double number) {
    return {type, number, nullptr};
}
Sample Of(const OLECHAR* text) {
    return {VT_BSTR, 0, text};
}

void Fill(Value& value, const Sample& sample) {
    value->vt = sample.type;
    switch (sample.type) {
        case VT_UI1:
            value->bVal = static_cast<BYTE>(sample.number);
            break;
        case VT_I2:
        case VT_BOOL:
            value->iVal = static_cast<SHORT>(sample.number);
            break;
        case VT_I4:
        case VT_ERROR:
            value->lVal = static_cast<LONG>(sample.number);
            break;
        case VT_UI4:
            value->ulVal = static_cast<ULONG>(sample.number);
            break;
        case VT_R4:
            value->fltVal = static_cast<FLOAT>(sample.number);
            break;
        case VT_R8:
            value->dblVal = sample.number;
            break;
        case VT_BSTR:
            value.SetText(sample.text);
            break;
        default:
            break;
    }
}

struct Conversion {
    Sample from;
    VARTYPE type;
    HRESULT status;
    Sample to;
};

void ExpectSample(Value& value, const Sample& sample, const std::string& trace) {
    SCOPED_TRACE(trace);
    Value expected;
    Fill(expected, sample);
    ASSERT_EQ(value->vt, sample.type);
    if (sample.type == VT_BSTR) {
        EXPECT_EQ(value.text(), expected.text());
        return;
    }
    switch (sample.type) {
        case VT_UI1:
            EXPECT_EQ(value->bVal, expected->bVal);
            break;
        case VT_I2:
        case VT_BOOL:
            EXPECT_EQ(value->iVal, expected->iVal);
            break;
        case VT_R4:
            EXPECT_EQ(value->fltVal, expected->fltVal);
            break;
        case VT_R8:
            EXPECT_EQ(value->dblVal, expected->dblVal);
            break;
        default:
            EXPECT_EQ(value->lVal, expected->lVal);
    }
}

TEST(Variant, ChangesNumbersTextsAndTruthValues) {
    const Sample none = Of(VT_EMPTY, 0);
    const std::vector<Conversion> conversions = {
        {Of(VT_I2, -7), VT_I4, S_OK, Of(VT_I4, -7)},
        {Of(VT_I4, 32767), VT_I2, S_OK, Of(VT_I2, 32767)},
        {Of(VT_I4, 32768), VT_I2, DISP_E_OVERFLOW, none},
        {Of(VT_I4, 255), VT_UI1, S_OK, Of(VT_UI1, 255)},
        {Of(VT_I4, -1), VT_UI1, DISP_E_OVERFLOW, none},
        {Of(VT_UI1, 200), VT_I2, S_OK, Of(VT_I2, 200)},
        {Of(VT_EMPTY, 0), VT_I4, S_OK, Of(VT_I4, 0)},
        // Halves go to the even neighbour.
        {Of(VT_R8, 2.5), VT_I4, S_OK, Of(VT_I4, 2)},
        {Of(VT_R8, 3.5), VT_I4, S_OK, Of(VT_I4, 4)},
        {Of(VT_R8, -2.5), VT_I4, S_OK, Of(VT_I4, -2)},
        {Of(VT_R8, 2147483647.4), VT_I4, S_OK, Of(VT_I4, 2147483647)},
        {Of(VT_R8, 2147483648.0), VT_I4, DISP_E_OVERFLOW, none},
        {Of(VT_R8, -2147483649.0), VT_I4, DISP_E_OVERFLOW, none},
        {Of(VT_R8, 1e300), VT_R4, DISP_E_OVERFLOW, none},
        {Of(VT_R4, 0.5), VT_R8, S_OK, Of(VT_R8, 0.5)},
        {Of(VT_BOOL, -1), VT_I4, S_OK, Of(VT_I4, -1)},
        {Of(VT_BOOL, -1), VT_UI1, S_OK, Of(VT_UI1, 255)},
        {Of(VT_BOOL, -1), VT_R8, S_OK, Of(VT_R8, -1)},
        {Of(VT_I4, 5), VT_BOOL, S_OK, Of(VT_BOOL, -1)},
        {Of(VT_R8, 0.25), VT_BOOL, S_OK, Of(VT_BOOL, -1)},
        {Of(VT_R8, 0), VT_BOOL, S_OK, Of(VT_BOOL, 0)},
        {Of(OLESTR("25")), VT_I4, S_OK, Of(VT_I4, 25)},
        {Of(OLESTR(" -25 ")), VT_I4, S_OK, Of(VT_I4, -25)},
        {Of(OLESTR("+3")), VT_I2, S_OK, Of(VT_I2, 3)},
        {Of(OLESTR("2.5")), VT_I4, S_OK, Of(VT_I4, 2)},
        {Of(OLESTR("1.5e2")), VT_R8, S_OK, Of(VT_R8, 150)},
        {Of(OLESTR("99999999999")), VT_I4, DISP_E_OVERFLOW, none},
        {Of(OLESTR("")), VT_I4, DISP_E_TYPEMISMATCH, none},
        {Of(OLESTR("x")), VT_I4, DISP_E_TYPEMISMATCH, none},
        {Of(OLESTR("12x")), VT_I4, DISP_E_TYPEMISMATCH, none},
        {Of(OLESTR("nan")), VT_R8, DISP_E_TYPEMISMATCH, none},
        {Of(OLESTR("True")), VT_BOOL, S_OK, Of(VT_BOOL, -1)},
        {Of(OLESTR("false")), VT_BOOL, S_OK, Of(VT_BOOL, 0)},
        {Of(OLESTR("1")), VT_BOOL, S_OK, Of(VT_BOOL, -1)},
        {Of(OLESTR("yes")), VT_BOOL, DISP_E_TYPEMISMATCH, none},
        {Of(VT_I4, -25), VT_BSTR, S_OK, Of(OLESTR("-25"))},
        {Of(VT_UI4, 4294967295.0), VT_BSTR, S_OK, Of(OLESTR("4294967295"))},
        {Of(VT_R8, 0.1), VT_BSTR, S_OK, Of(OLESTR("0.1"))},
        {Of(VT_R8, -2.5), VT_BSTR, S_OK, Of(OLESTR("-2.5"))},
        {Of(VT_R8, 1e20), VT_BSTR, S_OK, Of(OLESTR("1E+20"))},
        {Of(VT_R8, 0), VT_BSTR, S_OK, Of(OLESTR("0"))},
        {Of(VT_R4, 0.1), VT_BSTR, S_OK, Of(OLESTR("0.1"))},
        {Of(VT_BOOL, -1), VT_BSTR, S_OK, Of(OLESTR("-1"))},
        {Of(VT_BOOL, 0), VT_BSTR, S_OK, Of(OLESTR("0"))},
        {Of(VT_EMPTY, 0), VT_BSTR, S_OK, Of(OLESTR(""))},
        {Of(VT_NULL, 0), VT_BSTR, DISP_E_TYPEMISMATCH, none},
        {Of(VT_NULL, 0), VT_I4, DISP_E_TYPEMISMATCH, none},
        {Of(VT_ERROR, 5), VT_I4, DISP_E_TYPEMISMATCH, none},
        {Of(VT_ERROR, 5), VT_BSTR, DISP_E_TYPEMISMATCH, none},
        {Of(VT_I4, 5), VT_DISPATCH, DISP_E_TYPEMISMATCH, none},
        {Of(VT_I4, 5), 77, DISP_E_BADVARTYPE, none},
    };
    for (std::size_t i = 0; i < conversions.size(); ++i) {
        const Conversion& conversion = conversions[i];
        const std::string trace = "conversion " + std::to_string(i);
        Value from;
        Fill(from, conversion.from);
        Value to;
        to->vt = VT_I4;
        to->lVal = 1234;
        EXPECT_EQ(
            VariantChangeTypeEx(to.get(), from.get(), LOCALE_USER_DEFAULT, 0, conversion.type),
            conversion.status)
            << trace;
        // A failure leaves the destination as it was.
        ExpectSample(to, SUCCEEDED(conversion.status) ? conversion.to : Of(VT_I4, 1234), trace);
        // The source may be the destination.
        if (FAILED(conversion.status)) continue;
        EXPECT_EQ(
            VariantChangeTypeEx(from.get(), from.get(), LOCALE_USER_DEFAULT, 0, conversion.type),
            S_OK)
            << trace;
        ExpectSample(from, conversion.to, trace + ", in place");
    }
}

TEST(Variant, SpellsTruthValuesWhenAsked) {
    Value value;
    value->vt = VT_BOOL;
    value->boolVal = VARIANT_TRUE;
    ASSERT_EQ(VariantChangeType(value.get(), value.get(), VARIANT_ALPHABOOL, VT_BSTR), S_OK);
    EXPECT_EQ(value.text(), OLESTR("True"));
}

TEST(Variant, ChangesWhatAReferenceRefersTo) {
    Value text;
    text.SetText(OLESTR("12"));
    Value reference;
    reference->vt = VT_BYREF | VT_VARIANT;
    reference->pvarVal = text.get();
    Value number;
    ASSERT_EQ(VariantChangeType(number.get(), reference.get(), 0, VT_I4), S_OK);
    EXPECT_EQ(number->lVal, 12);
    EXPECT_EQ(text.text(), OLESTR("12"));

    VARIANT_BOOL truth = VARIANT_TRUE;
    reference->vt = VT_BYREF | VT_BOOL;
    reference->pboolVal = &truth;
    ASSERT_EQ(VariantChangeType(number.get(), reference.get(), 0, VT_I2), S_OK);
    EXPECT_EQ(number->iVal, -1);
}

TEST(Variant, ChangesBetweenKindsOfObject) {
    CountedObject object;
    CountedObject plain(false);
    Value source;
    source.SetObject(object, VT_DISPATCH);
    Value result;
    ASSERT_EQ(VariantChangeType(result.get(), source.get(), 0, VT_UNKNOWN), S_OK);
    EXPECT_EQ(result->vt, VT_UNKNOWN);
    EXPECT_EQ(object.references(), 2);
    ASSERT_EQ(VariantChangeType(result.get(), result.get(), 0, VT_DISPATCH), S_OK);
    EXPECT_EQ(result->vt, VT_DISPATCH);
    EXPECT_EQ(object.references(), 2);
    VariantClear(source.get());
    source.SetObject(plain, VT_UNKNOWN);
    EXPECT_TRUE(FAILED(VariantChangeType(result.get(), source.get(), 0, VT_DISPATCH)));
    EXPECT_EQ(plain.references(), 1);
    VariantClear(source.get());
    VariantClear(result.get());
    EXPECT_EQ(object.references(), 0);
    EXPECT_EQ(plain.references(), 0);
}

}  // namespace
