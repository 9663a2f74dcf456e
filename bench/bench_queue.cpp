// What the queue costs: its table with many finished messages, its throughput by the number of
// workers, the processor time of a message beside that of a synchronous send, and doing nothing.
#include <fmt/format.h>
#include <malloc.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <vector>

#include "component/message_table.h"
#include "component/smtp_mail.h"
#include "model/mail_address.h"
#include "model/mail_message.h"
#include "tests/servers/linux/peer_process.h"

namespace quorvane {
namespace {

using Clock = std::chrono::steady_clock;

// A worker takes at most this many messages a second.
constexpr double kMessagesPerWorker = 20;
constexpr std::chrono::milliseconds kPause{50};

class Text {
public:
    explicit Text(WideView text) { ToBstr(text, text_.Receive()); }
    operator BSTR() const { return text_.Get(); }

private:
    BstrHolder text_;
};

template <class Class, class Interface>
ComPtr<Interface> New() {
    ComPtr<Interface> object;
    if (FAILED(CreateComObject<Class>(__uuidof(Interface), object.ReceiveVoid()))) std::abort();
    return object;
}

double Seconds(Clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// Nanoseconds of one call.
template <class Call>
double Cost(int calls, const Call& call) {
    const auto start = Clock::now();
    for (int index = 0; index < calls; ++index) call(index);
    return Seconds(Clock::now() - start) * 1e9 / calls;
}

void MeasureTable(int finished) {
    constexpr int kCalls = 2000;
    const std::size_t before = mallinfo2().uordblks;
    MessageTable table;
    for (int index = 0; index < finished; ++index) {
        table.Add(std::make_unique<COutgoingMessage>(), true);
        table.Finish(*table.TakeNext(), {0, {}});
    }
    const double bytes = static_cast<double>(mallinfo2().uordblks - before) / finished;
    std::vector<std::unique_ptr<COutgoingMessage>> messages(kCalls);
    for (auto& message : messages) message = std::make_unique<COutgoingMessage>();
    const double add = Cost(kCalls, [&](int index) {
        table.Add(std::move(messages[static_cast<std::size_t>(index)]), true);
    });
    const double take = Cost(kCalls / 2, [&](int) { table.TakeNext(); });
    volatile LONG seen = 0;
    const double status =
        Cost(kCalls, [&](int index) { seen = table.Find(1 + index * 7 % finished)->m_status; });
    const double size = Cost(kCalls, [&](int) { seen = static_cast<LONG>(table.QueueSize()); });
    const double cancel =
        Cost(kCalls / 2, [&](int index) { table.Cancel(*table.Find(finished + kCalls - index)); });
    fmt::print("{:>9} {:>8.0f} {:>8.0f} {:>10.0f} {:>13.0f} {:>8.0f} {:>10.0f}\n", finished, add,
               take, status, size, cancel, bytes);
}

ComPtr<ISmtpMail> Mail(int port) {
    auto mail = New<CSmtpMail, ISmtpMail>();
    mail->put_SmtpServer(Text(OLESTR("127.0.0.1")));
    mail->put_SmtpPort(port);
    return mail;
}

ComPtr<IMailMessage> Message() {
    auto message = New<CMailMessage, IMailMessage>();
    const auto address = New<CMailAddress, IMailAddress>();
    address->put_Address(Text(OLESTR("ok@example.org")));
    message->put_Sender(address.Get());
    message->AddRecipient(address.Get());
    message->put_MessageSubject(Text(OLESTR("Measured")));
    message->put_MessageBody(Text(OLESTR("A few words.\r\n")));
    return message;
}

// Milliseconds of processor time that a synchronous send takes, when the caller pauses after each.
double MeasureSynchronous(int port, int messages, std::chrono::milliseconds pause) {
    const auto mail = Mail(port);
    const auto message = Message();
    LONG code = 0;
    BstrHolder text;
    const double start = ProcessorSeconds();
    for (int index = 0; index < messages; ++index) {
        mail->Send(message.Get(), VARIANT_TRUE, text.Receive(), &code);
        if (code != 0) std::abort();
        std::this_thread::sleep_for(pause);
    }
    return (ProcessorSeconds() - start) * 1e3 / messages;
}

struct Synchronous {
    double inARow;  // milliseconds of processor time of a send
    double paced;
};

void MeasureThroughput(int port, int workers, const Synchronous& synchronous) {
    const int messages = static_cast<int>(workers * kMessagesPerWorker * 2);
    const auto mail = Mail(port);
    const auto message = Message();
    mail->put_MaxThreads(workers);
    const double processor = ProcessorSeconds();
    const auto start = Clock::now();
    LONG number = 0;
    for (int index = 0; index < messages; ++index) {
        mail->SendAsync(message.Get(), VARIANT_TRUE, &number);
    }
    // Looking costs processor time too: not before the end is near.
    std::this_thread::sleep_for(std::chrono::milliseconds(1900));
    for (LONG left = messages; left > 0; mail->GetQueueSize(&left)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    const double rate = messages / Seconds(Clock::now() - start);
    const double each = (ProcessorSeconds() - processor) * 1e3 / messages;
    int failed = 0;
    for (LONG index = 1; index <= number; ++index) {
        MailStatus status;
        mail->GetStatus(index, &status);
        failed += status != MailStatusSent;
    }
    fmt::print("{:>8} {:>10} {:>8.0f} {:>16.0f} % {:>16.3f} ms {:>12.2f} {:>10.2f} {:>8}\n",
               workers, messages, rate, 100 * rate / (workers * kMessagesPerWorker), each,
               each / synchronous.inARow, each / synchronous.paced, failed);
}

void MeasureIdle(int port) {
    constexpr std::chrono::seconds kTime{3};
    const auto mail = Mail(port);
    const double start = ProcessorSeconds();
    std::this_thread::sleep_for(kTime);
    fmt::print("An object that has nothing to do: {:.3f} ms of processor time a second\n",
               (ProcessorSeconds() - start) * 1e3 / static_cast<double>(kTime.count()));
}

void Run() {
    // In a process of its own, so that this one's processor time is the client's.
    const testing::PeerProcess peer;
    fmt::print(
        "Nanoseconds of one step of the table, and bytes of a finished message\n"
        "{:>9} {:>8} {:>8} {:>10} {:>13} {:>8} {:>10}\n",
        "finished", "add", "take", "GetStatus", "GetQueueSize", "Cancel", "bytes");
    for (const int finished : {1'000, 10'000, 100'000, 1'000'000}) MeasureTable(finished);

    fmt::print("\n");
    MeasureIdle(peer.port());
    // A worker finds its caches as cold after its pause as a caller who pauses.
    const Synchronous synchronous{MeasureSynchronous(peer.port(), 500, {}),
                                  MeasureSynchronous(peer.port(), 60, kPause)};
    fmt::print(
        "\nMessages a second; a worker sends {} at most. A synchronous send takes {:.3f} ms of "
        "processor time, and {:.3f} ms when {} ms go by between two\n"
        "{:>8} {:>10} {:>8} {:>18} {:>19} {:>12} {:>10} {:>8}\n",
        kMessagesPerWorker, synchronous.inARow, synchronous.paced, kPause.count(), "workers",
        "messages", "rate", "of the most", "processor time", "x of Send", "x paced", "failed");
    for (const int workers : {1, 5, 50, 200}) MeasureThroughput(peer.port(), workers, synchronous);
}

}  // namespace
}  // namespace quorvane

int main() {
    quorvane::Run();
}
