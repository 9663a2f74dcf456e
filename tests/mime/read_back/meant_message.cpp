#include "tests/mime/read_back/meant_message.h"

#include <fstream>
#include <span>
#include <string_view>

#include "mime/text_conversion.h"
#include "tests/mime/read_back/random_texts.h"

namespace quorvane::testing {
namespace {

using nlohmann::json;

std::string HexUnits(WideView text) {
    std::string bytes;
    for (const WCHAR unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return Hex(bytes);
}

std::string Plain(WideView text) {
    return LowBytes(text);  // of texts that are ASCII
}

class Maker {
public:
    Maker(std::uint64_t seed, std::uint64_t number, const std::filesystem::path& folder)
        : chance_(seed, number), folder_(folder) {}

    MeantMessage Make() {
        AddAddresses();
        AddFields();
        AddBodies();
        json& attachments = meaning_["attachments"] = json::array();
        const std::size_t count = chance_.OneIn(2) ? 0 : chance_.From(1, 4);
        for (std::size_t i = 0; i < count; ++i) attachments.push_back(AddAttachment(i));
        made_.composedTwice = chance_.OneIn(10);
        return std::move(made_);
    }

private:
    json Entry(CAddressEntry& entry) {
        static constexpr std::array<WideView, 4> kAddresses{
            OLESTR("ann@example.org"), OLESTR("bob.b+tag@mail.example.org"),
            OLESTR("x_y=z@example.com"), OLESTR("\"odd one\"@example.net")};
        entry.name = chance_.OneIn(3) ? WideString() : HeaderText(chance_);
        entry.address = chance_.OneOf(kAddresses);
        return {{"name", HexUnits(entry.name)}, {"address", Plain(entry.address)}};
    }

    json Entries(std::vector<CAddressEntry>& entries, std::size_t count) {
        json all = json::array();
        for (std::size_t i = 0; i < count; ++i) all.push_back(Entry(entries.emplace_back()));
        return all;
    }

    void AddAddresses() {
        meaning_["from"] = json::array({Entry(message_.sender)});
        meaning_["to"] = Entries(message_.to, chance_.Below(4));
        meaning_["cc"] = Entries(message_.cc, chance_.OneIn(3) ? chance_.Below(40) : 0);
        message_.bcc.push_back({OLESTR("secret"), OLESTR("secret@example.com")});
        meaning_["reply-to"] =
            chance_.OneIn(4) ? json::array({Entry(message_.replyTo)}) : json::array();
    }

    void AddFields() {
        message_.subject = HeaderText(chance_);
        meaning_["subject"] = HexUnits(message_.subject);
        message_.messageId = chance_.OneIn(2) ? OLESTR("id.1@example.com") : OLESTR("");
        meaning_["message-id"] = Plain(message_.messageId);
        message_.priorityCode = static_cast<LONG>(chance_.Below(3));
        meaning_["priority"] = message_.priorityCode;
        AddDate();
        static constexpr std::array<std::string_view, 10> kNames{
            "X-Tag",      "x-tag",        "List-Unsubscribe", "Keywords",   "x-mailer",
            "message-id", "MIME-version", "content-type",     "IMPORTANCE", "subject"};
        json& fields = meaning_["fields"] = json::array();
        for (std::size_t left = chance_.OneIn(2) ? chance_.Below(4) : 0; left > 0; --left) {
            const std::string name(chance_.OneOf(kNames));
            if (message_.headers.Find(name) != HeaderList::npos) continue;
            const std::string value = FieldValue(chance_);
            message_.headers.Append(name, value);
            fields.push_back({name, Hex(value)});
        }
    }

    void AddDate() {
        static constexpr std::array<LONG, 6> kOffsets{0, 100, -500, 530, -330, 1400};
        SYSTEMTIME& time = message_.createdTime;
        time.wYear = static_cast<WORD>(chance_.From(1990, 2090));
        time.wMonth = static_cast<WORD>(chance_.From(1, 12));
        time.wDay = static_cast<WORD>(chance_.From(1, 28));
        time.wHour = static_cast<WORD>(chance_.Below(24));
        time.wMinute = static_cast<WORD>(chance_.Below(60));
        time.wSecond = static_cast<WORD>(chance_.Below(60));
        message_.utcOffset = chance_.OneOf(kOffsets);
        meaning_["date"] = {time.wYear,   time.wMonth,  time.wDay,         time.wHour,
                            time.wMinute, time.wSecond, message_.utcOffset};
    }

    // Writes a file; the path of it as users write it, with a backslash.
    WideString File(const std::string& name, std::string_view bytes) {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return FromUtf8(folder_.string()) + WCHAR('\\') + FromUtf8(name);
    }

    WideString Charset() {
        static constexpr std::array<WideView, 20> kCharsets{
            OLESTR("unicode"),      OLESTR("Unicode"),      OLESTR("iso-8859-1"),
            OLESTR("ISO-8859-2"),   OLESTR("iso-8859-15"),  OLESTR("windows-1250"),
            OLESTR("windows-1251"), OLESTR("windows-1252"), OLESTR("windows-1257"),
            OLESTR("koi8-r"),       OLESTR("us-ascii"),     OLESTR("utf-8"),
            OLESTR("shift_jis"),    OLESTR("gb2312"),       OLESTR("gb18030"),
            OLESTR("big5"),         OLESTR("euc-kr"),       OLESTR("euc-jp"),
            OLESTR("x-unknown"),    OLESTR("iso-8859-7")};
        if (chance_.OneIn(3)) return OLESTR("unicode");
        return chance_.OneIn(2) ? OLESTR("iso-8859-1") : WideString(chance_.OneOf(kCharsets));
    }

    void AddBodies() {
        json& bodies = meaning_["bodies"] = json::array();
        if (chance_.OneIn(3)) bodies.push_back(AddBody(OLESTR("text/plain")));
        bodies.push_back(AddBody(chance_.OneIn(2) ? OLESTR("text/plain") : OLESTR("text/html")));
        // Only the main body can be a file.
        if (!chance_.OneIn(8)) return;
        CBodyPart& main = message_.bodyParts.back();
        const bool isMissing = chance_.OneIn(8);
        const std::string bytes = isMissing ? std::string() : FileBytes(chance_);
        main.file = isMissing ? OLESTR("\\none\\none") : File("body", bytes);
        bodies.back()["file"] = isMissing ? json(nullptr) : json(Hex(bytes));
    }

    json AddBody(const WideString& type) {
        CBodyPart part;
        part.contentType = type;
        part.charset = Charset();
        part.encoding = static_cast<LONG>(chance_.Below(5));
        const bool isNarrow = !IsUnicodeCharset(part.charset) && !chance_.OneIn(4);
        part.text = BodyText(chance_, chance_.OneIn(3) ? Letters::Ascii
                                      : isNarrow       ? Letters::Latin1
                                                       : Letters::All);
        message_.bodyParts.push_back(part);
        return {{"type", Plain(type)},
                {"charset", Plain(part.charset)},
                {"encoding", part.encoding},
                {"text", HexUnits(part.text)}};
    }

    json AddAttachment(std::size_t index) {
        static constexpr std::array<WideView, 8> kTypes{OLESTR(""),
                                                        OLESTR(""),
                                                        OLESTR("image/png"),
                                                        OLESTR("application/x-odd; version=\"1\""),
                                                        OLESTR("text/plain"),
                                                        OLESTR("TEXT/csv"),
                                                        OLESTR("text/html; level=1"),
                                                        OLESTR("message/rfc822")};
        CAttachmentPart part;
        part.contentType = chance_.OneOf(kTypes);
        part.charset = chance_.OneIn(2) ? OLESTR("") : Charset();
        part.encoding = chance_.OneIn(2) ? 4 : static_cast<LONG>(chance_.Below(5));
        part.isInline = chance_.OneIn(2);
        if (part.isInline || chance_.OneIn(4)) part.contentId = OLESTR("part.1@example.com");
        std::string bytes = FileBytes(chance_);
        if (part.contentType == OLESTR("message/rfc822")) bytes = NestedMessage(part);
        if (chance_.OneIn(2) && !bytes.empty()) {
            part.data =
                DataBlock::Copy({reinterpret_cast<const BYTE*>(bytes.data()), bytes.size()});
        }
        if (part.data.empty() || chance_.OneIn(2)) SetFile(index, bytes, part);
        if (part.file.empty() || chance_.OneIn(2)) part.name = HeaderText(chance_);
        json meant{{"type", Plain(part.contentType)}, {"charset", Plain(part.charset)},
                   {"encoding", part.encoding},       {"inline", part.isInline},
                   {"id", Plain(part.contentId)},     {"name", HexUnits(part.name)},
                   {"file", HexUnits(part.file)},     {"content", Hex(bytes)}};
        if (part.data.empty() && part.file.starts_with(OLESTR("\\none"))) meant["content"] = "";
        message_.attachments.push_back(std::move(part));
        return meant;
    }

    // A message inside the message may only be encoded as it is (RFC 2046 section 5.2.1).
    std::string NestedMessage(CAttachmentPart& part) {
        part.encoding = chance_.OneIn(2) ? 1 : 2;
        return "From: <inner@example.com>\r\nSubject: inner\r\nMIME-Version: 1.0\r\n"
               "Content-Type: text/plain\r\n\r\n.inner\r\ntext\r\n";
    }

    void SetFile(std::size_t index, std::string_view bytes, CAttachmentPart& part) {
        static constexpr std::array<std::string_view, 7> kNames{"picture.png",
                                                                "report v2.final.pdf",
                                                                "README",
                                                                "letter.txt",
                                                                "odd;name=1,'x'.bin",
                                                                "gr\xC3\xBC\xC3\x9F.txt",
                                                                "\xE6\x97\xA5\xE6\x9C\xAC.html"};
        if (chance_.OneIn(12)) {
            part.file = OLESTR("\\none\\none.bin");
            return;
        }
        part.file = File(std::to_string(index) + std::string(chance_.OneOf(kNames)), bytes);
    }

    Chance chance_;
    const std::filesystem::path folder_;
    MeantMessage made_;
    COutgoingMessage& message_ = made_.message;
    json& meaning_ = made_.meaning;
};

}  // namespace

MeantMessage MakeMessage(std::uint64_t seed, std::uint64_t number,
                         const std::filesystem::path& folder) {
    return Maker(seed, number, folder).Make();
}

std::string Hex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    digits.reserve(2 * bytes.size());
    for (const char c : bytes) {
        digits += kDigits[static_cast<unsigned char>(c) >> 4];
        digits += kDigits[static_cast<unsigned char>(c) & 0x0F];
    }
    return digits;
}

}  // namespace quorvane::testing
