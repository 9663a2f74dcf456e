#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "tests/server/registry_sandbox.h"

namespace quorvane {

RegistrySandbox::RegistrySandbox() {
    std::string folder = (std::filesystem::temp_directory_path() / "quorvane-XXXXXX").string();
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    place_ = folder;
    setenv("XDG_DATA_HOME", place_.c_str(), 1);
}

RegistrySandbox::~RegistrySandbox() {
    unsetenv("XDG_DATA_HOME");
    std::filesystem::remove_all(place_);
}

}  // namespace quorvane
