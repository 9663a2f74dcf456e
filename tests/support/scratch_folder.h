// A folder of the test's own, gone at its end.
#pragma once

#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

class ScratchFolder {
public:
    ScratchFolder() {
        const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
        path_ =
            std::filesystem::temp_directory_path() / ("quorvane-" + std::to_string(stamp));
        std::filesystem::create_directories(path_);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

    std::filesystem::path Write(std::string_view name, std::string_view bytes) const {
        const std::filesystem::path file = path_ / std::filesystem::path(name);
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

private:
    std::filesystem::path path_;
};

inline std::basic_string<WCHAR> ToWide(const std::filesystem::path& path) {
    const std::u16string text = path.u16string();
    return {text.begin(), text.end()};
}
