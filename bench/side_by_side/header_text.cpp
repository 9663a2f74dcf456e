#include "bench/side_by_side/header_text.h"

namespace quorvane::bench {

std::string HeaderText(const std::string& text) {
    static constexpr char kAlphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    bool ascii = true;
    for (const char c : text) ascii = ascii && static_cast<unsigned char>(c) < 0x7F;
    if (ascii) return text;
    std::string word = "=?utf-8?B?";
    for (std::size_t i = 0; i < text.size(); i += 3) {
        unsigned group = 0;
        for (std::size_t k = i; k < i + 3; ++k) {
            group = group << 8 | (k < text.size() ? static_cast<unsigned char>(text[k]) : 0u);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            word += i + k > text.size() ? '=' : kAlphabet[group >> (18 - 6 * k) & 0x3F];
        }
    }
    return word + "?=";
}

std::string Mailbox(const std::string& name, const std::string& address) {
    const std::string text = HeaderText(name);
    if (text.empty()) return "<" + address + ">";
    return (text == name ? '"' + text + '"' : text) + " <" + address + ">";
}

}  // namespace quorvane::bench
