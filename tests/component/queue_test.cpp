// The queue: numbers, statuses, outcomes, cancelling, workers, and the end of the object.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <vector>

#include "tests/component/async_client.h"
#include "tests/servers/mail_peer.h"

namespace quorvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::MailPeer;

class Queue : public ::testing::Test {
protected:
    MailPeer peer;
    AsyncClient client{peer.port()};

    std::vector<std::string> AcceptedSenders() {
        std::vector<std::string> senders;
        for (const MailPeer::Message& message : peer.accepted()) senders.push_back(message.sender);
        return senders;
    }
};

TEST_F(Queue, KeepsStatusAndOutcomeUnderEachNumber) {
    client.mail->put_MaxThreads(3);
    EXPECT_EQ(client.QueueSize(), 0);
    const LONG held = client.Send(OLESTR("hold-1@x"));
    EXPECT_EQ(held, 1);
    EXPECT_EQ(client.Code(held), -1) << "until the send has ended";
    LONG number = 77;
    const auto unsendable = New<CMailMessage, IMailMessage>();
    EXPECT_EQ(client.mail->SendAsync(unsendable.Get(), VARIANT_TRUE, &number), E_INVALIDARG);
    EXPECT_EQ(TakeErrorText(), "Sender address can't be empty");
    EXPECT_EQ(number, 77);
    EXPECT_EQ(client.Send(OLESTR("refuse-2@x")), 2) << "a message that was refused has no number";
    EXPECT_EQ(client.Send(OLESTR("reset-3@x")), 3);
    EXPECT_EQ(client.Send(OLESTR("ok-4@x")), 4);

    ASSERT_TRUE(Eventually([&] { return client.QueueSize() == 1; }));
    EXPECT_EQ(client.Status(1), MailStatusSending);
    EXPECT_EQ(client.Code(1), -1);
    EXPECT_EQ(client.Status(2), MailStatusFailed);
    EXPECT_EQ(client.Code(2), 550);
    EXPECT_EQ(client.Text(2), "550 nobody of that name");
    EXPECT_EQ(client.Status(3), MailStatusFailed);
    EXPECT_EQ(client.Code(3), -1);
    EXPECT_THAT(client.Text(3), HasSubstr("127.0.0.1"));
    EXPECT_EQ(client.Status(4), MailStatusSent);
    EXPECT_EQ(client.Code(4), 0);
    EXPECT_EQ(client.Text(4), "");

    peer.Open();
    ASSERT_TRUE(client.WaitForStatus(1, MailStatusSent));
    EXPECT_EQ(client.QueueSize(), 0);
    EXPECT_THAT(AcceptedSenders(), ElementsAre("ok-4@x", "hold-1@x"));
}

TEST_F(Queue, RefusesWrongUse) {
    LONG number = 77;
    const auto message = AsyncClient::Message(OLESTR("ok@x"));
    EXPECT_EQ(client.mail->SendAsync(nullptr, VARIANT_TRUE, &number), E_INVALIDARG);
    EXPECT_EQ(client.mail->SendAsync(message.Get(), VARIANT_TRUE, nullptr), E_INVALIDARG);
    EXPECT_EQ(client.mail->GetStatus(1, nullptr), E_INVALIDARG);
    EXPECT_EQ(client.mail->GetErrorCode(1, nullptr), E_INVALIDARG);
    EXPECT_EQ(client.mail->GetErrorDescription(1, nullptr), E_INVALIDARG);
    EXPECT_EQ(client.mail->GetQueueSize(nullptr), E_INVALIDARG);
    EXPECT_EQ(TakeErrorText(), "-") << "null pointers need no words";

    const auto address = New<CMailAddress, IMailAddress>();
    auto* const foreign = reinterpret_cast<IMailMessage*>(address.Get());
    EXPECT_EQ(client.mail->SendAsync(foreign, VARIANT_TRUE, &number), E_FAIL);
    EXPECT_EQ(TakeErrorText(), "Quorvane internal error 973!");
    client.mail->put_SmtpServer(nullptr);
    const auto unsendable = New<CMailMessage, IMailMessage>();
    EXPECT_EQ(client.mail->SendAsync(unsendable.Get(), VARIANT_TRUE, &number), E_INVALIDARG);
    EXPECT_EQ(TakeErrorText(),
              "SmtpServer property can't be empty if useSmtpServer parameter is true")
        << "comes before the look at the message";
    EXPECT_EQ(number, 77);

    MailStatus status;
    BstrHolder text;
    const std::function<HRESULT(LONG)> calls[] = {
        [&](LONG unknown) { return client.mail->GetStatus(unknown, &status); },
        [&](LONG unknown) { return client.mail->GetErrorCode(unknown, &number); },
        [&](LONG unknown) { return client.mail->GetErrorDescription(unknown, text.Receive()); },
        [&](LONG unknown) { return client.mail->Cancel(unknown); }};
    for (const LONG unknown : {0, -1, 1, 1000}) {
        for (const auto& call : calls) {
            EXPECT_EQ(call(unknown), E_INVALIDARG);
            EXPECT_EQ(TakeErrorText(), "Invalid message number");
        }
    }
}

TEST_F(Queue, CancelsInEveryStatus) {
    client.mail->put_MaxThreads(1);
    const LONG sent = client.Send(OLESTR("ok-1@x"));
    ASSERT_TRUE(client.WaitForStatus(sent, MailStatusSent));
    const LONG failed = client.Send(OLESTR("refuse-2@x"));
    ASSERT_TRUE(client.WaitForStatus(failed, MailStatusFailed));
    const LONG sending = client.Send(OLESTR("hold-3@x"));
    ASSERT_TRUE(peer.WaitForStuck(1));
    const LONG queued = client.Send(OLESTR("ok-4@x"));
    EXPECT_EQ(client.QueueSize(), 2);

    EXPECT_EQ(client.mail->Cancel(queued), S_OK);
    EXPECT_EQ(client.Status(queued), MailStatusCanceled) << "at once";
    EXPECT_EQ(client.Code(queued), -1);
    EXPECT_EQ(client.mail->Cancel(sending), S_OK);
    EXPECT_TRUE(client.WaitForStatus(sending, MailStatusCanceled));
    for (const LONG number : {sent, failed, sending, queued}) {
        EXPECT_EQ(client.mail->Cancel(number), S_OK) << "changes nothing any more";
    }
    ASSERT_TRUE(Eventually([&] { return client.Code(sending) == -2; }));
    EXPECT_EQ(client.Text(sending), "");
    EXPECT_EQ(client.Status(sent), MailStatusSent);
    EXPECT_EQ(client.Status(failed), MailStatusFailed);
    EXPECT_EQ(client.QueueSize(), 0);
    EXPECT_EQ(client.Send(OLESTR("ok-5@x")), 5);
    EXPECT_TRUE(client.WaitForStatus(5, MailStatusSent)) << "the worker goes on";
    EXPECT_THAT(AcceptedSenders(), ElementsAre("ok-1@x", "ok-5@x"));
}

TEST_F(Queue, CancelsMessagesWhosePeerFellSilent) {
    constexpr std::size_t kMoreThanSocketsHold = 12 << 20;
    client.mail->put_MaxThreads(4);
    client.Send(OLESTR("silent@x"));
    client.Send(OLESTR("stall@x"), kMoreThanSocketsHold);
    client.Send(OLESTR("hold@x"));
    ASSERT_TRUE(peer.WaitForStuck(3));
    // Waits for its next attempt to connect, of which there are enough for a day.
    const testing::LoopbackListener refusing(false);
    client.mail->put_SmtpPort(ntohs(refusing.port()));
    client.mail->put_ConnectAttempts(50000);
    const LONG connecting = client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(client.WaitForStatus(connecting, MailStatusSending));

    EXPECT_EQ(client.mail->CancelAll(), S_OK);
    for (LONG number = 1; number <= connecting; ++number) {
        EXPECT_TRUE(client.WaitForStatus(number, MailStatusCanceled)) << number;
    }
    EXPECT_TRUE(Eventually([&] { return client.Code(connecting) == -2; }));
    EXPECT_THAT(peer.accepted(), IsEmpty());
}

TEST_F(Queue, OneWorkerTakesTheLowestNumberFirst) {
    client.mail->put_MaxThreads(1);
    for (const WideView sender :
         {OLESTR("hold-1@x"), OLESTR("ok-2@x"), OLESTR("ok-3@x"), OLESTR("ok-4@x")}) {
        client.Send(sender);
    }
    ASSERT_TRUE(peer.WaitForStuck(1));
    client.mail->Cancel(3);
    peer.Open();
    ASSERT_TRUE(peer.WaitForAccepted(3));
    EXPECT_THAT(AcceptedSenders(), ElementsAre("hold-1@x", "ok-2@x", "ok-4@x"));
}

TEST_F(Queue, HasAsManyWorkersAsItMay) {
    LONG threads = 0;
    for (const LONG wrong : {LONG{0}, LONG{-1}, std::numeric_limits<LONG>::min()}) {
        EXPECT_EQ(client.mail->put_MaxThreads(wrong), S_OK);
        EXPECT_EQ(client.mail->get_MaxThreads(&threads), S_OK);
        EXPECT_EQ(threads, 1);
    }
    client.mail->put_MaxThreads(2);
    for (int message = 0; message < 20; ++message) client.Send(OLESTR("hold@x"));
    ASSERT_TRUE(peer.WaitForStuck(2));
    EXPECT_EQ(client.QueueSize(), 20);
    client.mail->put_MaxThreads(7);
    ASSERT_TRUE(peer.WaitForStuck(7)) << "those that are missing start at once";
    EXPECT_EQ(peer.mostAtATime(), 7);
    client.mail->put_MaxThreads(1000);
    ASSERT_TRUE(peer.WaitForStuck(20)) << "the rest, too";
    peer.Open();
    EXPECT_TRUE(Eventually([&] { return client.QueueSize() == 0; }));
    EXPECT_EQ(peer.acceptedBySender()["hold@x"], 20);
}

// Each worker has one session for all its messages, and a setting that is empty or off leaves it
// what it was.
TEST_F(Queue, SettingsCountFromTheNextMessageOn) {
    client.mail->put_MaxThreads(1);
    client.Send(OLESTR("hold-1@x"));
    ASSERT_TRUE(peer.WaitForStuck(1));
    client.mail->put_SenderHostname(Bstr(OLESTR("second.test")));
    client.Send(OLESTR("ok-2@x"));
    peer.Open();
    ASSERT_TRUE(client.WaitForStatus(2, MailStatusSent));
    client.mail->put_SenderHostname(nullptr);
    client.Send(OLESTR("ok-3@x"));
    ASSERT_TRUE(client.WaitForStatus(3, MailStatusSent));
    const std::vector<MailPeer::Message> accepted = peer.accepted();
    ASSERT_EQ(accepted.size(), 3u);
    EXPECT_EQ(accepted[0].helo, "client.test");
    EXPECT_EQ(accepted[1].helo, "second.test");
    EXPECT_EQ(accepted[2].helo, "second.test");
}

TEST_F(Queue, CopiesTheMessage) {
    client.mail->put_MaxThreads(1);
    client.Send(OLESTR("hold-1@x"));
    auto message = AsyncClient::Message(OLESTR("ok-2@x"));
    LONG number = 0;
    EXPECT_EQ(client.mail->SendAsync(message.Get(), 1, &number), S_OK) << "any non-zero is true";
    message->ClearRecipients();
    message->put_MessageBodyFile(Bstr(OLESTR("/no/such/file")));
    message.Reset();
    peer.Open();
    EXPECT_TRUE(client.WaitForStatus(number, MailStatusSent));
}

TEST_F(Queue, WhatIsBeingSentGoesOutWhenTheObjectIsReleased) {
    client.mail->put_MaxThreads(2);
    client.Send(OLESTR("hold-1@x"));
    client.Send(OLESTR("hold-2@x"));
    ASSERT_TRUE(peer.WaitForStuck(2));
    client.Send(OLESTR("ok-3@x"));
    client.mail.Reset();
    EXPECT_FALSE(ModuleCanUnload()) << "while its threads run";
    peer.Open();
    ASSERT_TRUE(peer.WaitForAccepted(2));
    EXPECT_TRUE(Eventually(ModuleCanUnload));
    // The third one goes along if a worker came to it while another one was still sending.
    EXPECT_EQ(peer.acceptedBySender()["hold-1@x"], 1);
    EXPECT_EQ(peer.acceptedBySender()["hold-2@x"], 1);
}

TEST_F(Queue, WhatIsQueuedIsCancelledWhenTheObjectIsReleased) {
    const testing::LoopbackListener refusing(false);
    AsyncClient other(ntohs(refusing.port()));
    other.mail->put_MaxThreads(1);
    for (int message = 0; message < 1000; ++message) other.Send(OLESTR("ok@x"));
    other.mail.Reset();
    client.mail.Reset();
    EXPECT_TRUE(Eventually(ModuleCanUnload)) << "long before a thousand messages have failed";
}

TEST(TraceFile, GoesWhenAnObjectIsMade) {
    const bool hasDrives = std::filesystem::exists("C:/");
    const std::filesystem::path file = hasDrives ? "C:/QuorvaneTrace.txt" : "/QuorvaneTrace.txt";
    if (!(std::ofstream(file) << "old")) GTEST_SKIP() << "the root folder can't be written to";
    New<CSmtpMail, ISmtpMail>();
    EXPECT_FALSE(std::filesystem::exists(file));
    // What can't be deleted is no hindrance.
    std::filesystem::create_directory(file);
    EXPECT_TRUE((New<CSmtpMail, ISmtpMail>()));
    EXPECT_TRUE(std::filesystem::remove(file));
}

}  // namespace
}  // namespace quorvane
