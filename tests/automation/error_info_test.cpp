#include "automation/error_info.h"

#include <gtest/gtest.h>

#include <thread>

#include "Quorvane.h"
#include "automation/com_ptr.h"
#include "automation/wide_string.h"

namespace quorvane {
namespace {

// The description of this thread's error information, which reading removes; "-" when none is set.
WideString TakeDescription(IID* iid = nullptr) {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) != S_OK) return OLESTR("-");
    if (iid) info->GetGUID(iid);
    BstrHolder description;
    info->GetDescription(description.Receive());
    return FromBstr(description.Get());
}

TEST(ReportComError, InstallsTheTextForThisThread) {
    IID iid{};
    EXPECT_EQ(ReportComError(CLSID_SmtpMail, OLESTR("Some text"), 0, nullptr, IID_ISmtpMail,
                             E_INVALIDARG),
              E_INVALIDARG);
    std::thread([] { EXPECT_EQ(TakeDescription(), OLESTR("-")); }).join();
    EXPECT_EQ(TakeDescription(&iid), OLESTR("Some text"));
    EXPECT_TRUE(iid == IID_ISmtpMail);
    EXPECT_EQ(TakeDescription(), OLESTR("-")) << "reading removes it";
}

TEST(ReportComError, SuccessBecomesAnException) {
    EXPECT_EQ(ReportComError(CLSID_SmtpMail, OLESTR("t"), 0, nullptr, IID_ISmtpMail, S_OK),
              DISP_E_EXCEPTION);
    EXPECT_EQ(TakeDescription(), OLESTR("t"));
}

TEST(ReportComError, SmallPointersAreResourceIdentifiers) {
    const auto missing = reinterpret_cast<LPCOLESTR>(static_cast<std::uintptr_t>(0xFFF0));
    EXPECT_EQ(ReportComError(CLSID_SmtpMail, missing, 0, nullptr, IID_ISmtpMail, E_FAIL), E_FAIL);
    EXPECT_EQ(TakeDescription(), OLESTR("Unknown Error"));
}

TEST(ReportComError, HelpNeedsContextAndFile) {
    ComPtr<IErrorInfo> info;
    DWORD context = 1;
    ReportComError(CLSID_SmtpMail, OLESTR("t"), 7, nullptr, IID_ISmtpMail, E_FAIL);
    ASSERT_EQ(GetErrorInfo(0, info.Receive()), S_OK);
    ASSERT_EQ(info->GetHelpContext(&context), S_OK);
    EXPECT_EQ(context, 0u);
    ReportComError(CLSID_SmtpMail, OLESTR("t"), 7, OLESTR("h.chm"), IID_ISmtpMail, E_FAIL);
    ASSERT_EQ(GetErrorInfo(0, info.Receive()), S_OK);
    ASSERT_EQ(info->GetHelpContext(&context), S_OK);
    EXPECT_EQ(context, 7u);
    BstrHolder file;
    ASSERT_EQ(info->GetHelpFile(file.Receive()), S_OK);
    EXPECT_EQ(FromBstr(file.Get()), OLESTR("h.chm"));
}

}  // namespace
}  // namespace quorvane
