#include "tests/server/library_copy.h"

namespace quorvane {

LibraryCopy::LibraryCopy(const std::filesystem::path& library, const std::filesystem::path& folder)
    : path_(folder / library.filename()) {
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(library, path_);
    loaded_ = LoadLibraryW(path_.c_str());
}

LibraryCopy::~LibraryCopy() {
    if (loaded_) FreeLibrary(static_cast<HMODULE>(loaded_));
}

HRESULT LibraryCopy::Call(const char* name) const {
    using Function = HRESULT(WINAPI*)();
    const auto function = reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(loaded_), name)));
    return function ? function() : E_FAIL;
}

}  // namespace quorvane
