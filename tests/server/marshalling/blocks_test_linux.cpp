// What the proxies of the stand-in, which know nothing of an interface but IDispatch, can't carry.
#include <gtest/gtest.h>

#include "Quorvane.h"
#include "tests/server/marshalling/remote.h"

namespace quorvane::testing {
namespace {

TEST(LateBoundProxies, RefuseBlocksWhoseSizeTheyDoNotKnow) {
    const Apartment apartment;
    PumpingThread home;
    const Remote attachment(home, CLSID_MailAttachment, IID_IMailAttachment);
    unsigned char block[64] = {};
    VARIANT byReference{};
    byReference.vt = VT_BYREF | VT_UI1;
    byReference.pbVal = block;
    VARIANT size{};
    size.vt = VT_I4;
    size.lVal = sizeof block;
    Value none;
    EXPECT_EQ(attachment.Call(Way::kDispatch, OLESTR("LoadFromMemory"), DISPATCH_METHOD, {},
                              {byReference, size}, none),
              DISP_E_TYPEMISMATCH);
}

}  // namespace
}  // namespace quorvane::testing
