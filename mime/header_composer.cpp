#include "mime/header_composer.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <iterator>
#include <string_view>

#include "mime/header_text.h"
#include "mime/unique_stamp.h"

namespace quorvane {
namespace {

struct PriorityTexts {
    std::string_view number;  // X-Priority
    std::string_view word;    // X-MSMail-Priority and Importance
};

PriorityTexts PriorityOf(LONG code) {
    switch (code) {
        case 2:
            return {"1 (Highest)", "High"};
        case 0:
            return {"5 (Lowest)", "Low"};
        default:
            return {"3 (Normal)", "Normal"};
    }
}

void AppendAddress(const COutgoingMessage& message, const CAddressEntry& entry, std::string& out) {
    const WideView name = Trim(entry.name);
    if (!name.empty()) {
        out += EncodeHeaderText(message, name, true);
        out += ' ';
    }
    out += '<';
    out += ToAnsi(entry.address);
    out += '>';
}

std::string MessageIdOf(const COutgoingMessage& message) {
    if (message.messageId.empty()) return GeneratedMessageId(NextStamp(), message.sender.address);
    return '<' + ToAnsi(message.messageId) + '>';
}

// The header list while the fields are added to it.
class FieldAdder {
public:
    explicit FieldAdder(HeaderList& headers) : headers_(headers) {}

    void AddUnlessPresent(std::string_view name, std::string_view value) {
        if (IsMissing(name)) headers_.Append(name, value);
    }

    // For values that cost something to make.
    template <std::invocable MakeValue>
    void AddUnlessPresent(std::string_view name, MakeValue makeValue) {
        if (IsMissing(name)) headers_.Append(name, makeValue());
    }

    // An empty value only removes the field.
    void Replace(std::string_view name, std::string_view value) {
        const std::size_t index = headers_.FindIgnoreCase(name);
        if (index != HeaderList::npos) headers_.Remove(index);
        if (!value.empty()) headers_.Append(name, value);
    }

private:
    bool IsMissing(std::string_view name) const {
        return headers_.FindIgnoreCase(name) == HeaderList::npos;
    }

    HeaderList& headers_;
};

// Appends the number with as many digits at least.
void AppendNumber(ULONG number, std::size_t digits, std::string& out) {
    char text[10];
    const auto end = std::to_chars(std::begin(text), std::end(text), number).ptr;
    const auto size = static_cast<std::size_t>(end - text);
    if (size < digits) out.append(digits - size, '0');
    out.append(text, size);
}

// 0 is Sunday. Days since a Sunday, counted in years that begin in March.
int DayOfWeek(int year, int month, int day) {
    constexpr int kMonthShift[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    if (month < 3) --year;
    return (year + year / 4 - year / 100 + year / 400 + kMonthShift[month - 1] + day) % 7;
}

}  // namespace

void ComposeHeaders(COutgoingMessage& message) {
    const PriorityTexts priority = PriorityOf(message.priorityCode);
    FieldAdder fields(message.headers);
    fields.AddUnlessPresent("X-MimeOLE", "Produced By Lindbrek Mime V4.1");
    fields.AddUnlessPresent("X-Mailer", "Quorvane ActiveX 4.1 (Lindbrek Quorvane)");
    fields.AddUnlessPresent("X-Priority", priority.number);
    fields.AddUnlessPresent("X-MSMail-Priority", priority.word);
    fields.AddUnlessPresent("Importance", priority.word);
    fields.Replace("Message-ID", MessageIdOf(message));
    fields.AddUnlessPresent("Date",
                            [&] { return FormatDate(message.createdTime, message.utcOffset); });
    fields.Replace("Subject", EncodeHeaderText(message, message.subject, false));
    if (!message.cc.empty()) {
        fields.AddUnlessPresent("Cc", [&] { return FormatAddressList(message, message.cc); });
    }
    if (!message.to.empty()) {
        fields.AddUnlessPresent("To", [&] { return FormatAddressList(message, message.to); });
    }
    if (!message.replyTo.address.empty()) {
        fields.AddUnlessPresent("Reply-To",
                                [&] { return FormatAddress(message, message.replyTo); });
    }
    fields.AddUnlessPresent("From", [&] { return FormatAddress(message, message.sender); });
}

std::string FormatAddress(const COutgoingMessage& message, const CAddressEntry& entry) {
    std::string text;
    AppendAddress(message, entry, text);
    return text;
}

std::string FormatAddressList(const COutgoingMessage& message,
                              const std::vector<CAddressEntry>& entries) {
    std::string text;
    for (const CAddressEntry& entry : entries) {
        if (!text.empty()) text += ",\r\n\t";
        AppendAddress(message, entry, text);
    }
    return text;
}

std::string FormatDate(const SYSTEMTIME& local, LONG utcOffset) {
    constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const int month = local.wMonth >= 1 && local.wMonth <= 12 ? local.wMonth : 1;
    std::string date = kDays[DayOfWeek(local.wYear, month, std::max<int>(local.wDay, 1))];
    date += ", ";
    AppendNumber(local.wDay, 1, date);
    date += ' ';
    date += kMonths[month - 1];
    date += ' ';
    AppendNumber(local.wYear, 4, date);
    date += ' ';
    AppendNumber(local.wHour, 1, date);
    date += ':';
    AppendNumber(local.wMinute, 2, date);
    date += ':';
    AppendNumber(local.wSecond, 2, date);
    date += utcOffset > 0 ? " +" : " -";
    const auto offset = static_cast<ULONG>(utcOffset);
    AppendNumber(utcOffset > 0 ? offset : 0 - offset, 4, date);
    return date;
}

std::string GeneratedMessageId(const UniqueStamp& stamp, WideView senderAddress) {
    std::string id = "<0";
    AppendStamp(stamp, '.', id);
    id += '.';
    id += ToAnsi(senderAddress);
    return id += '>';
}

}  // namespace quorvane
