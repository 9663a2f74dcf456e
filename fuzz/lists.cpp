// Lists of the simple sends: the same entries whether they come in one list or in many.
#include "fuzz/input.h"
#include "model/simple_send.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

COutgoingMessage Listed(const WideString& recipients, const WideString& attachments) {
    COutgoingMessage record;
    AddRecipientList(record, recipients);
    AddAttachmentList(record, attachments);
    return record;
}

bool SameLists(const COutgoingMessage& a, const COutgoingMessage& b) {
    return std::equal(a.to.begin(), a.to.end(), b.to.begin(), b.to.end(),
                      [](const auto& x, const auto& y) {
                          return x.name == y.name && x.address == y.address;
                      }) &&
           std::equal(a.attachments.begin(), a.attachments.end(), b.attachments.begin(),
                      b.attachments.end(),
                      [](const auto& x, const auto& y) { return x.file == y.file; });
}

// Every entry in a list of its own.
COutgoingMessage ListedOneByOne(WideView text) {
    COutgoingMessage record;
    for (;;) {
        const std::size_t end = std::min(text.find(WCHAR(';')), text.size());
        AddRecipientList(record, text.substr(0, end));
        AddAttachmentList(record, text.substr(0, end));
        if (end == text.size()) return record;
        text.remove_prefix(end + 1);
    }
}

WideString Joined(const std::vector<CAttachmentPart>& parts) {
    WideString list;
    for (const CAttachmentPart& part : parts) list += OLESTR(" ; ") + part.file;
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const WideString text = input.TakeWideText();
    const COutgoingMessage record = Listed(text, text);
    Require(record.to.size() == record.attachments.size(), "both lists have the same entries");
    Require(SameLists(record, ListedOneByOne(text)), "an entry doesn't depend on its neighbours");
    for (std::size_t i = 0; i < record.to.size(); ++i) {
        const WideString& file = record.attachments[i].file;
        Require(!file.empty() && Trim(file).size() == file.size(), "paths are trimmed");
        const CAddressEntry entry = MakeAddressEntry(file, {});
        Require(entry.name == record.to[i].name && entry.address == record.to[i].address,
                "a recipient is what the address object makes of the same text");
    }
    const WideString joined = Joined(record.attachments);
    Require(SameLists(record, Listed(joined, joined)), "a list made of the entries is the list");

    Require(!IsHtmlBody(text) || text.find(WCHAR('<')) < 26, "HTML begins near the start");
    Require(IsHtmlBody(text) == IsHtmlBody(WideView(text).substr(0, 30)), "no more is looked at");
    return 0;
}
