// Capabilities: what is offered depends neither on the case of letters nor on what stands around
// it, and more words never take an offer back.
#include "fuzz/input.h"
#include "smtp/authentication.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

bool Same(const AuthOffers& a, const AuthOffers& b) {
    return a.login == b.login && a.ntlm == b.ntlm;
}

// ASCII letters with their case turned round.
WideString WithOtherCase(WideString text) {
    for (WCHAR& c : text) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) c = static_cast<WCHAR>(c ^ 0x20);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const WideString text = input.TakeWideText();
    const WideString more = input.TakeWideText();
    const AuthOffers offers = ParseAuthOffers(text);
    const bool startTls = ContainsIgnoreCase(text, OLESTR("STARTTLS"));
    const WideString turned = WithOtherCase(text);
    Require(Same(offers, ParseAuthOffers(turned)), "case doesn't matter to offers");
    Require(startTls == ContainsIgnoreCase(turned, OLESTR("STARTTLS")), "nor to STARTTLS");
    Require(!offers.login || ContainsIgnoreCase(text, OLESTR("LOGIN")), "LOGIN is a word of it");
    Require(!offers.ntlm || ContainsIgnoreCase(text, OLESTR("NTLM")), "NTLM is a word of it");
    Require(ContainsIgnoreCase(text, OLESTR("AUTH")) || Same(offers, {}), "AUTH comes first");

    const AuthOffers longer = ParseAuthOffers(text + more);
    Require((longer.login || !offers.login) && (longer.ntlm || !offers.ntlm), "offers stay");
    Require(!startTls || ContainsIgnoreCase(more + text, OLESTR("STARTTLS")), "STARTTLS stays");
    if (!ContainsIgnoreCase(more + OLESTR("|"), OLESTR("AUTH"))) {
        Require(Same(offers, ParseAuthOffers(more + OLESTR("|") + text)),
                "what stands before AUTH offers nothing");
    }
    return 0;
}
