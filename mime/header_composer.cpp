#include "mime/header_composer.h"

#include <algorithm>
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

void AppendMessageId(const COutgoingMessage& message, std::string& out) {
    if (message.messageId.empty()) {
        AppendGeneratedId(NextStamp(), message.sender.address, out);
        return;
    }
    out += '<';
    AppendAnsi(message.messageId, out);
    out += '>';
}

// The header list while the fields are added to it.
class FieldAdder {
public:
    explicit FieldAdder(HeaderList& headers) : headers_(headers) {}

    void AddUnlessPresent(std::string_view name, std::string_view value) {
        if (IsMissing(name)) headers_.Append(name, value);
    }

    // For values that cost something to make, which the function appends to a string.
    template <std::invocable<std::string&> WriteValue>
    void AddUnlessPresent(std::string_view name, WriteValue writeValue) {
        if (IsMissing(name)) headers_.Append(name, writeValue);
    }

    template <std::invocable<std::string&> WriteValue>
    void Replace(std::string_view name, WriteValue writeValue) {
        Remove(name);
        headers_.Append(name, writeValue);
    }

    void Remove(std::string_view name) {
        const std::size_t index = headers_.FindIgnoreCase(name);
        if (index != HeaderList::npos) headers_.Remove(index);
    }

private:
    bool IsMissing(std::string_view name) const {
        return headers_.FindIgnoreCase(name) == HeaderList::npos;
    }

    HeaderList& headers_;
};

// A short text that is put together from its end to its start, where numbers are made that way.
class ShortText {
public:
    void Put(char c) { *--start_ = c; }

    // A literal; a size that the compiler knows makes it a move or two.
    template <std::size_t size>
    void Put(const char (&text)[size]) {
        start_ -= size - 1;
        std::copy_n(text, size - 1, start_);
    }

    // With as many digits at least.
    void PutNumber(ULONG number, int digits) {
        for (; number > 0 || digits > 0; --digits) {
            *--start_ = static_cast<char>('0' + number % 10);
            number /= 10;
        }
    }

    std::string_view text() const { return {start_, std::end(bytes_)}; }

private:
    char bytes_[64];
    char* start_ = std::end(bytes_);
};

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
    fields.Replace("Message-ID", [&](std::string& out) { AppendMessageId(message, out); });
    fields.AddUnlessPresent(
        "Date", [&](std::string& out) { AppendDate(message.createdTime, message.utcOffset, out); });
    if (message.subject.empty()) {
        fields.Remove("Subject");
    } else {
        fields.Replace("Subject", [&](std::string& out) {
            AppendHeaderText(message, message.subject, false, out);
        });
    }
    const auto addresses = [&](const std::vector<CAddressEntry>& entries) {
        return [&](std::string& out) { AppendAddressList(message, entries, out); };
    };
    const auto address = [&](const CAddressEntry& entry) {
        return [&](std::string& out) { AppendAddress(message, entry, out); };
    };
    if (!message.cc.empty()) fields.AddUnlessPresent("Cc", addresses(message.cc));
    if (!message.to.empty()) fields.AddUnlessPresent("To", addresses(message.to));
    if (!message.replyTo.address.empty()) {
        fields.AddUnlessPresent("Reply-To", address(message.replyTo));
    }
    fields.AddUnlessPresent("From", address(message.sender));
}

void AppendAddress(const COutgoingMessage& message, const CAddressEntry& entry, std::string& out) {
    const WideView name = Trim(entry.name);
    if (!name.empty()) {
        AppendHeaderText(message, name, true, out);
        out += ' ';
    }
    out += '<';
    AppendAnsi(entry.address, out);
    out += '>';
}

void AppendAddressList(const COutgoingMessage& message, const std::vector<CAddressEntry>& entries,
                       std::string& out) {
    bool isFirst = true;
    for (const CAddressEntry& entry : entries) {
        if (!isFirst) out += ",\r\n\t";
        AppendAddress(message, entry, out);
        isFirst = false;
    }
}

void AppendDate(const SYSTEMTIME& local, LONG utcOffset, std::string& out) {
    static constexpr char kDays[][4] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr char kMonths[][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const int month = local.wMonth >= 1 && local.wMonth <= 12 ? local.wMonth : 1;
    const auto offset = static_cast<ULONG>(utcOffset);
    ShortText date;  // of 50 characters at most
    date.PutNumber(utcOffset > 0 ? offset : 0 - offset, 4);
    date.Put(utcOffset > 0 ? " +" : " -");
    date.PutNumber(local.wSecond, 2);
    date.Put(':');
    date.PutNumber(local.wMinute, 2);
    date.Put(':');
    date.PutNumber(local.wHour, 1);
    date.Put(' ');
    date.PutNumber(local.wYear, 4);
    date.Put(' ');
    date.Put(kMonths[month - 1]);
    date.Put(' ');
    date.PutNumber(local.wDay, 1);
    date.Put(", ");
    date.Put(kDays[DayOfWeek(local.wYear, month, std::max<int>(local.wDay, 1))]);
    out += date.text();
}

void AppendGeneratedId(const UniqueStamp& stamp, WideView senderAddress, std::string& out) {
    out += "<0";
    AppendStamp(stamp, '.', out);
    out += '.';
    AppendAnsi(senderAddress, out);
    out += '>';
}

}  // namespace quorvane
