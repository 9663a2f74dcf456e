#include "cli/progress.h"

#include <cstdio>
#include <vector>

namespace quorvane::cli {
namespace {

constexpr std::size_t kWidth = 79;

std::string WithOneDecimal(double value) {
    char text[32];
    std::snprintf(text, sizeof text, value < 10 ? "%.1f" : "%.0f", value);
    return text;
}

// "45 s", "3 min", "2 h": the last unit that is worth telling.
std::string Duration(double seconds) {
    if (seconds < 100) return std::to_string(static_cast<int>(seconds + 0.5)) + " s";
    if (seconds < 100 * 60) return std::to_string(static_cast<int>(seconds / 60 + 0.5)) + " min";
    return std::to_string(static_cast<long long>(seconds / 3600 + 0.5)) + " h";
}

}  // namespace

std::string ProgressLine(const Progress& progress) {
    const int left = progress.count - progress.ended();
    std::vector<std::string> pieces{std::to_string(progress.sent) + " sent",
                                    std::to_string(progress.failed) + " failed"};
    if (progress.cancelled > 0) {
        pieces.push_back(std::to_string(progress.cancelled) + " cancelled");
    }
    pieces.push_back(std::to_string(left) + " queued");
    const double seconds = static_cast<double>(progress.elapsed.count()) / 1000;
    if (progress.ended() > 0 && seconds > 0) {
        const double rate = progress.ended() / seconds;
        pieces.push_back(WithOneDecimal(rate) + "/s");
        if (left > 0) pieces.push_back(Duration(left / rate) + " left");
    }
    if (progress.bytesTotal > 0) {
        constexpr double kMegabyte = 1e6;
        pieces.push_back(
            WithOneDecimal(static_cast<double>(progress.bytesSent) / kMegabyte) + " of " +
            WithOneDecimal(static_cast<double>(progress.bytesTotal) / kMegabyte) + " MB");
    }
    std::string line;
    for (const std::string& piece : pieces) {
        if (line.size() + piece.size() + 2 > kWidth) break;
        if (!line.empty()) line += ", ";
        line += piece;
    }
    return line;
}

}  // namespace quorvane::cli
