#include "tests/mime/reference_encoders.h"

#include <cstdio>
#include <vector>

namespace quorvane::reference {
namespace {

struct Line {
    std::string text;
    bool ended;
};

std::vector<Line> SplitAtCr(const std::string& text) {
    std::vector<Line> lines;
    std::size_t i = 0;
    while (i < text.size()) {
        Line line{"", false};
        while (i < text.size() && text[i] != '\r') line.text += text[i++];
        if (i < text.size()) {
            line.ended = true;
            ++i;
            if (i < text.size() && text[i] == '\n') ++i;
        }
        lines.push_back(line);
    }
    return lines;
}

std::string Escape(char c) {
    char escape[4];
    std::snprintf(escape, sizeof(escape), "=%2.2X", static_cast<unsigned>(c) & 0xFF);
    return escape;
}

}  // namespace

std::string MaskNonAscii(std::string text) {
    for (char& c : text) {
        if ((c & 0xFF) >= 0x7F) c = '?';
    }
    return text;
}

std::string WrapLines(const std::string& text, std::size_t limit) {
    const std::string breaks = "\t -:;.,?!";
    std::string out;
    for (const Line& line : SplitAtCr(text)) {
        const bool hasBreaks = line.text.find_first_of(breaks) != std::string::npos;
        std::string rest = line.text;
        while (rest.size() > limit) {
            std::size_t k = limit - 1;
            if (hasBreaks) {
                while (k >= 1 && breaks.find(rest[k]) == std::string::npos) --k;
                if (k == 0) k = limit - 1;
            }
            out += rest.substr(0, k + 1) + "\r\n";
            rest = rest.substr(k + 1);
        }
        out += rest;
        if (line.ended) out += "\r\n";
    }
    return out;
}

std::string QuotedPrintable(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        const int b = c & 0xFF;
        const bool control = b < 0x20 && b != '\r' && b != '\n' && b != '\t';
        if (c == '=' || b >= 0x7F || control) {
            escaped += Escape(c);
        } else {
            escaped += c;
        }
    }
    std::string out;
    for (const Line& line : SplitAtCr(escaped)) {
        std::string rest = line.text;
        for (bool done = false; !done;) {
            while (rest.size() > 76) {
                std::size_t take = 75;
                if (rest[74] == '=') {
                    take = 74;
                } else if (rest[73] == '=') {
                    take = 73;
                }
                out += rest.substr(0, take) + "=\r\n";
                rest = rest.substr(take);
            }
            if (!rest.empty() && (rest.back() == ' ' || rest.back() == '\t')) {
                const std::string escape = Escape(rest.back());
                rest.pop_back();
                rest += escape;
            } else {
                done = true;
            }
        }
        out += rest;
        if (line.ended) out += "\r\n";
    }
    return out;
}

std::string Base64(const std::string& bytes) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    unsigned bits = 0;
    int count = 0;
    for (const char c : bytes) {
        bits = bits << 8 | (c & 0xFF);
        count += 8;
        while (count >= 6) {
            count -= 6;
            out += alphabet[bits >> count & 0x3F];
        }
    }
    if (count > 0) out += alphabet[bits << (6 - count) & 0x3F];
    while (out.size() % 4 != 0) out += '=';
    return out;
}

std::string StuffDots(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool lineStart = i == 0 || (i >= 2 && text[i - 2] == '\r' && text[i - 1] == '\n');
        if (lineStart && text[i] == '.') out += '.';
        out += text[i];
    }
    return out;
}

int ChooseEncoding(const std::string& bytes) {
    long long printable = 0, others = 0, lineStart = 0;
    bool anyCr = false, anyLong = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const int b = bytes[i] & 0xFF;
        const bool isPrintable = b < 127 && (b >= 32 || b == 9 || b == 10 || b == 13);
        ++(isPrintable ? printable : others);
        if (b == 13) {
            anyCr = true;
            if (static_cast<long long>(i) - lineStart - 1 > 76) anyLong = true;
            lineStart = static_cast<long long>(i) + 1;
        }
    }
    if (!anyCr && bytes.size() >= 77) anyLong = true;
    const auto n = static_cast<long long>(bytes.size());
    if (n > 0 && printable * 100 / n < 90) return 4;
    if (anyLong) return 3;
    return others > 0 ? 2 : 1;
}

std::string EncodeBody(const std::string& bytes, int encoding) {
    const std::string text = bytes.substr(0, bytes.find('\0'));
    switch (encoding) {
        case 1:
            return StuffDots(WrapLines(MaskNonAscii(text), 76));
        case 2:
            return StuffDots(WrapLines(text, 76));
        case 3:
            return StuffDots(QuotedPrintable(text));
        default:
            return StuffDots(WrapLines(Base64(bytes), 76));
    }
}

}  // namespace quorvane::reference
