// Purpose: a failure's texts go to the thread that failed, and to whoever asks first.
#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

// A fresh error information with that description; the caller releases it.
IErrorInfo* Make(const OLECHAR* description) {
    ICreateErrorInfo* creator = nullptr;
    EXPECT_EQ(CreateErrorInfo(&creator), S_OK);
    EXPECT_EQ(creator->SetDescription(const_cast<LPOLESTR>(description)), S_OK);
    IErrorInfo* info = nullptr;
    EXPECT_EQ(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
    creator->Release();
    return info;
}

std::basic_string<OLECHAR> Description(IErrorInfo* info) {
    BSTR text = nullptr;
    EXPECT_EQ(info->GetDescription(&text), S_OK);
    const std::basic_string<OLECHAR> copy(text ? text : OLESTR("(null)"));
    SysFreeString(text);
    return copy;
}

TEST(ErrorInfo, KeepsWhatWasSet) {
    ICreateErrorInfo* creator = nullptr;
    ASSERT_EQ(CreateErrorInfo(&creator), S_OK);
    OLECHAR source[] = OLESTR("Some.Source.1");
    OLECHAR helpFile[] = OLESTR("help.chm");
    EXPECT_EQ(creator->SetGUID(IID_IDispatch), S_OK);
    EXPECT_EQ(creator->SetSource(source), S_OK);
    EXPECT_EQ(creator->SetHelpFile(helpFile), S_OK);
    EXPECT_EQ(creator->SetHelpContext(77), S_OK);
    source[0] = 'X';  // copied, not referred to

    IErrorInfo* info = nullptr;
    ASSERT_EQ(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
    GUID guid = GUID_NULL;
    BSTR text = nullptr;
    DWORD context = 0;
    EXPECT_EQ(info->GetGUID(&guid), S_OK);
    EXPECT_EQ(guid, IID_IDispatch);
    EXPECT_EQ(info->GetSource(&text), S_OK);
    EXPECT_EQ(std::basic_string<OLECHAR>(text), OLESTR("Some.Source.1"));
    SysFreeString(text);
    EXPECT_EQ(info->GetHelpFile(&text), S_OK);
    EXPECT_EQ(std::basic_string<OLECHAR>(text), OLESTR("help.chm"));
    SysFreeString(text);
    EXPECT_EQ(info->GetHelpContext(&context), S_OK);
    EXPECT_EQ(context, 77u);
    // What wasn't set is no text, and no failure.
    EXPECT_EQ(info->GetDescription(&text), S_OK);
    EXPECT_EQ(text, nullptr);
    info->Release();
    creator->Release();
}

TEST(ErrorInfo, GoesToTheFirstWhoAsks) {
    IErrorInfo* const info = Make(OLESTR("first"));
    ASSERT_EQ(SetErrorInfo(0, info), S_OK);
    info->Release();
    IErrorInfo* taken = nullptr;
    ASSERT_EQ(GetErrorInfo(0, &taken), S_OK);
    EXPECT_EQ(Description(taken), OLESTR("first"));
    taken->Release();
    EXPECT_EQ(GetErrorInfo(0, &taken), S_FALSE);
    EXPECT_EQ(taken, nullptr);
}

TEST(ErrorInfo, BelongsToItsThread) {
    IErrorInfo* const mine = Make(OLESTR("mine"));
    SetErrorInfo(0, mine);
    mine->Release();
    std::thread([] {
        IErrorInfo* taken = nullptr;
        EXPECT_EQ(GetErrorInfo(0, &taken), S_FALSE);
        IErrorInfo* const other = Make(OLESTR("other"));
        SetErrorInfo(0, other);
        other->Release();
    }).join();
    IErrorInfo* taken = nullptr;
    ASSERT_EQ(GetErrorInfo(0, &taken), S_OK);
    EXPECT_EQ(Description(taken), OLESTR("mine"));
    taken->Release();
}

TEST(ErrorInfo, IsReplacedAndRemoved) {
    for (const OLECHAR* text : {OLESTR("old"), OLESTR("new")}) {
        IErrorInfo* const info = Make(text);
        SetErrorInfo(0, info);
        info->Release();
    }
    IErrorInfo* taken = nullptr;
    ASSERT_EQ(GetErrorInfo(0, &taken), S_OK);
    EXPECT_EQ(Description(taken), OLESTR("new"));
    SetErrorInfo(0, taken);
    taken->Release();
    EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
    EXPECT_EQ(GetErrorInfo(0, &taken), S_FALSE);
}

TEST(ErrorInfo, RefusesWrongArguments) {
    IErrorInfo* info = nullptr;
    EXPECT_EQ(CreateErrorInfo(nullptr), E_INVALIDARG);
    EXPECT_EQ(GetErrorInfo(1, &info), E_INVALIDARG);
    EXPECT_EQ(GetErrorInfo(0, nullptr), E_INVALIDARG);
    EXPECT_EQ(SetErrorInfo(1, nullptr), E_INVALIDARG);
}

}  // namespace
