#include "tests/platform/registry_home.h"

#include <cstdlib>

#include "tests/support/scratch_folder.h"

RegistryHome::RegistryHome() : folder_(std::make_unique<ScratchFolder>()) {
    setenv("XDG_DATA_HOME", folder_->path().c_str(), 1);
}

RegistryHome::~RegistryHome() {
    unsetenv("XDG_DATA_HOME");
}
