#include "cli/progress.h"

#include <cmath>
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
    if (seconds < 100) return std::to_string(std::lround(seconds)) + " s";
    if (seconds < 100 * 60) return std::to_string(std::lround(seconds / 60)) + " min";
    return std::to_string(std::lround(seconds / 3600)) + " h";
}

std::string SingleLine(const Progress& progress) {
    if (progress.bytesTotal <= 0) return {};
    constexpr int kBar = 40;
    const double part =
        static_cast<double>(progress.bytesSent) / static_cast<double>(progress.bytesTotal);
    const int full = static_cast<int>(part * kBar);
    std::string line = "[" + std::string(full, '#') + std::string(kBar - full, '.') + "] " +
                       std::to_string(static_cast<int>(100 * part)) + " %, " +
                       Megabytes(progress.bytesSent) + " of " + Megabytes(progress.bytesTotal) +
                       " MB";
    const double seconds = static_cast<double>(progress.elapsed.count()) / 1000;
    if (part > 0 && part < 1 && seconds > 1) {
        line += ", " + Duration(seconds * (1 - part) / part) + " left";
    }
    return line;
}

}  // namespace

std::string Megabytes(long long bytes) {
    return WithOneDecimal(static_cast<double>(bytes) / 1e6);
}

std::string ProgressLine(const Progress& progress) {
    if (progress.count == 1) return SingleLine(progress);
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
        pieces.push_back(Megabytes(progress.bytesSent) + " of " + Megabytes(progress.bytesTotal) +
                         " MB");
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
