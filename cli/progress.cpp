#include "cli/progress.h"

#include <cstdio>

namespace quorvane::cli {
namespace {

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
    const int ended = progress.sent + progress.failed;
    const int left = progress.count - ended;
    std::string line = std::to_string(progress.sent) + " sent, " + std::to_string(progress.failed) +
                       " failed, " + std::to_string(left) + " queued";
    const double seconds = static_cast<double>(progress.elapsed.count()) / 1000;
    if (ended > 0 && seconds > 0) {
        const double rate = ended / seconds;
        line += ", " + WithOneDecimal(rate) + "/s";
        if (left > 0) line += ", " + Duration(left / rate) + " left";
    }
    if (progress.bytesTotal > 0) {
        constexpr double kMegabyte = 1e6;
        line += ", " + WithOneDecimal(static_cast<double>(progress.bytesSent) / kMegabyte) +
                " of " + WithOneDecimal(static_cast<double>(progress.bytesTotal) / kMegabyte) +
                " MB";
    }
    return line;
}

}  // namespace quorvane::cli
