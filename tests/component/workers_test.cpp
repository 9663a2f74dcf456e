// The workers of the queue: their pace, their number, and the session that each of them keeps.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/component/async_client.h"
#include "tests/servers/mail_peer.h"
#include "tests/servers/scripted_peer.h"

namespace quorvane {
namespace {

using testing::MailPeer;
using testing::ParseScript;
using testing::ScriptedPeer;

// A bound from below, which a busy machine can't break.
TEST(Workers, TakeOneMessageAtEachLook) {
    constexpr int kMessages = 8;
    constexpr std::chrono::milliseconds kPace{50};
    MailPeer peer;
    AsyncClient client(peer.port());
    client.mail->put_MaxThreads(1);
    const auto start = std::chrono::steady_clock::now();
    for (int message = 0; message < kMessages; ++message) client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(peer.WaitForAccepted(kMessages));
    // The first look may have been due.
    EXPECT_GE(std::chrono::steady_clock::now() - start, kPace * (kMessages - 1));
}

// The only one there may be, so that none is started for the message.
TEST(Workers, WakeForAMessage) {
    MailPeer peer;
    AsyncClient client(peer.port());
    client.mail->put_MaxThreads(1);
    for (int message = 1; message <= 3; ++message) {
        std::this_thread::sleep_for(std::chrono::milliseconds(150));  // it looks in vain
        client.Send(OLESTR("ok@x"));
        ASSERT_TRUE(peer.WaitForAccepted(message));
    }
}

TEST(Workers, StayForWhatIsQueuedWhenTheirNumberIsLowered) {
    MailPeer peer;
    AsyncClient client(peer.port());
    client.mail->put_MaxThreads(3);
    for (const WideView sender : {OLESTR("hold@x"), OLESTR("hold@x"), OLESTR("hold@x")}) {
        client.Send(sender);
    }
    ASSERT_TRUE(peer.WaitForStuck(3));
    client.mail->put_MaxThreads(1);
    for (int message = 0; message < 3; ++message) client.Send(OLESTR("silent@x"));
    peer.Open();
    EXPECT_TRUE(peer.WaitForStuck(6)) << "the same three have taken the others";
    client.mail->CancelAll();
}

// A worker's session ends each connection with QUIT, and keeps its willingness to use NTLM; the
// session of a synchronous send is its own.
TEST(Workers, KeepTheirSession) {
    const auto script = [](std::string_view authentication) {
        return ParseScript({"S: 220 mx", "C: EHLO client.test", "S: 250-mx",
                            "S: 250 AUTH NTLM LOGIN", authentication, "S: 535 no", "C: QUIT",
                            "S: 221 bye"});
    };
    constexpr std::string_view kNtlm =
        "C: AUTH NTLM TlRMTVNTUAABAAAAB7IAAAQABAAgAAAAAAAAACQAAABmcmVk";
    ScriptedPeer peer({script(kNtlm), script(kNtlm), script("C: AUTH LOGIN")},
                      testing::Delivery::Whole);
    AsyncClient client(ntohs(peer.port()));
    client.mail->put_MaxThreads(1);
    client.mail->put_SmtpUsername(Bstr(OLESTR("fred")));
    client.mail->put_SmtpPassword(Bstr(OLESTR("secret")));
    for (const VARIANT_BOOL allowed : {VARIANT_TRUE, VARIANT_FALSE}) {
        client.mail->put_SmtpSPA(allowed);
        const LONG number = client.Send(OLESTR("a@x"));
        ASSERT_TRUE(client.WaitForStatus(number, MailStatusFailed));
        EXPECT_EQ(client.Code(number), 535);
    }
    LONG code = 0;
    BstrHolder text;
    client.mail->Send(AsyncClient::Message(OLESTR("a@x")).Get(), VARIANT_TRUE, text.Receive(),
                      &code);
    EXPECT_EQ(code, 535);
    peer.Finish();
    EXPECT_THAT(peer.deviations(), ::testing::IsEmpty());
    EXPECT_EQ(peer.connections(), 3);
}

}  // namespace
}  // namespace quorvane
