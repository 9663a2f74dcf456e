#include "mime/unique_stamp.h"

#include <algorithm>
#include <atomic>
#include <chrono>

namespace quorvane {
namespace {

constexpr unsigned kRandomBits = 15;
constexpr ULONGLONG kRandomMask = (1u << kRandomBits) - 1;

// Spreads the bits of the value over the whole of it (the finalizer of SplitMix64).
constexpr ULONGLONG Mix(ULONGLONG value) {
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9u;
    value = (value ^ value >> 27) * 0x94D049BB133111EBu;
    return value ^ value >> 31;
}

// A generator for each thread, with a number of the thread's own in its seed. The fine clock tells
// apart the processes that start within one tick.
class ThreadGenerator {
public:
    ThreadGenerator() { Seed(GetTickCount()); }

    void Seed(ULONG tick) {
        const auto fine = std::chrono::steady_clock::now().time_since_epoch().count();
        state_ = Mix(Mix(threadNumber_ << 32 | tick) + static_cast<ULONGLONG>(fine));
    }

    ULONGLONG Next() {
        state_ += 0x9E3779B97F4A7C15u;
        return Mix(state_) & kRandomMask;
    }

private:
    static ULONGLONG NextThreadNumber() {
        static std::atomic<ULONGLONG> number{0};
        return ++number;
    }

    const ULONGLONG threadNumber_ = NextThreadNumber();
    ULONGLONG state_ = 0;
};

ThreadGenerator& Generator() {
    thread_local ThreadGenerator generator;
    return generator;
}

void AppendHex(ULONG value, std::string& out) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    char digits[8];
    for (int i = 7; i >= 0; --i, value >>= 4) digits[i] = kDigits[value & 0x0F];
    out.append(digits, sizeof(digits));
}

}  // namespace

UniqueStamp NextStamp() {
    static std::atomic<ULONGLONG> highest{0};
    // The wide tick count never wraps, so a later tick always makes a higher value.
    const ULONGLONG candidate = GetTickCount64() << kRandomBits | Generator().Next();
    ULONGLONG before = highest.load(std::memory_order_relaxed);
    ULONGLONG next;
    do {
        next = std::max(candidate, before + 1);
    } while (!highest.compare_exchange_weak(before, next, std::memory_order_relaxed));
    return {static_cast<ULONG>(next & kRandomMask), static_cast<ULONG>(next >> kRandomBits)};
}

void SeedThreadGenerator(ULONG tick) {
    Generator().Seed(tick);
}

void AppendStamp(const UniqueStamp& stamp, char separator, std::string& out) {
    AppendHex(stamp.random, out);
    out += separator;
    AppendHex(stamp.tick, out);
}

}  // namespace quorvane
