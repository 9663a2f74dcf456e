// gmime_reader: reads messages from standard input, one a line in hexadecimal digits, and writes
// what GMime finds in each, one line of JSON.
#include <gmime/gmime.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

namespace {

using nlohmann::json;

template <class Object>
struct Unref {
    void operator()(Object* object) const { g_object_unref(object); }
};
template <class Object>
using Ref = std::unique_ptr<Object, Unref<Object>>;

std::string Unhex(const std::string& digits) {
    std::string bytes(digits.size() / 2, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(std::stoi(digits.substr(2 * i, 2), nullptr, 16));
    }
    return bytes;
}

std::string Hex(const GByteArray* bytes) {
    std::string digits(2 * bytes->len, '\0');
    constexpr char kDigits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < bytes->len; ++i) {
        digits[2 * i] = kDigits[bytes->data[i] >> 4];
        digits[2 * i + 1] = kDigits[bytes->data[i] & 0x0F];
    }
    return digits;
}

std::string Text(const char* text) {
    return text ? text : "";
}

std::string Owned(char* text) {
    std::string copy = Text(text);
    g_free(text);
    return copy;
}

// The parser's warnings in the order of their codes, of which the first is 1.
constexpr const char* kWarnings[] = {
    "",
    "duplicated header",
    "duplicated parameter",
    "unencoded 8-bit header",
    "invalid content type",
    "invalid encoded word",
    "malformed multipart",
    "truncated message",
    "malformed message",
    "invalid header name",
    "conflicting header",
    "conflicting parameter",
    "multipart without boundary",
    "invalid parameter",
    "invalid address list",
    "nesting overflow",
    "part without content",
    "part without headers or content",
};

void AddDefect(gint64, GMimeParserWarning code, const gchar* item, gpointer list) {
    const bool isKnown = static_cast<std::size_t>(code) < std::size(kWarnings);
    static_cast<json*>(list)->push_back({isKnown ? kWarnings[code] : "unknown", Text(item)});
}

// What one message holds. Names of fields and types are as they stand.
class Description {
public:
    Description() {
        g_mime_parser_options_set_warning_callback(options_.get(), AddDefect, &defects_);
    }

    json Of(const std::string& bytes) {
        const Ref<GMimeStream> stream(
            g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()));
        const Ref<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
        const Ref<GMimeMessage> message(
            g_mime_parser_construct_message(parser.get(), options_.get()));
        if (!message) return {{"defects", {{"unreadable", ""}}}};
        AddFields(GMIME_OBJECT(message.get()));
        GMimeObject* const top = g_mime_message_get_mime_part(message.get());
        if (top) AddFields(top);
        AddAddresses(message.get());
        std::string structure = top ? AddParts(top) : "";
        return {{"fields", fields_},
                {"addresses", addresses_},
                {"parts", parts_},
                {"structure", structure},
                {"defects", defects_}};
    }

private:
    struct FreeOptions {
        void operator()(GMimeParserOptions* options) const { g_mime_parser_options_free(options); }
        void operator()(GMimeFormatOptions* options) const { g_mime_format_options_free(options); }
    };

    void AddFields(GMimeObject* object) {
        GMimeHeaderList* const list = g_mime_object_get_header_list(object);
        for (int i = 0; i < g_mime_header_list_get_count(list); ++i) {
            GMimeHeader* const header = g_mime_header_list_get_header_at(list, i);
            fields_.push_back(
                {Text(g_mime_header_get_name(header)), Text(g_mime_header_get_value(header))});
        }
    }

    void AddAddresses(GMimeMessage* message) {
        const std::pair<const char*, GMimeAddressType> kinds[] = {
            {"from", GMIME_ADDRESS_TYPE_FROM},
            {"reply-to", GMIME_ADDRESS_TYPE_REPLY_TO},
            {"to", GMIME_ADDRESS_TYPE_TO},
            {"cc", GMIME_ADDRESS_TYPE_CC}};
        for (const auto& [name, kind] : kinds) {
            InternetAddressList* const list = g_mime_message_get_addresses(message, kind);
            json& all = addresses_[name] = json::array();
            for (int i = 0; i < internet_address_list_length(list); ++i) {
                InternetAddress* const address = internet_address_list_get_address(list, i);
                const bool isMailbox = INTERNET_ADDRESS_IS_MAILBOX(address);
                all.push_back({Text(internet_address_get_name(address)),
                               isMailbox ? Text(internet_address_mailbox_get_addr(
                                               INTERNET_ADDRESS_MAILBOX(address)))
                                         : "(group)"});
            }
        }
    }

    std::string AddParts(GMimeObject* object) {
        const std::string type =
            Owned(g_mime_content_type_get_mime_type(g_mime_object_get_content_type(object)));
        if (!GMIME_IS_MULTIPART(object)) {
            AddPart(object, type);
            return type;
        }
        std::string inside;
        auto* const multipart = GMIME_MULTIPART(object);
        for (int i = 0; i < g_mime_multipart_get_count(multipart); ++i) {
            inside += (i ? "," : "") + AddParts(g_mime_multipart_get_part(multipart, i));
        }
        return type + "(" + inside + ")";
    }

    void AddPart(GMimeObject* object, const std::string& type) {
        json part{
            {"type", type},
            {"charset", Text(g_mime_object_get_content_type_parameter(object, "charset"))},
            {"encoding", Text(g_mime_object_get_header(object, "Content-Transfer-Encoding"))},
            {"disposition", Text(g_mime_object_get_disposition(object))},
            {"name", Text(g_mime_object_get_content_type_parameter(object, "name"))},
            {"filename", Text(g_mime_object_get_content_disposition_parameter(object, "filename"))},
            {"id", Text(g_mime_object_get_content_id(object))}};
        const Ref<GMimeStream> stream(g_mime_stream_mem_new());
        if (GMIME_IS_MESSAGE_PART(object)) {
            WriteNested(GMIME_MESSAGE_PART(object), stream.get());
        } else if (GMIME_IS_PART(object)) {
            if (auto* const content = g_mime_part_get_content(GMIME_PART(object))) {
                g_mime_data_wrapper_write_to_stream(content, stream.get());
            }
            part["text"] = GMIME_IS_TEXT_PART(object)
                               ? Owned(g_mime_text_part_get_text(GMIME_TEXT_PART(object)))
                               : "";
        }
        part["content"] = Hex(g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream.get())));
        parts_.push_back(std::move(part));
    }

    static void WriteNested(GMimeMessagePart* part, GMimeStream* stream) {
        const std::unique_ptr<GMimeFormatOptions, FreeOptions> format(g_mime_format_options_new());
        g_mime_format_options_set_newline_format(format.get(), GMIME_NEWLINE_FORMAT_DOS);
        GMimeMessage* const message = g_mime_message_part_get_message(part);
        if (message) g_mime_object_write_to_stream(GMIME_OBJECT(message), format.get(), stream);
    }

    const std::unique_ptr<GMimeParserOptions, FreeOptions> options_{g_mime_parser_options_new()};
    json fields_ = json::array();
    json addresses_;
    json parts_ = json::array();
    json defects_ = json::array();
};

}  // namespace

int main() {
    g_mime_init();
    std::string line;
    while (std::getline(std::cin, line)) {
        const json description = Description().Of(Unhex(line));
        std::puts(description.dump(-1, ' ', true, json::error_handler_t::replace).c_str());
    }
    g_mime_shutdown();
    return 0;
}
