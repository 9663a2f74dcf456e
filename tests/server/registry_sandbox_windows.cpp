#include <gtest/gtest.h>

#include "tests/server/registry_sandbox.h"

namespace quorvane {

RegistrySandbox::RegistrySandbox()
    : place_("Software\\QuorvaneTest-" + std::to_string(GetCurrentProcessId())) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, place_.c_str(), &key), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, key), ERROR_SUCCESS);
    RegCloseKey(key);
}

RegistrySandbox::~RegistrySandbox() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegDeleteTreeA(HKEY_CURRENT_USER, place_.c_str());
}

}  // namespace quorvane
