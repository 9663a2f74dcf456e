// Collects short runs of bytes, so that a string grows by the kilobyte and not by the word.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace quorvane {

// What was put is in the string after Flush, which the last user calls.
class LineBuffer {
public:
    explicit LineBuffer(std::string& out) : out_(out) {}
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;

    void Put(std::string_view bytes) {
        if (bytes.size() > buffer_.size() - used_) {
            Flush();
            if (bytes.size() > buffer_.size()) {
                out_.append(bytes);
                return;
            }
        }
        std::memcpy(buffer_.data() + used_, bytes.data(), bytes.size());
        used_ += bytes.size();
    }

    // Puts the bytes as the beginning of a line: a first dot is doubled (RFC 5321 section 4.5.2).
    void PutLineStart(std::string_view bytes) {
        if (bytes.starts_with('.')) Put(".");
        Put(bytes);
    }

    void Flush() {
        out_.append(buffer_.data(), used_);
        used_ = 0;
    }

private:
    std::string& out_;
    std::size_t used_ = 0;
    std::array<char, 4096> buffer_;
};

// Takes the next line off the text: what stands before the next CR or the end. `ended` tells
// whether a CR stood there; a LF right behind it goes with it. A LF elsewhere is an ordinary byte.
inline std::string_view TakeLine(std::string_view& text, bool& ended) {
    const std::size_t length = std::min(text.find('\r'), text.size());
    const std::string_view line = text.substr(0, length);
    ended = length < text.size();
    text.remove_prefix(ended ? length + 1 : length);
    if (ended && text.starts_with('\n')) text.remove_prefix(1);
    return line;
}

}  // namespace quorvane
