#include <dlfcn.h>

#include "tests/server/library_copy.h"

namespace quorvane {

LibraryCopy::LibraryCopy(const std::filesystem::path& library, const std::filesystem::path& folder)
    : path_(folder / library.filename()) {
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(library, path_);
    loaded_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
}

LibraryCopy::~LibraryCopy() {
    if (loaded_) dlclose(loaded_);
}

HRESULT LibraryCopy::Call(const char* name) const {
    const auto function = loaded_ ? reinterpret_cast<HRESULT (*)()>(dlsym(loaded_, name)) : nullptr;
    return function ? function() : E_FAIL;
}

}  // namespace quorvane
