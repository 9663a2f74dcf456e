#include "smtp/ntlm.h"

#include <ntlm.h>

#include <algorithm>
#include <mutex>

namespace quorvane {
namespace {

// Where a challenge has the length (two bytes) and the offset (four) of its name.
constexpr std::size_t kNameLengthAt = 12;
constexpr std::size_t kNameOffsetAt = 16;

// The part of a record that is the message; behind it comes the library's own bookkeeping.
constexpr std::size_t kMaxChallengeSize =
    offsetof(tSmbNtlmAuthChallenge, buffer) + NTLM_MSG_BUFSIZE;

// Some versions of the library widen strings in one static buffer.
std::mutex& LibraryMutex() {
    static std::mutex mutex;
    return mutex;
}

std::size_t LittleEndian(std::span<const BYTE> bytes) {
    std::size_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        value = value << 8 | bytes[i];
    }
    return value;
}

template <class Record>
std::vector<BYTE> MessageOf(const Record& record) {
    const auto* const bytes = reinterpret_cast<const BYTE*>(&record);
    return {bytes, bytes + offsetof(Record, buffer) + record.bufIndex};
}

}  // namespace

bool IsNtlmUserName(const std::string& user) {
    const std::size_t at = std::min(user.find('@'), user.size());
    const std::size_t domain = at < user.size() ? user.size() - at - 1 : 0;
    return at <= kMaxNtlmNameLength && domain <= kMaxNtlmNameLength;
}

bool IsUsableNtlmChallenge(std::span<const BYTE> challenge) {
    challenge = challenge.first(std::min(challenge.size(), kMaxChallengeSize));
    if (challenge.size() < kNameOffsetAt + 4) {
        return true;
    }
    const std::size_t length = LittleEndian(challenge.subspan(kNameLengthAt, 2));
    const std::size_t offset = LittleEndian(challenge.subspan(kNameOffsetAt, 4));
    return length == 0 || (length <= 2 * kMaxNtlmNameLength && offset <= challenge.size() &&
                           length <= challenge.size() - offset);
}

std::vector<BYTE> MakeNtlmNegotiation(const std::string& user, const std::string& domain) {
    tSmbNtlmAuthRequest request{};
    const std::scoped_lock lock(LibraryMutex());
    buildSmbNtlmAuthRequest(&request, user.c_str(), domain.c_str());
    return MessageOf(request);
}

std::optional<std::vector<BYTE>> MakeNtlmResponse(std::span<const BYTE> challenge,
                                                  const std::string& user,
                                                  const std::string& password) {
    if (!IsUsableNtlmChallenge(challenge)) {
        return std::nullopt;
    }
    tSmbNtlmAuthChallenge record{};
    std::copy_n(challenge.begin(), std::min(challenge.size(), kMaxChallengeSize),
                reinterpret_cast<BYTE*>(&record));
    tSmbNtlmAuthResponse response{};
    const std::scoped_lock lock(LibraryMutex());
    buildSmbNtlmAuthResponse(&record, &response, user.c_str(), password.c_str());
    return MessageOf(response);
}

}  // namespace quorvane
