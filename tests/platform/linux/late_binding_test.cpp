// What Windows documents of calls by type information and Wine doesn't do.
#include "tests/platform/late_binding.h"

#include <gtest/gtest.h>

namespace late_binding {
namespace {

TEST_F(LateBindingTest, NamesTheArgumentThatCannotBeConverted) {
    unsigned char byte = 1;
    VARIANT data = Arguments::Typed(VT_BYREF | VT_UI1);
    data.pbVal = &byte;
    Arguments arguments;
    arguments.Add(data).Add(OLESTR("long"));
    EXPECT_EQ(Invoke(OLESTR("LoadFromMemory"), DISPATCH_METHOD, arguments), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(badArgument_, 0u);
    Arguments second;
    second.Add(OLESTR("text")).Add(LONG{1});
    EXPECT_EQ(Invoke(OLESTR("LoadFromMemory"), DISPATCH_METHOD, second), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(badArgument_, 1u);
}

TEST_F(LateBindingTest, RefusesMoreArgumentsThanThereAreParameters) {
    Arguments tooMany;
    tooMany.Add(LONG{1}).Add(LONG{2}).Add(LONG{3});
    EXPECT_EQ(Invoke(OLESTR("LoadFromMemory"), DISPATCH_METHOD, tooMany), DISP_E_BADPARAMCOUNT);
    Arguments one;
    one.Add(LONG{1});
    EXPECT_EQ(Invoke(OLESTR("Name"), DISPATCH_PROPERTYGET, one), DISP_E_BADPARAMCOUNT);
}

TEST_F(LateBindingTest, RefusesWhatNoVariantCanHold) {
    Arguments arguments;
    arguments.Add(LONG{1}).Add(LONG{2});
    EXPECT_EQ(Invoke(OLESTR("SaveToMemory"), DISPATCH_METHOD, arguments), DISP_E_BADVARTYPE);
}

}  // namespace
}  // namespace late_binding
