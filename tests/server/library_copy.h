// The library loaded once more, from another place.
#pragma once

#include <windows.h>

#include <filesystem>

namespace quorvane {

class LibraryCopy {
public:
    // Copies the file into the folder, which is made, and loads that.
    LibraryCopy(const std::filesystem::path& library, const std::filesystem::path& folder);
    ~LibraryCopy();
    LibraryCopy(const LibraryCopy&) = delete;
    LibraryCopy& operator=(const LibraryCopy&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // One of its functions without parameters; E_FAIL when it has no such function.
    HRESULT Call(const char* name) const;

private:
    std::filesystem::path path_;
    void* loaded_ = nullptr;
};

}  // namespace quorvane
